// port stats, port stats clear.
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/ports/commands.h"
#include "vxmgr/ports/stats_counters.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

constexpr tools::Argument kStatsArguments[] = {
    kIntervalArgument,
    kTurnsArgument,
    kForArgument,
    {.name = "--delta",
     .kind = tools::ArgumentKind::Flag,
     .help = "rows of what was counted since the row before"},
};

// A reading of a port. reset: since the reading before, where there is one.
struct Reading {
    const Port* port;
    GivenStatistics statistics;
    std::optional<bool> reset;
};

const tools::Fields<Reading>& ReadingFields() {
    static const tools::Fields<Reading> kFields = {
        [](const Reading& reading) { return "Port " + std::to_string(reading.port->index); },
        {
            TimeField<Reading>("UTC, when the counters were read"),
            {PortKeys((kPortIndex & kPortColumns) | (kPortName & kPortLabels) | kAdapterSerial),
             &Reading::port},
            {PortSerialAlias(), &Reading::port},
            {CounterFields(), &Reading::statistics},
            {"reset", "", tools::kFlag.OrNull(), &Reading::reset,
             "rows that keep coming: the counters were reset since the row before"},
            {PortStatus(), &Reading::port},
        }};
    return kFields;
}

const tools::Fields<std::vector<Reading>>& ReadingList() {
    static const auto kFields = tools::ListOf<std::vector<Reading>>(
        "readings", "Readings", ReadingFields(), tools::ListLayout::Sections, "No ports.");
    return kFields;
}

struct OpenReading {
    std::shared_ptr<Device> device;  // shared with a thread that may be left behind
    HX_STATISTICS statistics{};
};

HX_STATUS ReadFirst(PortVisit& visit, OpenReading* first) {
    visit.query = "statistics";
    first->device = std::make_shared<Device>(std::move(visit.device));
    return HXGetStatistics(first->device->Handle(), 0, &first->statistics);
}

// What comes behind the first reading, one after the other. delta: rows of what was counted in
// between.
auto NextReadings(const Port& port, const OpenReading& first, bool delta) {
    return [port, device = first.device, last = std::make_shared<HX_STATISTICS>(first.statistics),
            delta](PortTask&, WatchTurn& turn) {
        HX_STATISTICS now{};
        turn.status = HXGetStatistics(device->Handle(), 0, &now);
        if (turn.status == HXMGT_SUCCESS) {
            turn.rows.push_back(ReadingFields().Make(
                {&port, delta ? CountedBetween(*last, now) : now, WasReset(*last, now)}));
            *last = now;
        }
    };
}

ExitCode PortStats(tools::Invocation& invocation) {
    const tools::Options& given = invocation.Given();
    const bool delta = given.Has("delta");
    const bool watch = delta || given.Has("interval") || given.Has("count") || given.Has("for");
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    if (watch && selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
    }
    std::vector<Reading> readings;
    std::vector<WatchedPort> watched;
    for (const auto& one : ForEachPort<OpenReading>(invocation, selected, ReadFirst)) {
        const bool good = one.status == HXMGT_SUCCESS;
        // What else the port fails at is not asked here.
        one.port->failure = one.status;
        one.port->failedQuery = one.query;
        readings.push_back(
            {one.port, good ? GivenStatistics(one.answer.statistics) : std::nullopt, {}});
        if (watch && good) {
            watched.push_back({*one.port, NextReadings(*one.port, one.answer, delta)});
        }
    }
    if (!watch) {
        invocation.Result() = ReadingList().Make(readings);
    }
    const ExitCode exit = ReportFailures(invocation, selected);
    if (!watch) {
        return exit;
    }
    WatchPlan plan = GivenPlan(invocation, "ports");
    plan.waitsFirst = delta;
    return WatchPorts(invocation, plan, std::move(watched), exit);
}

struct Clearing {
    Port port;
    bool cleared;
    GivenStatistics before;
};

const tools::Fields<Clearing>& ClearingFields() {
    static const tools::Fields<Clearing> kFields = {
        {PortKeys(kPortIndex | kAdapterSerial), &Clearing::port},
        {PortSerialAlias(), &Clearing::port},
        {"cleared", "Cleared", tools::kFlag, &Clearing::cleared},
        {"before", "Before", CounterFields(),
         [](const Clearing& clearing) { return &clearing.before; },
         "the counters before they were set to zero", tools::kGroup},
    };
    return kFields;
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

ExitCode PortStatsClear(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    HX_STATISTICS before{};
    HX_STATUS status = HXGetStatistics(session.Handle(), 0, &before);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "statistics", session.port.Object());
    }
    const bool dry = invocation.DryRun();
    if (!dry && (status = HXResetStatistics(session.Handle())) == HXMGT_SUCCESS) {
        invocation.Changed();
    }
    invocation.Result() =
        ClearingFields().Make({session.port, !dry && status == HXMGT_SUCCESS, before});
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the counters were not reset", session.port.Object());
    }
    if (dry) {
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
            .arguments = kStatsArguments,
            .run = PortStats,
            .example = "port stats --interval 10 --delta",
            .result = tools::ShapeOf<ReadingList>,
        },
        {
            .path = "port stats clear",
            .risk = tools::Risk::Reversible,
            .help = "set the counters of a port to zero",
            .schema = "port.stats.clear",
            .run = PortStatsClear,
            .example = "port stats clear -p scsi:3",
            .result = tools::ShapeOf<ClearingFields>,
        },
    };
    return kCommands;
}

}  // namespace vxmgr
