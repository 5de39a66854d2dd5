// npiv list: virtual ports.
#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/fc_els.h"
#include "vxmgr/fabric/virtual_ports.h"
#include "vxmgr/targets/qos_levels.h"

namespace vxmgr {
namespace {

using VirtualPort = HX_VIRTUAL_PORT;
using NpivAttributes = HX_NPIV_ATTRIBUTES;

constexpr const char* kVirtualStates[] = {"online", "offline", "rejected", "link_down"};

struct NpivRow {
    const Port* port = nullptr;
    std::optional<VirtualPorts> known = std::nullopt;

    const NpivAttributes* Attributes() const { return known ? &known->attributes : nullptr; }
    std::vector<VirtualPort> Ports() const {
        return known ? known->ports : std::vector<VirtualPort>();
    }
};

Value VirtualStateValue(const VirtualPort& port) {
    static constexpr Tone kTones[] = {Tone::Good, Tone::Plain, Tone::Bad, Tone::Bad};
    static constexpr const char* kShown[] = {"online", "offline", "rejected", "link down"};
    const char* const key = NameAt(kVirtualStates, port.state, HX_VIRTUAL_PORT_ONLINE);
    return key == nullptr ? Value()
                          : Value::Text(key)
                                .Shown(kShown[port.state - HX_VIRTUAL_PORT_ONLINE])
                                .In(kTones[port.state - HX_VIRTUAL_PORT_ONLINE]);
}

// Why the fabric refused it.
std::optional<std::string> RejectOf(const VirtualPort& port) {
    return port.state == HX_VIRTUAL_PORT_REJECTED
               ? std::optional(ElsReasonText(port.rejectReason, port.rejectExplanation))
               : std::nullopt;
}

std::optional<uint32_t> VirtualPortId(const VirtualPort& port) {
    const uint32_t id = PortIdOf(port.portId);
    return id != 0 ? std::optional(id) : std::nullopt;
}

const Fields<VirtualPort> kVirtualPortFields = {
    {"index", "Index", "INDEX", kInteger, Packed<&VirtualPort::index>},
    {"port_wwn", "Port name", "PORT NAME", kWwn.OrNull(), WwnOf<&VirtualPort::portName>},
    {"node_wwn", "Node name", kWwn.OrNull(), WwnOf<&VirtualPort::nodeName>},
    {"port_id", "Port identifier", "PORT ID", Hexadecimal(6).OrNull(), VirtualPortId},
    {"state", "State", "STATE", Choice(kVirtualStates).OrNull(), VirtualStateValue},
    {"level", "Priority", "LEVEL", Choice(kQosLevels).OrNull(),
     [](const VirtualPort& port) { return NameAt(kQosLevels, Packed<&VirtualPort::level>(port)); }},
    {"targets", "Targets", "TARGETS", kInteger, Packed<&VirtualPort::targets>},
    {"reject", "Rejected", kText.OrNull(), RejectOf, "why the fabric rejected it"},
    {"seconds_online", "Online", Integer("s"), Packed<&VirtualPort::secondsOnline>},
    {"symbolic_name", "Name", "NAME", kText.OrNull(), TextOf<&VirtualPort::symbolicName>},
};

template <class Get>
constexpr auto Attribute(Get get) {
    return Of(&NpivRow::Attributes, get);
}

const Fields<NpivRow> kNpivFields = {
    {PortKeys(kPortIndex | kOldSerialKey), &NpivRow::port},
    {"supported", "Supported", kFlag.OrNull(),
     Attribute(Bit<&NpivAttributes::flags, HX_NPIV_FIRMWARE>), "by the firmware"},
    {"fabric_supports", "Fabric supports it", kFlag.OrNull(),
     Attribute(Bit<&NpivAttributes::flags, HX_NPIV_FABRIC>)},
    {"enabled", "Enabled", kFlag.OrNull(), Attribute(Bit<&NpivAttributes::flags, HX_NPIV_ENABLED>)},
    {"maximum", "Maximum", kInteger.OrNull(), Attribute(Packed<&NpivAttributes::maximum>),
     "virtual ports that there can be"},
    {"in_use", "In use", kInteger.OrNull(), Attribute(Packed<&NpivAttributes::inUse>)},
    {"fabric_wwn", "Fabric name", kWwn.OrNull(), Attribute(WwnOf<&NpivAttributes::fabricName>)},
    {"fdiscs", "FDISCs", kCounter.OrNull(), Attribute(Packed<&NpivAttributes::fdiscs>),
     "FDISC link services sent"},
    {"fdisc_rejects", "FDISCs rejected", kCounter.OrNull(),
     Attribute(Packed<&NpivAttributes::fdiscRejects>)},
    {"virtual_ports", "Virtual ports", kVirtualPortFields, &NpivRow::Ports},
    {kPortStatus, &NpivRow::port},
};
const auto kNpivListFields = ListOf("ports", "Ports", kNpivFields, ListLayout::Inner, "no ports");

HX_STATUS AskVirtualPorts(PortVisit& visit, VirtualPorts* known) {
    visit.query = "virtual ports";
    return ReadVirtualPorts(visit.Handle(), known);
}

ExitCode NpivList(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    auto answers =
        ForEachPort<VirtualPorts>(invocation, SelectPorts(invocation, ports), AskVirtualPorts);
    const ExitCode exit = ReportAnswers(invocation, answers);
    std::vector<NpivRow> rows;
    for (auto& one : answers) {
        const bool good = one.status == HXMGT_SUCCESS;
        rows.push_back({one.port, good ? std::optional(std::move(one.answer)) : std::nullopt});
    }
    invocation.Result() = kNpivListFields.Make(rows);
    return exit;
}

}  // namespace

CommandRows NpivCommands() {
    static const Command kCommands[] = {
        {.path = "npiv list",
         .help = "list the virtual ports of the ports",
         .run = NpivList,
         .example = "npiv list -p scsi:3",
         .result = ShapeOf<kNpivListFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
