#include "vxmgr/ports/stats_reading.h"

#include "vxmgr/app/port_answers.h"

namespace vxmgr {
namespace {

using Remote = const HX_SCSI_ADDRESS*;  // null: the port itself

// Newer drivers tell more; what an older one does not is not available.
HX_STATUS ReadTraffic(uint32_t handle, Remote remote, HX_PORT_STATISTICS_V2* record) {
    HX_STATUS status = HXGetPortStatisticsFCV2(handle, remote, record);
    HX_PORT_STATISTICS shorter{};
    if (CannotTell(status)) {
        status = HXGetPortStatisticsFCV1(handle, remote, &shorter);
        if (CannotTell(status)) {
            status = HXGetPortStatisticsFC(handle, remote, &shorter);
        }
        *record = Widened(shorter);
    }
    return status;
}

HX_STATUS AskLink(uint32_t handle, Remote remote, PortCounters* counters) {
    HX_STATUS status;
    if (remote != nullptr) {
        HX_PORT_STATISTICS_V2 traffic{};
        status = ReadTraffic(handle, remote, &traffic);
        counters->link = traffic.port;
    } else {
        HX_STATISTICS statistics{};
        status = HXGetStatistics(handle, 0, &statistics);
        counters->link = Widened(statistics);
    }
    if (status != HXMGT_SUCCESS) {
        counters->link.reset();
    }
    return status;
}

HX_STATUS AskTraffic(uint32_t handle, Remote remote, PortCounters* counters) {
    HX_PORT_STATISTICS_V2 traffic{};
    const HX_STATUS status = ReadTraffic(handle, remote, &traffic);
    if (status == HXMGT_SUCCESS) {
        counters->traffic = traffic;
    }
    return status;
}

HX_STATUS AskScm(uint32_t handle, Remote remote, PortCounters* counters) {
    HX_STATUS status;
    ScmReading reading;
    if (remote != nullptr) {
        HX_PORT_SCM_STATISTICS statistics{};
        status = HXGetPortSCMStatsFC(handle, remote, &statistics);
        reading = ScmOfRemotePort(statistics);
    } else {
        status = HXGetSCMStatistics(handle, &reading.record);
    }
    if (status == HXMGT_SUCCESS) {
        counters->scm = reading;
    }
    return status;
}

HX_STATUS AskPrivate(uint32_t handle, Remote, PortCounters* counters) {
    HX_PRIVATE_STATISTICS record{};
    const HX_STATUS status = HXGetPrivStats(handle, &record);
    if (status == HXMGT_SUCCESS) {
        counters->driver = record;
    }
    return status;
}

HX_STATUS AskLatency(uint32_t handle, Remote, PortCounters* counters) {
    HX_PRIVATE_STATISTICS_EX record{};
    const HX_STATUS status = HXGetPrivStatsEx(handle, &record);
    if (status == HXMGT_SUCCESS) {
        counters->latency = record;
    }
    return status;
}

struct GroupQuery {
    unsigned kind;
    const char* query;
    HX_STATUS (*ask)(uint32_t handle, Remote remote, PortCounters* counters);
};
constexpr GroupQuery kGroupQueries[] = {
    {kLinkKind, "statistics", AskLink},
    {kTrafficKind, "traffic statistics", AskTraffic},
    {kScmKind, "SCM statistics", AskScm},
    {kPrivateKind, "private statistics", AskPrivate},
    {kLatencyKind, "latency statistics", AskLatency},
};

}  // namespace

HX_STATUS ReadCounters(uint32_t handle, const StatsQuestion& question, PortCounters* counters,
                       std::string* query) {
    const Remote remote = question.remote ? &*question.remote : nullptr;
    HX_STATUS unknown = HXMGT_SUCCESS;
    bool any = false;
    for (const GroupQuery& group : kGroupQueries) {
        if ((question.kinds & group.kind) == 0) {
            continue;
        }
        const HX_STATUS status = group.ask(handle, remote, counters);
        if (status == HXMGT_SUCCESS) {
            any = true;
            continue;
        }
        if (!CannotTell(status)) {
            *query = group.query;
            return status;
        }
        if (unknown == HXMGT_SUCCESS) {
            *query = group.query;
            unknown = status;
        }
    }
    return any ? HX_STATUS{HXMGT_SUCCESS} : unknown;
}

}  // namespace vxmgr
