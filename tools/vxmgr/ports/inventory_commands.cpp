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

}  // namespace

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

}  // namespace vxmgr
