#include "flash/region_update.h"

#include <cstring>

#include "flash/carried_identity.h"
#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/region_rules.h"
#include "flash/region_transfer.h"
#include "flash/restart.h"
#include "flash/update_lock.h"
#include "flash/version_records.h"
#include "formats/firmware_image.h"
#include "formats/rom_image.h"
#include "frame/owned.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace flash {
namespace {

using properties::Chip;
using properties::ChipTrait;
using Image = std::span<const uint8_t>;

HX_STATUS CheckFirmwareOf(const Chip& chip, uint32_t regionCode, uint32_t regionBytes,
                          Image image) {
    if (!chip.Has(ChipTrait::LargeRom) || regionCode != kFirmwareRegion) {
        return HXMGT_SUCCESS;
    }
    switch (formats::CheckFirmware(image, regionBytes)) {
        case formats::FirmwareCheck::Good:
            return HXMGT_SUCCESS;
        case formats::FirmwareCheck::BadSegments:
            return HXMGT_OPTION_ROM_INCOMPATIBLE_FIRMWARE;
        default:
            return HXMGT_OPTION_ROM_CHECKSUM_ERROR;
    }
}

// Writes the image to every entry of the region, as often as the table has it.
HX_STATUS WriteEntries(uint32_t handle, const Chip& chip, const RegionTable& table,
                       uint32_t regionCode, Image image) {
    bool found = false;
    for (const HX_FLASH_REGION& region : table.Reported()) {
        if (!IsRegion(region, regionCode)) {
            continue;
        }
        found = true;
        if (region.size < image.size()) {
            return HXMGT_OPTION_ROM_SIZE_TOO_BIG;
        }
        HX_STATUS status = CheckFirmwareOf(chip, regionCode, region.size, image);
        if (status == HXMGT_SUCCESS) {
            status = WriteRegion(handle, regionCode, image);
        }
        if (status != HXMGT_SUCCESS) {
            return status;
        }
    }
    return found ? HXMGT_SUCCESS : HXMGT_OPTION_ROM_REGION_INVALID;
}

HX_STATUS WriteToLayout(uint32_t handle, const Chip& chip, uint32_t regionCode, Image image) {
    RegionTable table;
    const HX_STATUS status = table.Load(handle);
    return status == HXMGT_SUCCESS ? WriteEntries(handle, chip, table, regionCode, image) : status;
}

// Carries the adapter's identity over into boot code.
HX_STATUS PrepareBootCode(uint32_t handle, const Chip& chip, std::span<uint8_t> image) {
    if (!formats::FindImage(image, formats::RomCode::Bios)) {
        return HXMGT_SUCCESS;
    }
    const uint32_t currentBytes = FlashImageBytes(chip);
    const frame::Bytes current = frame::ZeroedBytes(currentBytes);
    if (current == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    if (const HX_STATUS status = GetAtOffset(handle, current.get(), currentBytes, 0);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return CarryOverBootIdentity(image, {current.get(), currentBytes}, FlashNvramBytes(chip))
               ? HXMGT_SUCCESS
               : HXMGT_OPTION_ROM_CHECKSUM_ERROR;
}

bool DemandsSecureUpdate(uint32_t handle) {
    SecureStateRecord state{};
    if (transport::Exchange(handle, transport::command::SecureFlashState, state, state) !=
        HXMGT_SUCCESS) {
        return false;
    }
    // Whatever the table says, the state alone decides: intended.
    AskExtendedLayout(handle);
    return (state.flags & kSecureInForce) != 0;
}

}  // namespace

HX_STATUS CheckUpdate(uint32_t handle, const void* image, uint32_t imageSize,
                      HX_CHIP_PROPERTY& chip) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (image == nullptr && imageSize != 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    return properties::GetChipProperty(handle, &chip);
}

HX_STATUS CheckUpdateToken(uint32_t handle, uint32_t regionCode) {
    const HXMGT_API_HANDLE* const record = frame::OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    const bool needed =
        record->qwFlashUpdateCapabilities != 0 && IsAmong(kLockedRegions, regionCode);
    return needed && !HoldsUpdateLock(handle) ? HXMGT_NO_FLASH_UPDATE_TOKEN : HXMGT_SUCCESS;
}

HX_STATUS LoadExactRegion(uint32_t handle, uint32_t regionCode, uint32_t imageSize,
                          RegionTable& table) {
    if (const HX_STATUS status = table.Load(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    return SizeOfRegion(table.Reported(), regionCode) == imageSize ? HXMGT_SUCCESS
                                                                   : HXMGT_INVALID_REQUEST;
}

HX_STATUS GetRegion(uint32_t handle, void* buffer, uint32_t bufferSize, uint32_t regionCode) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (buffer == nullptr && bufferSize != 0) {
        return HXMGT_INVALID_PARAMETER;
    }
    RegionTable table;
    if (const HX_STATUS status = table.Load(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::optional<uint32_t> size = SizeOfRegion(table.All(), regionCode);
    if (!size) {
        return HXMGT_OPTION_ROM_REGION_INVALID;
    }
    return *size > bufferSize
               ? HX_STATUS{HXMGT_OPTION_ROM_SIZE_TOO_BIG}
               : ReadRegion(handle, regionCode, *size, {static_cast<uint8_t*>(buffer), bufferSize});
}

HX_STATUS UpdateRegion(uint32_t handle, void* image, uint32_t imageSize, uint32_t regionCode) {
    HX_CHIP_PROPERTY identity{};
    if (const HX_STATUS status = CheckUpdate(handle, image, imageSize, identity);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const Chip chip = properties::ChipOf(identity.deviceId);
    if (chip.Has(ChipTrait::RegionLayout)) {
        return UpdateRegionOfLayout(handle, image, imageSize, regionCode);
    }
    const std::span<uint8_t> bytes(static_cast<uint8_t*>(image), imageSize);
    if (IsAmong(kPreparedRegions, regionCode) &&
        !KeepsBootCode(chip, identity.subsystemVendorId, identity.subsystemDeviceId)) {
        if (const HX_STATUS status = PrepareBootCode(handle, chip, bytes);
            status != HXMGT_SUCCESS) {
            return status;
        }
    }
    HX_STATUS status = WriteToLayout(handle, chip, regionCode, bytes);
    if (status == HXMGT_SUCCESS && chip.Has(ChipTrait::LargeRomSecond) &&
        regionCode == kBootRegion) {
        status = WriteToLayout(handle, chip, kSecondBootRegion, bytes);
    }
    if (status == HXMGT_SUCCESS && chip.Has(ChipTrait::LargeRom) &&
        IsAmong(kVersionedRegions, regionCode)) {
        status = RecordVersions(handle, regionCode, bytes);
    }
    return status;
}

HX_STATUS UpdateRegionOfLayout(uint32_t handle, const void* image, uint32_t imageSize,
                               uint32_t regionCode) {
    HX_CHIP_PROPERTY identity{};
    if (const HX_STATUS status = CheckUpdate(handle, image, imageSize, identity);
        status != HXMGT_SUCCESS) {
        return status;
    }
    const Chip chip = properties::ChipOf(identity.deviceId);
    if (chip.Has(ChipTrait::Banked) && DemandsSecureUpdate(handle)) {
        return UpdateSecureRegion(handle, image, imageSize, regionCode);
    }
    if (const HX_STATUS status = CheckUpdateToken(handle, regionCode); status != HXMGT_SUCCESS) {
        return status;
    }
    RegionTable table;
    if (const HX_STATUS status = LoadExactRegion(handle, regionCode, imageSize, table);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (const HX_STATUS status = WriteEntries(handle, chip, table, regionCode,
                                              {static_cast<const uint8_t*>(image), imageSize});
        status != HXMGT_SUCCESS) {
        return status;
    }
    return IsAmong(kResetRegions, regionCode) && ResetAdapterPorts(handle) != HXMGT_SUCCESS
               ? HXMGT_FLASH_UPDATE_NOT_ACTIVATED
               : HXMGT_SUCCESS;
}

}  // namespace flash
