#include "port_rows.h"

#include <algorithm>

#include "field_text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

Value StateValue(const PortStatus& port) {
    const Field* field = FindField(FieldScope::Port, "state", sizeof "state");
    return Value::Text(FormatField(*field, reinterpret_cast<const uint8_t*>(&port.state)))
        .In(port.state == PortState::Online ? Tone::Good : Tone::Warning);
}

}  // namespace

const Fields<PortStatus> kPortFields = {
    {"port", "Port", "PORT", kText, [](const PortStatus& p) { return PortName(p.scsiPort); }},
    {"serial", "Serial number", "SERIAL", kSerial.OrNull(),
     [](const PortStatus& p) { return std::string(p.serial); }},
    {"device_id", "Device ID", "DEVICE", kText,
     [](const PortStatus& p) { return Hex(p.deviceId, 4); }},
    {"port_name", "Port name", "PORT NAME", kWwn,
     [](const PortStatus& p) { return Wwn::Of(p.portName); }},
    {"driver", "Driver", "DRIVER", kText,
     [](const PortStatus& p) { return std::string(p.driverName); }},
    {"state", "State", "STATE", kText, StateValue},
    {"event_delivery", "Event delivery", kFlag,
     [](const PortStatus& p) { return p.delivery != 0; }},
    {"events_queued", "Events queued", "EVENTS", kInteger, &PortStatus::eventsQueued},
    {"events_dropped", "Events dropped", kInteger, &PortStatus::eventsDropped},
    {"open_handles", "Open handles", "HANDLES", kInteger, &PortStatus::openHandles},
    {"requests", "Requests served", "REQUESTS", kCounter, &PortStatus::requests},
    {"faults", "Faults", "FAULTS", kCounter, &PortStatus::faults},
};

std::span<const PortStatus> PortsOf(const StatusReply* status) {
    return status == nullptr
               ? std::span<const PortStatus>()
               : std::span(status->ports, std::min<uint32_t>(status->portCount, kMaxPorts));
}

const Fields<uint32_t> kPortNameFields = {{"port", "Port", "PORT", kText, PortName}};

}  // namespace vxemu
