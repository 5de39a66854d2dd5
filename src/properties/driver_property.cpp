#include <windows.h>

#include <cstddef>
#include <cstring>

#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace properties {
namespace {

static_assert(sizeof(HX_DRIVER_PROPERTY) == 74);
static_assert(offsetof(HX_DRIVER_PROPERTY, driverModel) == 32);
static_assert(offsetof(HX_DRIVER_PROPERTY, maxTransferLength) == 38);
static_assert(offsetof(HX_DRIVER_PROPERTY, maxQueueDepth) == 46);
static_assert(offsetof(HX_DRIVER_PROPERTY, numberOfPorts) == 50);
static_assert(offsetof(HX_DRIVER_PROPERTY, buildText) == 54);
static_assert(offsetof(HX_DRIVER_PROPERTY, buildNumber) == 70);

HX_STATUS GetExtended(uint32_t handle, HX_DRIVER_PROPERTY& record) {
    DriverReply reply{};
    if (const HX_STATUS status =
            transport::Ask(handle, transport::command::DriverProperties, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(record.version, reply.version, sizeof record.version);
    record.driverModel = reply.driverModel;
    record.driverModelRevision = reply.driverModelRevision;
    record.maxScatterGather = reply.maxScatterGather;
    record.maxTransferLength = reply.maxTransferLength;
    record.maxQueueDepth = reply.maxQueueDepth;
    record.interruptMode = reply.interruptMode;
    record.numberOfPorts = reply.numberOfPorts;
    std::memcpy(record.buildText, reply.buildText, sizeof record.buildText);
    record.buildNumber = reply.buildNumber;
    return HXMGT_SUCCESS;
}

bool IsCurrentSystem() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
#if defined(_MSC_VER)
#pragma warning(suppress : 4996)
#endif
    return GetVersionExA(&version) && version.dwMajorVersion > 4;
}

// Fixed values stand for what these drivers cannot report: intended.
HX_STATUS GetLegacy(uint32_t handle, HX_DRIVER_PROPERTY& record) {
    HX_NODE_PROPERTY node{};
    if (const HX_STATUS status = GetNodeProperty(handle, &node); status != HXMGT_SUCCESS) {
        return status;
    }
    static_assert(sizeof record.version == sizeof node.driverVersion);
    std::memcpy(record.version, node.driverVersion, sizeof record.version);
    record.driverModel = IsCurrentSystem() ? 1 : 8;
    record.driverModelRevision = 0;
    record.maxScatterGather = 256;
    record.maxTransferLength = 0x2000000;
    record.maxQueueDepth = 0;
    record.interruptMode = 0;
    record.numberOfPorts = node.numberOfPorts;
    std::memset(record.buildText, 0, sizeof record.buildText);
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetDriverProperty(uint32_t handle, HX_DRIVER_PROPERTY* record) {
    if (const HX_STATUS status = CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return TakesExtendedRequests(handle) ? GetExtended(handle, *record)
                                         : GetLegacy(handle, *record);
}

}  // namespace properties
