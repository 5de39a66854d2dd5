#include "formats/rom_image.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numeric>

namespace flash {
namespace {

constexpr size_t kClassicNvramBytes = 256;
constexpr size_t kLastMarkPosition = 131067;  // in a whole flash image

template <class Record>
bool ReadAt(std::span<const uint8_t> bytes, size_t offset, Record& record) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof record) {
        return false;
    }
    std::memcpy(&record, bytes.data() + offset, sizeof record);
    return true;
}

// Bytes of an image as far as the flash goes.
template <class Byte>
std::span<Byte> BytesOf(std::span<Byte> flash, const RomImage& image) {
    return flash.subspan(image.start, std::min(image.length, flash.size() - image.start));
}

// An image's place for the adapter's subsystem vendor ID; empty when it has none.
template <class Byte>
std::span<Byte> SubsystemVendor(std::span<Byte> image) {
    RomHeader header{};
    if (!ReadAt(image, 0, header) ||
        std::memcmp(header.subsystemMark, kSubsystemMark, sizeof kSubsystemMark) != 0) {
        return {};
    }
    return image.subspan(offsetof(RomHeader, subsystemVendor), sizeof header.subsystemVendor);
}

// The NVRAM block inside an image, its mark looked for at the first positions; empty when there is
// none, or no whole one.
template <class Byte>
std::span<Byte> NvramBlock(std::span<Byte> image, size_t blockBytes, size_t positions) {
    const auto area = image.first(std::min(image.size(), positions + sizeof kNvramMark));
    const auto found =
        std::search(area.begin(), area.end(), std::begin(kNvramMark), std::end(kNvramMark));
    if (found == area.end()) {
        return {};
    }
    const auto start = static_cast<size_t>(found - area.begin()) + kNvramMarkLead;
    return image.size() - start >= blockBytes ? image.subspan(start, blockBytes)
                                              : std::span<Byte>{};
}

// What the adapter keeps for itself, and the places for it in an image.
template <class Byte>
struct Identity {
    std::span<Byte> vendor;
    std::span<Byte> nvram;
};

// Returns true when the image was given anything.
bool CopyIdentity(const Identity<const uint8_t>& from, const Identity<uint8_t>& to) {
    bool changed = false;
    if (!from.vendor.empty() && !to.vendor.empty() &&
        !std::equal(from.vendor.begin(), from.vendor.end(), to.vendor.begin())) {
        std::copy(from.vendor.begin(), from.vendor.end(), to.vendor.begin());
        changed = true;
    }
    if (!from.nvram.empty() && !to.nvram.empty()) {
        std::copy(from.nvram.begin(), from.nvram.end(), to.nvram.begin());
        changed = true;
    }
    return changed;
}

template <class Byte>
Identity<Byte> IdentityOf(std::span<Byte> image, size_t nvramBytes) {
    return {SubsystemVendor(image), NvramBlock(image, nvramBytes, image.size())};
}

template <class Byte>
Identity<Byte> IdentityOfWhole(std::span<Byte> flash) {
    return {SubsystemVendor(flash), NvramBlock(flash, kClassicNvramBytes, kLastMarkPosition)};
}

}  // namespace

std::optional<RomImage> ImageAt(std::span<const uint8_t> flash, size_t start) {
    if (start > flash.size()) {
        return std::nullopt;
    }
    const std::span<const uint8_t> bytes = flash.subspan(start);
    uint16_t signature = 0;
    uint16_t dataOffset = 0;
    RomData data{};
    if (!ReadAt(bytes, 0, signature) || signature != kRomSignature ||
        !ReadAt(bytes, offsetof(RomHeader, dataOffset), dataOffset) ||
        !ReadAt(bytes, dataOffset, data) ||
        std::memcmp(data.mark, kRomDataMark, sizeof kRomDataMark) != 0 || data.length == 0) {
        return std::nullopt;
    }
    return RomImage{
        start,         size_t{data.length} * kRomUnit,    data.majorRevision, data.revision,
        data.codeType, (data.indicator & kLastImage) != 0};
}

std::optional<RomImage> NextImage(std::span<const uint8_t> flash, const RomImage& image) {
    return image.last ? std::nullopt : ImageAt(flash, image.start + image.length);
}

std::optional<RomImage> FindImage(std::span<const uint8_t> flash, RomCode code) {
    std::optional<RomImage> image = ImageAt(flash, 0);
    for (uint32_t seen = 1; image && image->codeType != static_cast<uint8_t>(code); ++seen) {
        image = seen < kLongestChain ? NextImage(flash, *image) : std::nullopt;
    }
    return image;
}

bool UpdateChecksum(std::span<uint8_t> image) {
    constexpr size_t kLengthByte = offsetof(RomHeader, length);
    const size_t length = image.size() > kLengthByte ? image[kLengthByte] * size_t{kRomUnit} : 0;
    if (length == 0 || length > image.size()) {
        return false;
    }
    // The byte before the checksum is left out of the sum: intended.
    const auto summed = image.first(length - 2);
    const auto sum = std::accumulate(summed.begin(), summed.end(), uint8_t{0},
                                     [](auto a, auto b) { return static_cast<uint8_t>(a + b); });
    image[length - 1] = static_cast<uint8_t>(-sum);
    return true;
}

bool CarryOverIdentity(std::span<uint8_t> image, std::span<const uint8_t> current) {
    return !CopyIdentity(IdentityOfWhole(current), IdentityOfWhole(image)) || UpdateChecksum(image);
}

bool CarryOverBootIdentity(std::span<uint8_t> image, std::span<const uint8_t> current,
                           size_t nvramBytes) {
    const std::optional<RomImage> target = FindImage(image, RomCode::Bios);
    const std::optional<RomImage> source = FindImage(current, RomCode::Bios);
    if (!target || !source) {
        return true;
    }
    const auto kept = IdentityOf(BytesOf(current, *source), nvramBytes);
    if (CopyIdentity(kept, IdentityOf(BytesOf(image, *target), nvramBytes)) &&
        !UpdateChecksum(image.subspan(target->start))) {
        return false;
    }
    const std::optional<RomImage> next = NextImage(image, *target);
    if (!next) {
        return true;
    }
    const auto places = IdentityOf(BytesOf(image, *next), nvramBytes);
    if (places.vendor.empty() || places.nvram.empty()) {
        return true;
    }
    return !CopyIdentity(kept, places) || UpdateChecksum(image.subspan(next->start));
}

}  // namespace flash
