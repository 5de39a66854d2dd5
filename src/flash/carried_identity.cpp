#include "flash/carried_identity.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "formats/rom_image.h"

namespace flash {
namespace {

using namespace formats;

constexpr size_t kClassicNvramBytes = 256;
constexpr size_t kLastMarkPosition = 131067;  // in a whole flash image

// Bytes of an image as far as the flash goes.
template <class Byte>
std::span<Byte> BytesOf(std::span<Byte> flash, const RomImage& image) {
    return flash.subspan(image.start, std::min(image.length, flash.size() - image.start));
}

// An image's place for the adapter's subsystem vendor ID; empty when it has none.
template <class Byte>
std::span<Byte> SubsystemVendor(std::span<Byte> image) {
    const auto header = Padded<RomHeader>(image);
    if (!Holds<RomHeader>(image, 0) ||
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
