// tree.
#include <algorithm>
#include <memory>

#include "vxmgr/app/port_walk.h"
#include "vxmgr/commands.h"
#include "vxmgr/targets/map_reading.h"
#include "vxmgr/targets/target_walk.h"
#include "vxmgr/views/tree_nodes.h"

namespace vxmgr {
namespace {

constexpr Argument kTreeArguments[] = {kSelectTargetArgument};

// A system that does not list its devices leaves a tree without disks and volumes.
SharedDevices DevicesOfSystem(Invocation& invocation) {
    struct Listed {
        HX_STATUS status = HXMGT_TIMED_OUT;
        SharedDevices devices;
    };
    std::vector<PortQuestion<Listed>> questions{
        {"the system's list of devices",
         [](PortTask&, Listed& listed) { listed.status = ReadSystemDevices(&listed.devices); }}};
    const auto answers = AskSideBySide(invocation, std::move(questions));
    const auto [status, devices] = answers.front().value_or(Listed());
    if (status != HXMGT_SUCCESS) {
        invocation.Add({Severity::Warning,
                        "disks and volumes are left out, as the system's devices cannot be "
                        "listed: " +
                            StatusMessage(status),
                        {},
                        {},
                        status});
        return std::make_shared<const SystemDevices>();
    }
    return devices;
}

using TreeTargets = std::vector<TreeTarget>;
AskPort<TreeTargets> TargetsBehind(const std::optional<HX_SCSI_ADDRESS>& wanted,
                                   SharedDevices devices) {
    return [wanted, devices = std::move(devices)](PortVisit& visit, TreeTargets* targets) {
        visit.query = "known targets";
        std::vector<KnownTarget> known;
        const HX_STATUS status = ReadKnownTargets(visit.port, visit.Handle(), &known);
        if (status != HXMGT_SUCCESS) {
            return status;
        }
        visit.query = "logical units of targets";
        HX_STATUS trouble = HXMGT_SUCCESS;
        for (const KnownTarget* target : WantedOf(known, wanted)) {
            targets->push_back({*target});
            TreeTarget& node = targets->back();
            node.status = AddUnits(visit, *target, *devices, &node.units);
            trouble = node.status != HXMGT_SUCCESS ? node.status
                      : target->present            ? trouble
                                                   : HX_STATUS{HXMGT_DEVICE_NOT_FOUND};
        }
        // Of an adapter that was pulled meanwhile, all targets seem to be away.
        const bool gone =
            trouble != HXMGT_SUCCESS && CauseOf(trouble, visit.port.Object()) == kWentAway;
        return gone ? HX_STATUS{kWentAway} : HX_STATUS{HXMGT_SUCCESS};
    };
}

ExitCode ShowTree(Invocation& invocation) {
    const auto wanted = WantedTarget(invocation);
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    auto answers =
        ForEachPort(invocation, selected, TargetsBehind(wanted, DevicesOfSystem(invocation)));
    bool found = false;
    for (const auto& one : answers) {
        one.port->failure = one.status;
        one.port->failedQuery = one.query;
        found = found || !one.answer.empty();
    }
    std::vector<TreeAdapter> adapters;
    for (const Adapter& adapter : GroupAdapters(ports)) {
        TreeAdapter node{&adapter.Speaker()};
        for (auto& one : answers) {
            const bool own = std::ranges::find(adapter.ports, one.port) != adapter.ports.end();
            const bool shown = !wanted || !one.answer.empty() || one.status != HXMGT_SUCCESS;
            if (own && shown) {
                node.ports.push_back({one.port, std::move(one.answer)});
            }
        }
        if (!node.ports.empty()) {
            adapters.push_back(std::move(node));
        }
    }
    invocation.Result() = kTreeFields.Make(adapters);
    return CheckFound(invocation, ReportFailures(invocation, selected), found);
}

}  // namespace

CommandRows TreeCommands() {
    static const Command kCommands[] = {
        {.path = "tree",
         .help = "show what hangs on what: adapters, ports, targets, LUNs, disks and volumes",
         .arguments = kTreeArguments,
         .run = ShowTree,
         .example = "tree -p scsi:3",
         .result = ShapeOf<kTreeFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
