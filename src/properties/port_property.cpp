#include <algorithm>
#include <cstddef>
#include <cstring>

#include "properties/adapter_texts.h"
#include "properties/driver_replies.h"
#include "properties/generation.h"
#include "properties/legacy_targets.h"
#include "properties/properties.h"
#include "transport/requests.h"

namespace properties {
namespace {

static_assert(sizeof(HX_PORT_PROPERTY) == 112);
static_assert(offsetof(HX_PORT_PROPERTY, portId) == 8);
static_assert(offsetof(HX_PORT_PROPERTY, role) == 11);
static_assert(offsetof(HX_PORT_PROPERTY, state) == 12);
static_assert(offsetof(HX_PORT_PROPERTY, topology) == 13);
static_assert(offsetof(HX_PORT_PROPERTY, discoveredDevices) == 14);
static_assert(offsetof(HX_PORT_PROPERTY, discoveredTargets) == 16);
static_assert(offsetof(HX_PORT_PROPERTY, deviceName) == 18);
static_assert(offsetof(HX_PORT_PROPERTY, currentSpeed) == 50);
static_assert(offsetof(HX_PORT_PROPERTY, maxFrameSize) == 54);
static_assert(offsetof(HX_PORT_PROPERTY, supportedSpeeds) == 62);
static_assert(offsetof(HX_PORT_PROPERTY, maxTargets) == 82);
static_assert(offsetof(HX_PORT_PROPERTY, loginTimeout) == 90);
static_assert(offsetof(HX_PORT_PROPERTY, transceiverType) == 98);
static_assert(offsetof(HX_PORT_PROPERTY, fecActive) == 100);
static_assert(offsetof(HX_PORT_PROPERTY, featureMask) == 102);
static_assert(offsetof(HX_PORT_PROPERTY, nvmeEnabled) == 106);
static_assert(offsetof(HX_PORT_PROPERTY, diagnosticState) == 108);

// Driver values behind the record's enumerations.
constexpr uint16_t kReplyOffline = 1;
constexpr uint16_t kReplyLinkDown = 2;
constexpr uint16_t kReplyPointToPoint = 1;
constexpr uint16_t kReplyFabric = 4;
constexpr uint16_t kReplyInitiator = 1;
constexpr uint8_t kProtocolFcp = 1;  // bit numbers of PortReplyV2::protocolFlags
constexpr uint8_t kProtocolNvme = 2;

uint8_t StateOf(uint16_t replyState) {
    switch (replyState) {
        case kReplyOffline:
            return HX_PORT_STATE_OFFLINE;
        case kReplyLinkDown:
            return HX_PORT_STATE_LINK_DOWN;
        default:
            return HX_PORT_STATE_ONLINE;
    }
}

void PutDeviceName(const HXMGT_API_HANDLE& device, HX_PORT_PROPERTY& record) {
    const std::string_view name = TextOf(device.szDeviceName);
    const size_t length = std::min(name.size(), sizeof record.deviceName - 1);
    std::memcpy(record.deviceName, name.data(), length);
    record.deviceName[length] = 0;
}

bool HasFirmwareWithSpeeds(uint32_t handle) {
    HX_NODE_PROPERTY node{};
    return GetNodeProperty(handle, &node) == HXMGT_SUCCESS &&
           FirmwareReportsSpeeds(TextOf(node.firmwareVersion));
}

// What both versions of the extended reply give.
void PutBase(uint32_t handle, const HXMGT_API_HANDLE& device, const PortReplyBase& reply,
             HX_PORT_PROPERTY& record) {
    std::memcpy(record.portName, reply.portName, sizeof record.portName);
    std::memcpy(record.portId, reply.portId, sizeof record.portId);
    record.role = reply.role == kReplyInitiator ? 1 : 2;
    record.state = StateOf(reply.state);
    record.topology =
        reply.topology == kReplyPointToPoint || reply.topology == kReplyFabric ? 1 : 2;
    record.discoveredDevices = reply.discoveredDevices;
    record.discoveredTargets = reply.discoveredTargets;
    PutDeviceName(device, record);
    record.maxFrameSize = reply.maxFrameSize;
    record.bbCredits = reply.bbCredits;
    record.npivMaximum = reply.npivMaximum;
    record.npivInUse = reply.npivInUse;
    if (HasFirmwareWithSpeeds(handle)) {
        record.currentSpeed = reply.currentSpeed;
        record.supportedSpeeds = reply.supportedSpeeds;
    }
}

uint8_t BitOf(uint8_t value, uint8_t bit) {
    return (value >> bit) & 1;
}

void PutSecondVersion(const PortReplyV2& reply, HX_PORT_PROPERTY& record) {
    record.maxTargets = reply.maxTargets;
    record.maxLunsPerTarget = reply.maxLunsPerTarget;
    record.executionThrottle = reply.executionThrottle;
    record.loginTimeout = reply.loginTimeout;
    record.linkDownTimeout = reply.linkDownTimeout;
    record.portDownRetry = reply.portDownRetry;
    std::memcpy(record.transceiverType, reply.transceiverType, sizeof record.transceiverType);
    record.fecActive = reply.fecActive;
    record.trunkState = reply.trunkState;
    record.featureMask = reply.featureMask;
    record.nvmeEnabled = BitOf(reply.protocolFlags, kProtocolNvme);
    record.fcpEnabled = BitOf(reply.protocolFlags, kProtocolFcp);
    record.diagnosticState = reply.diagnosticState;
}

HX_STATUS GetLegacy(uint32_t handle, const HXMGT_API_HANDLE& device, HX_PORT_PROPERTY& record) {
    LegacyAdapterReply adapter{};
    HX_STATUS status = transport::AskLegacy(handle, LegacySelector::AdapterInformation, adapter);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(record.portId, adapter.portId, sizeof record.portId);

    LegacyTargets targets;
    status = targets.Fetch(handle);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    record.discoveredDevices = static_cast<uint16_t>(
        std::count_if(targets.Entries().begin(), targets.Entries().end(), IsValid));
    record.discoveredTargets = record.discoveredDevices;

    LegacyPortAndNodeReply names{};
    status = transport::AskPlain(handle, transport::command::LegacyPortAndNode, names);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    std::memcpy(record.portName, names.worldWideName, sizeof record.portName);
    record.topology = (names.portType >> 4) & 7;
    record.role = 0;
    PutDeviceName(device, record);

    LegacyLinkReply link{};
    status = transport::AskLegacy(handle, LegacySelector::LinkValue, link);
    // With the link up the state keeps what the caller had there: intended, not to be cleared.
    if (status == HXMGT_SUCCESS && link.linkValue < kLegacyLinkUp) {
        record.state = HX_PORT_STATE_LINK_DOWN;
    }
    return status;
}

}  // namespace

HX_STATUS GetPortPropertyV1(uint32_t handle, HX_PORT_PROPERTY* record) {
    HXMGT_API_HANDLE device;
    if (const HX_STATUS status = CheckQuery(handle, record, device); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!TakesExtendedRequests(device)) {
        return GetLegacy(handle, device, *record);
    }
    PortReply reply{};
    const HX_STATUS status = transport::Ask(handle, transport::command::PortProperties, reply);
    if (status == HXMGT_SUCCESS) {
        PutBase(handle, device, reply.base, *record);
    }
    return status;
}

HX_STATUS GetPortPropertyV2(uint32_t handle, HX_PORT_PROPERTY* record) {
    HXMGT_API_HANDLE device;
    if (const HX_STATUS status = CheckQuery(handle, record, device); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!TakesExtendedRequests(device)) {
        return GetLegacy(handle, device, *record);
    }
    PortReplyV2 reply{};
    const HX_STATUS status = transport::Ask(handle, transport::command::PortPropertiesV2, reply);
    if (status == HXMGT_SUCCESS) {
        PutBase(handle, device, reply.base, *record);
        PutSecondVersion(reply, *record);
    }
    return status;
}

HX_STATUS GetPortProperty(uint32_t handle, HX_PORT_PROPERTY* record) {
    const HX_STATUS status = GetPortPropertyV2(handle, record);
    return status == HXMGT_INVALID_SUBCODE ? GetPortPropertyV1(handle, record) : status;
}

HX_STATUS GetPortDisableInfo(uint32_t handle) {
    constexpr uint8_t kDisabled = 1;

    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    uint8_t state = 0;
    if (transport::Exchange(handle, transport::command::PortDisableInfo, state, state) !=
        HXMGT_SUCCESS) {
        return HXMGT_INVALID_REQUEST;  // for a failure of any kind: intended
    }
    return state == kDisabled ? HXMGT_PORT_DISABLED : HXMGT_SUCCESS;
}

}  // namespace properties
