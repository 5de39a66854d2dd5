// Virtual ports of a port (NPIV): they log in when its link comes up.
#include <algorithm>
#include <cstring>

#include "model/bytes/bytes.h"
#include "model/fabric/fabric.h"
#include "model/fabric/name_server.h"
#include "model/handlers.h"
#include "statistics/fabric_records.h"

namespace vxemu {
namespace {

using statistics::NpivPage;
using transport::DriverStatus;
using enum RequestFlags;

constexpr uint8_t kVirtualPortKind = 0x2E;  // first byte of their names
constexpr uint8_t kFirstDomain = 0x10;

// LS_RJT of a fabric that takes no more logins (FC-LS).
constexpr uint8_t kUnableToPerform = 0x09;
constexpr uint8_t kInsufficientResources = 0x29;

uint8_t StateOf(const Port& port) {
    if (!port.LinkUp()) {
        return HX_VIRTUAL_PORT_LINK_DOWN;
    }
    switch (port.profile->npivState) {
        case VirtualPortState::Offline:
            return HX_VIRTUAL_PORT_OFFLINE;
        case VirtualPortState::Rejected:
            return HX_VIRTUAL_PORT_REJECTED;
        default:
            return HX_VIRTUAL_PORT_ONLINE;
    }
}

HX_VIRTUAL_PORT DescribePort(const Port& port, uint32_t index) {
    const PortProfile& profile = *port.profile;
    HX_VIRTUAL_PORT record = {};
    std::memcpy(record.portName, profile.portName, sizeof record.portName);
    record.portName[0] = kVirtualPortKind;
    record.portName[7] = static_cast<uint8_t>(record.portName[7] + index);
    std::memcpy(record.nodeName, profile.nodeName, sizeof record.nodeName);
    record.state = StateOf(port);
    record.index = static_cast<uint16_t>(index);
    char name[] = "Emulated virtual port 000";
    constexpr uint32_t kDigits = sizeof name - 4;
    uint32_t at = kDigits;
    for (uint32_t unit = index >= 100 ? 100 : index >= 10 ? 10 : 1; unit != 0; unit /= 10) {
        name[at++] = static_cast<char>('0' + index / unit % 10);
    }
    name[at] = 0;
    CopyOpenText(record.symbolicName, name);
    if (record.state == HX_VIRTUAL_PORT_REJECTED) {
        record.rejectReason = kUnableToPerform;
        record.rejectExplanation = kInsufficientResources;
    } else if (record.state == HX_VIRTUAL_PORT_ONLINE) {
        record.portId[0] = static_cast<uint8_t>(kFirstDomain + profile.pciFunction);
        record.portId[1] = profile.portId[1];
        record.portId[2] = static_cast<uint8_t>(index);
        record.targets = static_cast<uint16_t>(CountDevices(port, DeviceKind::Target));
        record.secondsOnline =
            static_cast<uint32_t>((port.fabric->host.Now() - port.linkSince) / 1000);
    }
    return record;
}

HX_NPIV_ATTRIBUTES DescribeAttributes(const Port& port) {
    const PortProfile& profile = *port.profile;
    const bool fabric = port.LinkUp() && profile.topology == Topology::Fabric;
    HX_NPIV_ATTRIBUTES record = {};
    record.maximum = profile.npivMaximum;
    record.inUse = profile.npivInUse;
    record.flags = static_cast<uint16_t>((profile.npivMaximum != 0 ? HX_NPIV_FIRMWARE : 0) |
                                         (fabric ? HX_NPIV_FABRIC : 0) |
                                         (profile.npivMaximum != 0 ? HX_NPIV_ENABLED : 0));
    record.version = statistics::kListVersion;
    std::memcpy(record.portName, profile.portName, sizeof record.portName);
    std::memcpy(record.nodeName, profile.nodeName, sizeof record.nodeName);
    if (port.LinkUp()) {
        std::memcpy(record.fabricName, kSwitchName, sizeof record.fabricName);
        std::memcpy(record.portId, profile.portId, sizeof record.portId);
    }
    record.fdiscs = profile.npivInUse * port.linkUps;
    record.fdiscRejects = profile.npivState == VirtualPortState::Rejected ? record.fdiscs : 0;
    return record;
}

DriverStatus NpivAttributes(Exchange& exchange) {
    constexpr uint32_t kEntry = sizeof(HX_VIRTUAL_PORT);
    constexpr uint32_t kRoom = sizeof(NpivPage::entries) / kEntry;
    HX_NPIV_ATTRIBUTES request;
    if (exchange.InputLength() < sizeof(NpivPage) || !exchange.Read(request) ||
        request.version != statistics::kListVersion) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    HX_NPIV_ATTRIBUTES head = DescribeAttributes(port);
    head.first = request.first;
    head.count = static_cast<uint16_t>(
        request.first < head.inUse ? std::min(head.inUse - request.first, kRoom) : 0);
    exchange.StartReply(offsetof(NpivPage, entries) + head.count * kEntry);
    exchange.Put(0, &head, sizeof head);
    for (uint32_t at = 0; at < head.count; ++at) {
        const HX_VIRTUAL_PORT record = DescribePort(port, request.first + at + 1);
        exchange.Put(offsetof(NpivPage, entries) + at * kEntry, &record, sizeof record);
    }
    return DriverStatus::Success;
}

constexpr ExtendedRow kVirtualPortRequests[] = {
    {.command = transport::command::NpivAttributes, .handle = NpivAttributes, .flags = WithinPort},
};

}  // namespace

RequestRows VirtualPortRequests() {
    return {.extended = kVirtualPortRequests};
}

}  // namespace vxemu
