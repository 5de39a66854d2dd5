#include "vxmgr/flash/flash_image.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "formats/nvram_block.h"
#include "formats/vpd_tags.h"

namespace vxmgr {
namespace {

constexpr uint8_t kErasedByte = 0xFF;

constexpr const char* kKindNames[] = {"unknown data", "erased flash",     "boot code",
                                      "firmware",     "settings (NVRAM)", "product data (VPD)"};

bool BeginsNvram(Bytes bytes) {
    return bytes.size() >= formats::kClassicBlock && formats::HasSignature(bytes);
}

bool BeginsVpd(Bytes bytes) {
    const auto tag = formats::TagAt(bytes, 0);
    return tag && bytes[0] == formats::kIdentifierTag && tag->length != 0 &&
           tag->End() < bytes.size();
}

bool IsErased(Bytes bytes) {
    return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == kErasedByte; });
}

struct StartRow {
    ImageKind kind;
    bool (*begins)(Bytes bytes);
};
constexpr StartRow kStarts[] = {
    {ImageKind::Erased, IsErased},         {ImageKind::BootCode, formats::BeginsRom},
    {ImageKind::Nvram, BeginsNvram},       {ImageKind::Vpd, BeginsVpd},
    {ImageKind::Firmware, BeginsFirmware},
};

ImageKind KindOf(Bytes bytes) {
    for (const StartRow& row : kStarts) {
        if (!bytes.empty() && row.begins(bytes)) {
            return row.kind;
        }
    }
    return ImageKind::Unknown;
}

void AddChip(ImageInfo& info, uint16_t device) {
    if (std::ranges::find(info.chips, device) == info.chips.end()) {
        info.chips.push_back(device);
    }
}

void InspectBoot(Bytes bytes, ImageInfo& info) {
    info.boot = DecodeRomChain(bytes);
    info.problem = info.boot.problem;
    for (size_t i = 0; i < info.boot.images.size(); ++i) {
        const RomImage& image = info.boot.images[i];
        info.vendorId = image.vendorId;
        for (const uint16_t device : image.devices) {
            AddChip(info, device);
        }
        if (image.checksum == Sum::Bad && info.problem.empty()) {
            info.problem = "the checksum of image " + std::to_string(i + 1) + " (" +
                           CodeTypeName(image.codeType) + ") is wrong";
        }
    }
    if (const RomImage* bios = info.boot.Bios()) {
        info.version = bios->version;
    }
}

void InspectFirmware(Bytes bytes, ImageInfo& info) {
    info.firmware = DecodeFirmware(bytes);
    info.problem = info.firmware.problem;
    info.version = info.firmware.version;
    if (info.firmware.deviceId) {
        AddChip(info, *info.firmware.deviceId);
    }
}

// Little-endian words that add up to 0. Blocks of older chips are summed in ways of their own.
void InspectNvram(Bytes bytes, ImageInfo& info) {
    if (bytes.size() >= formats::kExtendedBlock &&
        !formats::ChecksumHolds(formats::BlockKind::Extended, bytes)) {
        info.problem = "the checksum of the settings is wrong";
    }
}

using Numbers = std::array<uint32_t, 4>;

std::optional<Numbers> NumbersOf(std::string_view text) {
    const std::vector<std::string> parts = Split(text, '.');
    Numbers numbers{};
    if (parts.empty() || parts.size() > numbers.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        const char* const end = parts[i].data() + parts[i].size();
        const auto [rest, error] = std::from_chars(parts[i].data(), end, numbers[i]);
        if (error != std::errc() || rest != end) {
            return std::nullopt;
        }
    }
    return numbers;
}

}  // namespace

const char* KindName(ImageKind kind) {
    return kKindNames[static_cast<size_t>(kind)];
}

Value KindValue(ImageKind kind) {
    return Value::Text(kImageKinds[static_cast<size_t>(kind)]).Shown(KindName(kind));
}

ImageInfo InspectImage(Bytes bytes) {
    ImageInfo info;
    info.kind = KindOf(bytes);
    info.size = bytes.size();
    switch (info.kind) {
        case ImageKind::BootCode:
            InspectBoot(bytes, info);
            break;
        case ImageKind::Firmware:
            InspectFirmware(bytes, info);
            break;
        case ImageKind::Nvram:
            InspectNvram(bytes, info);
            break;
        default:
            break;
    }
    return info;
}

std::optional<std::strong_ordering> CompareVersions(std::string_view left, std::string_view right) {
    const std::optional<Numbers> first = NumbersOf(left);
    const std::optional<Numbers> second = NumbersOf(right);
    if (!first || !second) {
        return std::nullopt;
    }
    return *first <=> *second;
}

}  // namespace vxmgr
