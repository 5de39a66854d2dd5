#include "port_rows.h"

#include <algorithm>
#include <iterator>

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
    {"flash_file", "Flash file", Choice(kFlashFileStates),
     [](const PortStatus& p) { return FlashFileState(p.flash); }},
};

std::span<const PortStatus> PortsOf(const StatusReply* status) {
    return status == nullptr
               ? std::span<const PortStatus>()
               : std::span(status->ports, std::min<uint32_t>(status->portCount, kMaxPorts));
}

const char* FlashFileState(FlashKeep keep) {
    const auto index = static_cast<size_t>(keep);
    return kFlashFileStates[index < std::size(kFlashFileStates) ? index : 0];
}

void WarnOfFlash(Invocation& invocation, const StatusReply& status) {
    static constexpr const char* kNotUsed =
        "; it is not used, the flash began as delivered, and what is written to it goes with the "
        "driver";
    static constexpr struct {
        FlashKeep keep;
        const char* what;
        const char* then;
    } kRows[] = {
        {FlashKeep::Foreign, "is of another adapter, or of one delivered with something else",
         kNotUsed},
        {FlashKeep::Truncated, "has been cut short", kNotUsed},
        {FlashKeep::Damaged, "is damaged", kNotUsed},
        {FlashKeep::Failed, "cannot be read or written",
         "; what is written to the flash goes with the driver"},
    };
    uint64_t told = 0;  // adapters, by their bits
    for (const PortStatus& port : PortsOf(&status)) {
        const uint64_t adapter = 1ull << port.adapter % 64;
        for (const auto& row : kRows) {
            if (port.flash == row.keep && (told & adapter) == 0) {
                told |= adapter;
                const std::string name = PortName(port.scsiPort);
                invocation.Warn(name + ": the file of its flash " + row.what + row.then,
                                "`vxemu flash reset " + name + "` begins a new one");
            }
        }
    }
}

const Fields<uint32_t> kPortNameFields = {{"port", "Port", "PORT", kText, PortName}};

}  // namespace vxemu
