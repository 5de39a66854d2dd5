// Requests about one port.
#include <cstring>

#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "properties/driver_replies.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

// While the link is down a port has no address, no speed, no active protocol and sees nobody.
properties::PortReplyBase PortBase(const Port& port) {
    const PortProfile& profile = *port.profile;
    properties::PortReplyBase base = {};
    std::memcpy(base.portName, profile.portName, sizeof base.portName);
    base.role = profile.role;
    base.state = static_cast<uint16_t>(profile.state);
    base.topology = static_cast<uint16_t>(profile.topology);
    base.supportedFc4 = profile.supportedFc4;
    base.supportedSpeeds = profile.supportedSpeeds;
    base.maxFrameSize = profile.maxFrameSize;
    base.bbCredits = profile.bbCredits;
    base.speedFlags = profile.speedFlags;
    base.npivMaximum = profile.npivMaximum;
    base.npivInUse = profile.npivInUse;
    if (port.LinkUp()) {
        std::memcpy(base.portId, profile.portId, sizeof base.portId);
        base.discoveredDevices = static_cast<uint16_t>(CountDevices(port, DeviceKind::Any));
        base.discoveredTargets = static_cast<uint16_t>(CountDevices(port, DeviceKind::Target));
        base.activeFc4 = profile.activeFc4;
        base.currentSpeed = profile.currentSpeed;
    }
    return base;
}

DriverStatus PortProperties(Exchange& exchange) {
    properties::PortReply reply = {};
    reply.base = PortBase(exchange.GetPort());
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus PortPropertiesV2(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    const PortProfile& profile = *port.profile;
    if (profile.knowsSubCode10 == 0) {
        return DriverStatus::UnsupportedSubCode;
    }
    properties::PortReplyV2 reply = {};
    reply.base = PortBase(port);
    reply.maxTargets = profile.maxTargets;
    reply.maxLunsPerTarget = profile.maxLunsPerTarget;
    reply.executionThrottle = profile.executionThrottle;
    reply.loginTimeout = profile.loginTimeout;
    reply.linkDownTimeout = profile.linkDownTimeout;
    reply.portDownRetry = profile.portDownRetry;
    std::memcpy(reply.transceiverType, profile.transceiverType, sizeof reply.transceiverType);
    reply.featureMask = profile.featureMask;
    reply.fecActive = profile.fecActive;
    reply.protocolFlags = profile.protocolFlags;
    reply.trunkState = profile.trunkState;
    reply.diagnosticState = profile.diagnosticState;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus PortDisableInfo(Exchange& exchange) {
    uint8_t request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    exchange.Reply(exchange.GetPort().profile->portDisabled);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::PortProperties, .handle = PortProperties, .flags = WithinPort},
    {.command = command::PortPropertiesV2, .handle = PortPropertiesV2, .flags = WithinPort},
    {.command = command::PortDisableInfo, .handle = PortDisableInfo, .flags = WithinPort},
};

}  // namespace

RequestRows PortRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
