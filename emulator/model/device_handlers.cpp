// Discovered devices and the port database.
#include <cstring>

#include "hxpersist.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "properties/port_database_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

HX_DISCOVERED_DEVICE DiscoveredDevice(const Port& port, const TargetProfile& device) {
    HX_DISCOVERED_DEVICE record = {};
    std::memcpy(record.nodeName, device.nodeName, sizeof record.nodeName);
    std::memcpy(record.portName, device.portName, sizeof record.portName);
    std::memcpy(record.portId, device.portId, sizeof record.portId);
    const Attachment& attachment = AttachmentOf(port, device);
    record.bindingFlags = attachment.bindingFlags;
    record.bus = attachment.bus;
    record.target = attachment.target;
    return record;
}

properties::PortDatabaseEntry DatabaseEntry(const Port& port, const TargetProfile& device) {
    properties::PortDatabaseEntry entry = {};
    const HX_DISCOVERED_DEVICE common = DiscoveredDevice(port, device);
    static_assert(offsetof(properties::PortDatabaseEntry, reserved26) == sizeof common);
    std::memcpy(&entry, &common, sizeof common);
    entry.roleAndState = device.roleAndState;
    entry.targetNumber = LoopIdOf(port, device);
    entry.portFlags = device.portFlags;
    std::memcpy(entry.symbolicName, device.symbolicName, sizeof device.symbolicName);
    return entry;
}

const TargetProfile* AskedDevice(const Exchange& exchange, DeviceKind kind) {
    properties::DiscoveredRequest request;
    return exchange.Read(request) ? NthDevice(exchange.GetPort(), kind, request.index) : nullptr;
}

DriverStatus DiscoveredPort(Exchange& exchange) {
    const TargetProfile* device = AskedDevice(exchange, DeviceKind::Any);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    HX_DISCOVERED_PORT reply = {};
    reply.device = DiscoveredDevice(exchange.GetPort(), *device);
    exchange.Reply(reply);
    return DriverStatus::Success;
}

DriverStatus DiscoveredTarget(Exchange& exchange) {
    const TargetProfile* device = AskedDevice(exchange, DeviceKind::Target);
    if (device == nullptr) {
        return DriverStatus::DeviceNotFound;
    }
    HX_DISCOVERED_TARGET reply = {};
    reply.device = DiscoveredDevice(exchange.GetPort(), *device);
    reply.numberOfLuns = CountLuns(exchange.GetPort(), *device);
    exchange.Reply(reply);
    return DriverStatus::Success;
}

// Every device, whatever type is asked for.
DriverStatus PortDatabase(Exchange& exchange) {
    properties::PortDatabaseRequest request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    const properties::PortDatabaseHeader header = {request.type,
                                                   CountDevices(port, DeviceKind::Any)};
    constexpr uint32_t kEntry = sizeof(properties::PortDatabaseEntry);
    exchange.StartReply(sizeof header + header.count * kEntry);
    exchange.Put(0, &header, sizeof header);
    for (uint32_t at = 0; at < header.count; ++at) {
        const properties::PortDatabaseEntry entry =
            DatabaseEntry(port, *NthDevice(port, DeviceKind::Any, at));
        exchange.Put(sizeof header + at * kEntry, &entry, kEntry);
    }
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::DiscoveredPort, .handle = DiscoveredPort, .flags = WithinPort},
    {.command = command::DiscoveredTarget, .handle = DiscoveredTarget, .flags = WithinPort},
    {.command = command::PortDatabase, .handle = PortDatabase, .flags = WithinPort},
};

}  // namespace

RequestRows DeviceRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
