#include "port_rows.h"

#include "common/text.h"
#include "field_text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

using tools::Record;
using tools::Tone;
using tools::Value;

std::string StateName(const PortState& state) {
    const Field* field = FindField(FieldScope::Port, "state", sizeof "state");
    return FormatField(*field, reinterpret_cast<const uint8_t*>(&state));
}

Record PortRow(const PortStatus& port) {
    Record row;
    row.Add("port", "Port", Value::Text(PortName(port.scsiPort)), "PORT");
    row.Add("serial", "Serial number", Value::Serial(port.serial), "SERIAL");
    row.Add("device_id", "Device ID", Value::Text(tools::Hex(port.deviceId, 4)), "DEVICE");
    row.Add("port_name", "Port name", Value::Name(tools::Wwn::Of(port.portName)), "PORT NAME");
    row.Add("driver", "Driver", Value::Text(port.driverName), "DRIVER");
    row.Add("state", "State",
            Value::Text(StateName(port.state))
                .In(port.state == PortState::Online ? Tone::Good : Tone::Warning),
            "STATE");
    row.Add("event_delivery", "Event delivery", Value::Flag(port.delivery != 0));
    row.Add("events_queued", "Events queued", Value::Number(port.eventsQueued), "EVENTS");
    row.Add("events_dropped", "Events dropped", Value::Number(port.eventsDropped));
    row.Add("open_handles", "Open handles", Value::Number(port.openHandles), "HANDLES");
    row.Add("requests", "Requests served", Value::Number(port.requests), "REQUESTS");
    row.Add("faults", "Faults", Value::Number(port.faults), "FAULTS");
    return row;
}

}  // namespace

void AddPortList(const StatusReply& status, Record& result) {
    std::vector<Record> rows;
    for (uint32_t index = 0; index < status.portCount && index < kMaxPorts; ++index) {
        rows.push_back(PortRow(status.ports[index]));
    }
    result.AddList("ports", "Ports", tools::ListLayout::Table, PortRow({}), "No ports.",
                   std::move(rows));
}

}  // namespace vxemu
