#include "port_rows.h"

#include <algorithm>

#include "common/text.h"
#include "field_text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

using tools::kFlag;
using tools::kInteger;
using tools::kText;
using tools::Tone;
using tools::Value;

Value StateValue(const PortStatus& port) {
    const Field* field = FindField(FieldScope::Port, "state", sizeof "state");
    return Value::Text(FormatField(*field, reinterpret_cast<const uint8_t*>(&port.state)))
        .In(port.state == PortState::Online ? Tone::Good : Tone::Warning);
}

}  // namespace

const tools::Fields<PortStatus>& PortFields() {
    static const tools::Fields<PortStatus> kFields = {
        {"port", "Port", "PORT", kText, [](const PortStatus& p) { return PortName(p.scsiPort); }},
        {"serial", "Serial number", "SERIAL", tools::kSerial.OrNull(),
         [](const PortStatus& p) { return std::string(p.serial); }},
        {"device_id", "Device ID", "DEVICE", kText,
         [](const PortStatus& p) { return tools::Hex(p.deviceId, 4); }},
        {"port_name", "Port name", "PORT NAME", tools::kWwn,
         [](const PortStatus& p) { return tools::Wwn::Of(p.portName); }},
        {"driver", "Driver", "DRIVER", kText,
         [](const PortStatus& p) { return std::string(p.driverName); }},
        {"state", "State", "STATE", kText, StateValue},
        {"event_delivery", "Event delivery", kFlag,
         [](const PortStatus& p) { return p.delivery != 0; }},
        {"events_queued", "Events queued", "EVENTS", kInteger, &PortStatus::eventsQueued},
        {"events_dropped", "Events dropped", kInteger, &PortStatus::eventsDropped},
        {"open_handles", "Open handles", "HANDLES", kInteger, &PortStatus::openHandles},
        {"requests", "Requests served", "REQUESTS", tools::kCounter, &PortStatus::requests},
        {"faults", "Faults", "FAULTS", tools::kCounter, &PortStatus::faults},
    };
    return kFields;
}

std::span<const PortStatus> PortsOf(const StatusReply* status) {
    return status == nullptr
               ? std::span<const PortStatus>()
               : std::span(status->ports, std::min<uint32_t>(status->portCount, kMaxPorts));
}

const tools::Fields<uint32_t>& PortNameFields() {
    static const tools::Fields<uint32_t> kFields = {{"port", "Port", "PORT", kText, PortName}};
    return kFields;
}

}  // namespace vxemu
