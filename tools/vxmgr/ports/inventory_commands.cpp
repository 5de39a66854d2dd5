// adapter list|show, port list|show.
#include "vxmgr/ports/commands.h"
#include "vxmgr/ports/records.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::ListLayout;
using tools::Record;

constexpr const char* kNoAdapters = "No adapters.";
constexpr const char* kNoPorts = "No ports.";

ExitCode Adapters(tools::Invocation& invocation, ListLayout layout,
                  Record (*recordOf)(const Adapter&)) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    std::vector<Record> rows;
    std::vector<const Port*> shown;
    for (const Adapter* adapter : SelectAdapters(invocation, adapters)) {
        rows.push_back(recordOf(*adapter));
        shown.insert(shown.end(), adapter->ports.begin(), adapter->ports.end());
    }
    const Port none;
    invocation.Result().AddList("adapters", "Adapters", layout, recordOf({0, {&none}}), kNoAdapters,
                                std::move(rows));
    return ReportFailures(invocation, shown);
}

ExitCode Ports(tools::Invocation& invocation, ListLayout layout, Record (*recordOf)(const Port&)) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<const Port*> shown = SelectPorts(invocation, ports);
    std::vector<Record> rows;
    for (const Port* port : shown) {
        rows.push_back(recordOf(*port));
    }
    invocation.Result().AddList("ports", "Ports", layout, recordOf(Port()), kNoPorts,
                                std::move(rows));
    return ReportFailures(invocation, shown);
}

ExitCode AdapterList(tools::Invocation& invocation) {
    return Adapters(invocation, ListLayout::Table, AdapterSummary);
}

ExitCode AdapterShow(tools::Invocation& invocation) {
    return Adapters(invocation, ListLayout::Sections, AdapterDetail);
}

ExitCode PortList(tools::Invocation& invocation) {
    return Ports(invocation, ListLayout::Table,
                 [](const Port& port) { return PortSummary(port, true); });
}

ExitCode PortShow(tools::Invocation& invocation) {
    return Ports(invocation, ListLayout::Sections, PortDetail);
}

}  // namespace

tools::CommandRows AdapterAndPortCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "adapter list",
            .risk = tools::Risk::Reads,
            .help = "list the adapters",
            .schema = "adapter.list",
            .run = AdapterList,
            .example = "adapter list",
        },
        {
            .path = "adapter show",
            .risk = tools::Risk::Reads,
            .help = "show adapters in detail, with their ports",
            .schema = "adapter.show",
            .run = AdapterShow,
            .example = "adapter show -a serial:EMU7740A0001",
        },
        {
            .path = "port list",
            .risk = tools::Risk::Reads,
            .help = "list the ports",
            .schema = "port.list",
            .run = PortList,
            .example = "port list -o csv",
        },
        {
            .path = "port show",
            .risk = tools::Risk::Reads,
            .help = "show ports in detail",
            .schema = "port.show",
            .run = PortShow,
            .example = "port show -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
