#include "flash/port_region.h"

#include <optional>

#include "flash/flash.h"
#include "flash/flash_records.h"
#include "flash/layout.h"
#include "properties/properties.h"

namespace flash {

HX_STATUS IdentifyPort(uint32_t handle, PortIdentity& port) {
    HX_CHIP_PROPERTY chip{};
    const HX_STATUS status = properties::GetChipProperty(handle, &chip);
    port = {properties::ChipOf(chip.deviceId), chip.functionBits, chip.flashRegionFlag,
            chip.flashRegionCode};
    return status;
}

HX_STATUS ChoosePortRegion(uint32_t handle, const PortRegionRules& rules, const PortIdentity& port,
                           Direction direction, uint32_t& regionCode) {
    Bank bank = Bank::First;
    if (port.chip.Has(properties::ChipTrait::Banked) && !UsesOwnRegion(rules, port)) {
        uint8_t active[kActiveRegionsReturned] = {};
        // A query that fails, or that a disabled port refuses, tells no second bank: intended.
        const bool secondIsActive = GetActiveRegions(handle, active) == HXMGT_SUCCESS &&
                                    active[kActiveBankByte] == kSecondBank;
        bank = BankOf(direction, secondIsActive);
    }
    const std::optional<uint32_t> code = RegionOfPort(rules, port, bank);
    regionCode = code.value_or(0);
    return code ? HXMGT_SUCCESS : HXMGT_INVALID_REQUEST;
}

HX_STATUS FindPortRegion(uint32_t handle, const PortRegionRules& rules, const PortIdentity& port,
                         Direction direction, FoundRegion& region) {
    if (const HX_STATUS status = ChoosePortRegion(handle, rules, port, direction, region.code);
        status != HXMGT_SUCCESS) {
        return status;
    }
    RegionTable table;
    if (const HX_STATUS status = table.Load(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::optional<uint32_t> size = SizeOfRegion(table.Reported(), region.code);
    region.size = size.value_or(0);
    return size ? HXMGT_SUCCESS : HXMGT_INVALID_REQUEST;
}

}  // namespace flash
