#include "statistics/query.h"

#include "frame/handle_table.h"
#include "properties/properties.h"

namespace statistics {

static_assert(kExtended == frame::kExtendedRequestsVersion);

namespace {

HX_STATUS CheckDriver(uint32_t version, uint32_t least) {
    if (least != kAnyDriver && version < kExtended) {
        return HXMGT_NOT_SUPPORTED;
    }
    return version < least ? HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER : HXMGT_SUCCESS;
}

HX_STATUS CheckChip(uint32_t handle, properties::ChipTrait trait) {
    if (trait == properties::ChipTrait::None) {
        return HXMGT_SUCCESS;
    }
    HX_CHIP_PROPERTY chip{};
    if (const HX_STATUS status = properties::GetChipProperty(handle, &chip);
        status != HXMGT_SUCCESS) {
        return status;
    }
    return properties::ChipOf(chip.deviceId).Has(trait) ? HXMGT_SUCCESS : HXMGT_NOT_SUPPORTED;
}

}  // namespace

HX_STATUS Check(uint32_t handle, const Needs& needs, bool pointersGiven, uint32_t* driver) {
    const std::optional<HXMGT_API_HANDLE> device = frame::CopyOfRecord(handle);
    if (!device) {
        return HXMGT_INVALID_HANDLE;
    }
    if (!pointersGiven) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (driver != nullptr) {
        *driver = device->dwDriverVersion;
    }
    const HX_STATUS status = CheckDriver(device->dwDriverVersion, needs.driver);
    return status == HXMGT_SUCCESS ? CheckChip(handle, needs.chips) : status;
}

HX_STATUS PutTarget(const DESTINATIONADDRESS* destination, properties::AddressBlock& block) {
    block = {};
    if (destination == nullptr) {
        return HXMGT_SUCCESS;
    }
    const std::optional<properties::AddressBlock> named = properties::BlockOf(*destination);
    block = named.value_or(block);
    return named.has_value() ? HXMGT_SUCCESS : HXMGT_INVALID_PARAMETER;
}

HX_STATUS PutNumbered(const DESTINATIONADDRESS& target, DESTINATIONADDRESS& numbered) {
    const properties::AddressKind* const kind = properties::KindOf(target);
    if (kind == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    numbered = target;
    numbered.type = static_cast<uint16_t>(kind->driverType);
    return HXMGT_SUCCESS;
}

}  // namespace statistics
