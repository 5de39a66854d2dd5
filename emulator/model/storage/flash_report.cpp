#include "model/storage/flash_report.h"

#include <algorithm>

#include "formats/firmware_image.h"
#include "formats/rom_image.h"
#include "model/fabric/fabric.h"
#include "model/storage/flash_signature.h"
#include "model/storage/nvram_content.h"
#include "model/storage/vpd_content.h"

namespace vxemu {
namespace {

struct BootRow {
    formats::RomCode code;
    const char* name;
};
constexpr BootRow kBootKinds[] = {
    {formats::RomCode::Bios, "BIOS "},
    {formats::RomCode::Fcode, "FCODE "},
    {formats::RomCode::Efi, "EFI "},
};

CheckState Checked(bool good) {
    return good ? CheckState::Good : CheckState::Bad;
}

// Checksums of the images are made anew to see whether they change; the copy is not needed any
// more afterwards.
CheckState CheckBoot(std::span<uint8_t> region, char (&text)[48]) {
    formats::TextWriter writer(text);
    std::optional<formats::RomImage> image = formats::ImageAt(region, 0);
    bool good = image.has_value();
    bool first = true;
    for (uint32_t seen = 0; image && seen < formats::kLongestChain; ++seen) {
        for (const BootRow& row : kBootKinds) {
            if (static_cast<uint8_t>(row.code) == image->codeType) {
                writer.Text(first ? "" : ", ").Text(row.name);
                formats::WriteBootVersion(writer, image->majorRevision, image->revision);
                first = false;
            }
        }
        if (image->length > region.size() - image->start) {
            return CheckState::Bad;
        }
        const std::span<uint8_t> bytes = region.subspan(image->start, image->length);
        const uint8_t checksum = bytes.back();
        good = formats::UpdateChecksum(bytes) && bytes.back() == checksum && good;
        const bool last = image->last;
        image = formats::NextImage(region, *image);
        good = good && (last || image.has_value());
    }
    return Checked(good);
}

CheckState CheckFirmware(std::span<const uint8_t> region, char (&text)[48]) {
    const bool good = formats::CheckFirmware(region, region.size()) == formats::FirmwareCheck::Good;
    if (good) {
        formats::FormatFirmwareVersion(formats::FirmwareVersion(region), text);
    }
    return Checked(good);
}

bool IsErased(std::span<const uint8_t> bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0xFF; });
}

}  // namespace

void DescribeImage(const FlashRegion& region, uint16_t deviceId, std::span<uint8_t> image,
                   FlashRegionStatus& status) {
    status.signature = region.IsSigned() ? Checked(SignatureHolds(image, deviceId, region.code))
                                         : CheckState::None;
    status.checksum = CheckState::None;
    if (IsErased(image)) {
        return;
    }
    switch (region.content) {
        case RegionContent::Boot:
        case RegionContent::RecoveryBoot:
            status.checksum = CheckBoot(image, status.version);
            break;
        case RegionContent::Firmware:
        case RegionContent::RecoveryFirmware:
        case RegionContent::AuxiliaryFirmware:
            status.checksum = CheckFirmware(image, status.version);
            break;
        case RegionContent::Nvram:
            status.checksum = Checked(NvramHolds(image));
            break;
        case RegionContent::Vpd:
            status.checksum = Checked(VpdHolds(image));
            break;
        case RegionContent::Parameters:
        case RegionContent::Blank:
            break;
    }
}

bool DescribeRegion(const Port& port, const PlacedRegion& placed, FlashRegionStatus& status) {
    const FlashRegion& region = *placed.region;
    status = {};
    status.code = region.code;
    status.content = region.content;
    status.flags = region.flags;
    status.readOnly = region.readOnly ? 1 : 0;
    status.start = placed.start;
    status.size = region.size;
    const FlashCopy copy(port.fabric->host, port.flash->memory, placed);
    if (copy.Valid()) {
        DescribeImage(region, port.adapter->deviceId, copy.Bytes(), status);
    }
    return copy.Valid();
}

}  // namespace vxemu
