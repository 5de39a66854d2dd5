#include <cstddef>
#include <cstring>

#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace properties {
namespace {

static_assert(sizeof(HX_FIRMWARE_PROPERTY) == 40);
static_assert(offsetof(HX_FIRMWARE_PROPERTY, attributes) == 32);
static_assert(offsetof(HX_FIRMWARE_PROPERTY, activationAttributes) == 36);

HX_STATUS GetExtended(uint32_t handle, HX_FIRMWARE_PROPERTY& record) {
    FirmwareReply reply{};
    if (const HX_STATUS status =
            transport::Ask(handle, transport::command::FirmwareProperties, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(record.version, reply.version, sizeof record.version);
    record.attributes = reply.attributes;
    record.activationAttributes = reply.activationAttributes;
    return HXMGT_SUCCESS;
}

// activationAttributes is left as the caller had it: intended.
HX_STATUS GetLegacy(uint32_t handle, HX_FIRMWARE_PROPERTY& record) {
    HX_NODE_PROPERTY node{};
    if (const HX_STATUS status = GetNodeProperty(handle, &node); status != HXMGT_SUCCESS) {
        return status;
    }
    static_assert(sizeof record.version == sizeof node.firmwareVersion);
    std::memcpy(record.version, node.firmwareVersion, sizeof record.version);
    record.attributes = node.firmwareAttributes;
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetFirmwareProperty(uint32_t handle, HX_FIRMWARE_PROPERTY* record) {
    if (const HX_STATUS status = CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return TakesExtendedRequests(handle) ? GetExtended(handle, *record)
                                         : GetLegacy(handle, *record);
}

HX_STATUS VerifyHbaState(uint32_t handle) {
    HX_FIRMWARE_PROPERTY firmware{};
    return GetFirmwareProperty(handle, &firmware) == HXMGT_SUCCESS ? HXMGT_SUCCESS
                                                                   : HXMGT_FIRMWARE_STATE_INVALID;
}

}  // namespace properties
