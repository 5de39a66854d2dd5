#include "model/storage/flash_start.h"

#include "formats/firmware_image.h"
#include "formats/rom_image.h"
#include "model/bytes/bytes.h"
#include "model/fabric/fabric.h"
#include "model/port_settings.h"

namespace vxemu {
namespace {

using transport::DriverStatus;

// Regions that were never written hold what runs already.
bool WasWritten(const Port& port, const PlacedRegion& placed) {
    return placed && port.flash->memory.WasWritten(placed.start, placed.region->size);
}

DriverStatus RunFirmware(Port& port, const PlacedRegion& placed) {
    const FlashCopy image(port.fabric->host, port.flash->memory, placed);
    if (!image.Valid()) {
        return DriverStatus::OutOfMemory;
    }
    if (formats::CheckFirmware(image.Bytes(), image.Bytes().size()) !=
            formats::FirmwareCheck::Good ||
        formats::FirmwareWord(image.Bytes(), formats::kDeviceWord) != port.adapter->deviceId) {
        return DriverStatus::FirmwareState;
    }
    const formats::VersionNumbers version = formats::FirmwareVersion(image.Bytes());
    // The same version keeps its own way of being written.
    if (version != formats::ParseVersion(port.adapter->firmwareVersion)) {
        formats::FormatFirmwareVersion(version, port.adapter->firmwareVersion);
    }
    port.adapter->firmwareAttributes =
        formats::FirmwareWord(image.Bytes(), formats::kAttributesWord);
    return DriverStatus::Success;
}

// Damaged boot code leaves the version as it is: the adapter runs without it.
void RunBootCode(Port& port) {
    const PlacedRegion placed = port.flash->memory.Regions().WithContent(RegionContent::Boot);
    if (!WasWritten(port, placed)) {
        return;
    }
    const FlashCopy image(port.fabric->host, port.flash->memory, placed);
    const auto bios = formats::FindImage(image.Bytes(), formats::RomCode::Bios);
    if (!bios) {
        return;
    }
    const formats::VersionNumbers version = {{bios->majorRevision, bios->revision, 0, 0}};
    if (version != formats::ParseVersion(port.adapter->optionRomVersion)) {
        formats::TextWriter writer(port.adapter->optionRomVersion);
        formats::WriteBootVersion(writer, version.parts[0], version.parts[1]);
    }
}

// The link goes with the firmware and comes back with it.
void RestartLink(Port& port) {
    if (port.LinkUp()) {
        SetLink(port, false);
        SetLink(port, true);
    }
}

}  // namespace

DriverStatus ActivateFirmware(Port& port) {
    const PlacedRegion firmware = port.flash->memory.Regions().WithContent(RegionContent::Firmware);
    if (WasWritten(port, firmware)) {
        if (const DriverStatus status = RunFirmware(port, firmware);
            status != DriverStatus::Success) {
            return status;
        }
    }
    RunBootCode(port);
    TakeOverSettings(port);  // damaged ones are not taken over: the firmware runs all the same
    RestartLink(port);
    return DriverStatus::Success;
}

void PowerCycle(Port& port) {
    Flash& flash = *port.flash;
    flash.withoutPower = false;
    flash.failsSoon = false;
    DropStaging(port.fabric->host, flash.staging);
    StartCompanion(flash.companion);
    const FlashRegions& regions = flash.memory.Regions();
    const PlacedRegion firmware = regions.WithContent(RegionContent::Firmware);
    if (WasWritten(port, firmware) && RunFirmware(port, firmware) == DriverStatus::FirmwareState) {
        RunFirmware(port, regions.WithContent(RegionContent::RecoveryFirmware));
    }
    RunBootCode(port);
    TakeOverSettings(port);
}

}  // namespace vxemu
