#include "vxmgr/ports/commands.h"
#include "vxmgr/ports/stats_row.h"

#include <chrono>

#include "common/text.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/ports/stats_counters.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr uint64_t kLongestInterval = 86400;

constexpr Argument kArguments[] = {
    {.name = "--interval",
     .kind = ArgumentKind::Number,
     .valueName = "S",
     .help = "print a row every S seconds (5)",
     .least = 1,
     .most = kLongestInterval},
    {.name = "--count",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "end after N rows of each port",
     .least = 1},
    {"--delta", ArgumentKind::Flag, "", "rows of what was counted since the row before"},
};

HX_STATUS ReadStatistics(PortVisit& visit, HX_STATISTICS* statistics) {
    visit.query = "statistics";
    return HXGetStatistics(visit.Handle(), 0, statistics);
}

ExitCode ShowOnce(tools::Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> shown = SelectPorts(invocation, ports);
    std::vector<Record> records;
    for (const auto& one : ForEachPort<HX_STATISTICS>(invocation, shown, ReadStatistics)) {
        // What else the port fails at is not asked here.
        one.port->failure = one.status;
        one.port->failedQuery = one.query;
        records.push_back(
            StatsRow(*one.port, one.status == HXMGT_SUCCESS ? &one.answer : nullptr, {}));
    }
    invocation.Result().AddList("readings", "Readings", tools::ListLayout::Sections,
                                StatsRow(Port(), nullptr, {}), "No ports.", std::move(records));
    return ReportFailures(invocation, shown);
}

// Whether the second reading can only be that of counters that were reset in between.
bool ProvesReset(const HX_STATISTICS& before, const HX_STATISTICS& after) {
    for (const StatsCounter& counter : StatsCounters()) {
        if (counter.one != nullptr && CounterOf(after, counter) > CounterOf(before, counter)) {
            return false;
        }
    }
    return WasReset(before, after) || before.secondsSinceReset == 0;
}

}  // namespace

Record StatsRow(const Port& port, const HX_STATISTICS* statistics, std::optional<bool> reset) {
    const std::string time = tools::FormatUtc(std::chrono::system_clock::now());
    const HX_STATUS status = statistics != nullptr ? HX_STATUS{HXMGT_SUCCESS} : port.failure;
    Record row;
    row.title = "Port " + std::to_string(port.index);
    row.Add("time", "Time", Value::Text(time), "TIME", time.size());
    row.Add("port", "", Value::Number(port.index), "PORT");
    row.Add("serial", "Adapter serial", Value::Serial(port.Serial()), "ADAPTER", 14);
    row.Add("port_wwn", "Port name",
            port.port ? Value::Name(tools::Wwn::Of(port.port->portName)) : Value());
    AddCounters(row, statistics);
    row.Add("reset", "", reset ? Value::Flag(*reset) : Value());
    row.Add("status", status == HXMGT_SUCCESS ? "" : "Status", StatusValue(status));
    return row;
}

namespace {

ExitCode PortStats(tools::Invocation& invocation) {
    const tools::Options& given = invocation.Given();
    const bool watch = given.Has("interval") || given.Has("count") || given.Has("delta");
    return watch ? PortStatsWatch(invocation) : ShowOnce(invocation);
}

ExitCode PortStatsClear(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    HX_STATISTICS before{};
    const HX_STATUS read = HXGetStatistics(session.Handle(), 0, &before);
    if (read != HXMGT_SUCCESS) {
        invocation.Fail(read, "statistics", session.port.Object());
    }
    HX_STATUS status = HXMGT_SUCCESS;
    if (!invocation.DryRun()) {
        status = HXResetStatistics(session.Handle());
        if (status == HXMGT_SUCCESS) {
            invocation.Changed();
        }
    }
    Record counters;
    AddCounters(counters, &before);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("serial", "Adapter serial", Value::Serial(session.port.Serial()));
    result.Add("cleared", "Cleared", Value::Flag(!invocation.DryRun() && status == HXMGT_SUCCESS));
    result.AddGroup("before", "Before", std::move(counters));
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the counters were not reset", session.port.Object());
    }
    if (invocation.DryRun()) {
        invocation.Note("dry run: the counters would be set to zero");
        return ExitCode::Done;
    }
    HX_STATISTICS after{};
    if (HXGetStatistics(session.Handle(), 0, &after) != HXMGT_SUCCESS ||
        !ProvesReset(before, after)) {
        invocation.Fail(ExitCode::NotProven,
                        "the counters were reset, but do not read back as such");
    }
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows StatsCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "port stats",
            .risk = tools::Risk::Reads,
            .help = "show the counters of the ports' links",
            .schema = "port.stats",
            .arguments = kArguments,
            .run = PortStats,
            .example = "port stats --interval 10 --delta",
        },
        {
            .path = "port stats clear",
            .risk = tools::Risk::Reversible,
            .help = "set the counters of a port to zero",
            .schema = "port.stats.clear",
            .run = PortStatsClear,
            .example = "port stats clear -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
