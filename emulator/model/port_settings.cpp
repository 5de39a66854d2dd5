#include "model/port_settings.h"

#include <cstring>

#include "model/fabric/fabric.h"
#include "model/storage/nvram_content.h"
#include "model/storage/port_eeprom.h"

namespace vxemu {
namespace {

using flash::Bank;
using properties::ChipTrait;
using transport::DriverStatus;

bool IsBanked(const Port& port) {
    return ChipOf(port).Has(ChipTrait::Banked);
}

Bank OtherBank(const Port& port) {
    return ActiveBank(port) == Bank::First ? Bank::Second : Bank::First;
}

bool Overlaps(const PlacedRegion& placed, uint32_t offset, uint32_t length) {
    return placed && length != 0 && placed.start < offset + length && offset < placed.End();
}

uint32_t ReadRegion(const Port& port, const PlacedRegion& placed, uint8_t* block) {
    if (!placed) {
        return 0;
    }
    port.flash->memory.Read(placed.start, block, placed.region->size);
    return placed.region->size;
}

bool BankHolds(const Port& port, Bank bank) {
    uint8_t block[kSettingsBytes];
    const uint32_t length =
        ReadRegion(port, SettingsRegion(port, flash::kNvramRegions, bank), block);
    return NvramHolds({block, length});
}

// Brings what only the bank in use has into the other one, as a switch is for all of a port's
// settings.
bool CopyToOtherBank(Port& port, const flash::PortRegionRules& rules) {
    const PlacedRegion from = SettingsRegion(port, rules, ActiveBank(port));
    const PlacedRegion to = SettingsRegion(port, rules, OtherBank(port));
    uint8_t block[kSettingsBytes];
    const uint32_t length = ReadRegion(port, from, block);
    return !to || length != to.region->size || StoreBytes(port, to.start, block, length);
}

DriverStatus SwitchBank(Port& port) {
    if (port.nvramWaits && !BankHolds(port, OtherBank(port))) {
        return DriverStatus::NvramChecksum;
    }
    if ((!port.nvramWaits && !CopyToOtherBank(port, flash::kNvramRegions)) ||
        (!port.vpdWaits && !CopyToOtherBank(port, flash::kVpdRegions))) {
        return DriverStatus::OutOfMemory;
    }
    port.secondBank = port.secondBank == 0 ? 1 : 0;
    port.nvramWaits = false;
    port.vpdWaits = false;
    NoteStored(port);
    return DriverStatus::Success;
}

}  // namespace

properties::Chip ChipOf(const Port& port) {
    return properties::ChipOf(port.adapter->deviceId);
}

PlacedRegion SettingsRegion(const Port& port, const flash::PortRegionRules& rules, Bank bank) {
    const PortProfile& profile = *port.profile;
    const flash::PortIdentity identity = {ChipOf(port),
                                          static_cast<uint8_t>(profile.pciFunction << 5),
                                          profile.flashRegionFlag, profile.flashRegionCode};
    const auto code = flash::RegionOfPort(rules, identity, bank);
    return code ? port.flash->memory.Regions().WithCode(*code) : PlacedRegion{};
}

uint32_t ReadNvram(Port& port, uint8_t* block) {
    if (flash::HasPortRegions(ChipOf(port))) {
        return ReadRegion(port, SettingsRegion(port, flash::kNvramRegions, ActiveBank(port)),
                          block);
    }
    const PortEeprom* eeprom = EepromOf(port);
    if (eeprom == nullptr) {
        return 0;
    }
    std::memcpy(block, eeprom->nvram, sizeof eeprom->nvram);
    return sizeof eeprom->nvram;
}

uint32_t ReadVpd(Port& port, uint8_t* block) {
    if (flash::HasPortRegions(ChipOf(port))) {
        return ReadRegion(port, SettingsRegion(port, flash::kVpdRegions, ActiveBank(port)), block);
    }
    const PortEeprom* eeprom = EepromOf(port);
    if (eeprom == nullptr) {
        return 0;
    }
    std::memcpy(block, eeprom->vpd, sizeof eeprom->vpd);
    return sizeof eeprom->vpd;
}

void NoteSettingsWritten(Port& writer, uint32_t offset, uint32_t length) {
    ForEachHostPort(*writer.fabric, [&](Port& port) {
        if (port.flash != writer.flash) {
            return;
        }
        const auto written = [&](const flash::PortRegionRules& rules, Bank bank) {
            return Overlaps(SettingsRegion(port, rules, bank), offset, length);
        };
        if (written(flash::kNvramRegions, ActiveBank(port))) {
            port.nvramChanged = true;
        }
        if (IsBanked(port)) {
            port.nvramWaits |= written(flash::kNvramRegions, OtherBank(port));
            port.vpdWaits |= written(flash::kVpdRegions, OtherBank(port));
        }
    });
}

DriverStatus TakeOverSettings(Port& port) {
    const bool switches = port.nvramWaits || port.vpdWaits;
    const bool changes = port.nvramWaits || port.nvramChanged;
    if (switches) {
        if (const DriverStatus status = SwitchBank(port); status != DriverStatus::Success) {
            return status;
        }
    }
    if (!changes) {
        return DriverStatus::Success;
    }
    uint8_t block[kSettingsBytes];
    const uint32_t length = ReadNvram(port, block);
    if (!NvramHolds({block, length})) {
        return DriverStatus::NvramChecksum;
    }
    ApplyNvram({block, length}, *port.profile);
    port.nvramChanged = false;
    return DriverStatus::Success;
}

void UseOtherBank(Port& port) {
    if (!IsBanked(port)) {
        return;
    }
    port.secondBank = port.secondBank == 0 ? 1 : 0;
    port.nvramWaits = false;
    port.vpdWaits = false;
    port.nvramChanged = true;
    TakeOverSettings(port);
    NoteStored(port);
}

}  // namespace vxemu
