#include <cstddef>
#include <cstring>

#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace properties {
namespace {

static_assert(sizeof(HX_CHIP_PROPERTY) == 80);
static_assert(offsetof(HX_CHIP_PROPERTY, baseAddresses) == 12);
static_assert(offsetof(HX_CHIP_PROPERTY, pciCommand) == 28);
static_assert(offsetof(HX_CHIP_PROPERTY, linkCapabilities) == 48);
static_assert(offsetof(HX_CHIP_PROPERTY, busLocation) == 52);
static_assert(offsetof(HX_CHIP_PROPERTY, functionBits) == 56);
static_assert(offsetof(HX_CHIP_PROPERTY, flashRegionCode) == 58);

HX_STATUS GetExtended(uint32_t handle, HX_CHIP_PROPERTY& record) {
    ChipReply reply{};
    if (const HX_STATUS status = transport::Ask(handle, transport::command::ChipProperties, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    record.vendorId = reply.vendorId;
    record.deviceId = reply.deviceId;
    record.subsystemVendorId = reply.subsystemVendorId;
    record.subsystemDeviceId = reply.subsystemDeviceId;
    record.revision = reply.revision;
    record.classWord = reply.classWord;
    std::memcpy(record.baseAddresses, reply.baseAddresses, sizeof record.baseAddresses);
    record.pciCommand = reply.pciCommand;
    record.pciStatus = reply.pciStatus;
    record.linkCapabilities = reply.linkCapabilities;
    record.linkStatus = reply.linkStatus;
    record.busLocation = reply.busLocation;
    record.functionBits = reply.functionBits;
    record.flashRegionFlag = reply.flashRegionFlag;
    record.flashRegionCode = reply.flashRegionCode;
    return HXMGT_SUCCESS;
}

HX_STATUS GetLegacy(uint32_t handle, HX_CHIP_PROPERTY& record) {
    LegacyChipReply reply{};
    if (const HX_STATUS status = transport::AskLegacy(handle, LegacySelector::ChipIdentity, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    record.vendorId = reply.vendorId;
    record.deviceId = reply.deviceId;
    record.subsystemVendorId = reply.subsystemVendorId;
    record.subsystemDeviceId = reply.subsystemDeviceId;
    record.revision = reply.revision;
    record.classWord = reply.classWord;
    std::memset(record.baseAddresses, 0, sizeof record.baseAddresses);
    record.pciCommand = 0;
    record.pciStatus = reply.pciStatus;
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetChipProperty(uint32_t handle, HX_CHIP_PROPERTY* record) {
    if (const HX_STATUS status = CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return TakesExtendedRequests(handle) ? GetExtended(handle, *record)
                                         : GetLegacy(handle, *record);
}

}  // namespace properties
