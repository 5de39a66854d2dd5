#include "vxmgr/support/collect_dumps.h"

#include "vxmgr/app/port_walk.h"
#include "vxmgr/diag/dump_kinds.h"

namespace vxmgr {
namespace {

// Dumps of several megabytes come in small pieces.
constexpr std::chrono::seconds kFetchTime{60};

struct Fetched {
    const DumpKind* kind;
    HX_STATUS status;
    std::vector<uint8_t> bytes;
};

HX_STATUS FetchAll(PortVisit& visit, std::vector<Fetched>* fetched) {
    for (const DumpKind& kind : DumpKinds()) {
        visit.query = std::string("the ") + kind.name + " dump";
        uint32_t size = 0;
        if (kind.size(visit.Handle(), &size) != HXMGT_SUCCESS || size == 0) {
            visit.task.Answered();  // `dump list` tells why there is none
            continue;
        }
        visit.task.Answered(kFetchTime);
        fetched->push_back({&kind, HXMGT_SUCCESS, {}});
        Fetched& dump = fetched->back();
        dump.status = kind.fetch(visit.Handle(), size, &dump.bytes);
        visit.task.Answered();
    }
    return HXMGT_SUCCESS;
}

}  // namespace

std::vector<CollectedDump> FetchDumps(Invocation& invocation, const std::vector<Port*>& ports) {
    std::vector<CollectedDump> dumps;
    for (auto& one : ForEachPort<std::vector<Fetched>>(invocation, ports, FetchAll)) {
        for (Fetched& fetched : one.answer) {
            dumps.push_back(
                {one.port, fetched.kind->name, fetched.status, std::move(fetched.bytes)});
        }
        if (one.status != HXMGT_SUCCESS) {
            dumps.push_back({one.port, "", one.status, {}});
        }
    }
    return dumps;
}

}  // namespace vxmgr
