// port stats, port stats clear.
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"
#include "vxmgr/ports/stats_reading.h"
#include "vxmgr/targets/target_select.h"

namespace vxmgr {
namespace {

constexpr const char* kKindNames[] = {"link", "traffic", "scm", "private", "latency", "all"};
constexpr unsigned kKindsOfNames[] = {kLinkKind,    kTrafficKind, kScmKind,
                                      kPrivateKind, kLatencyKind, kAllKinds};
constexpr unsigned kKindsOfRemotePorts = kLinkKind | kTrafficKind | kScmKind;

constexpr Argument kStatsArguments[] = {
    TextOption("--kind", "KIND", "which counters (link)", kKindNames),
    TextOption("-t,--target", "TARGET",
               "counters of a remote port: wwn:NAME, id:0xDDAAPP or BUS:TARGET"),
    kIntervalArgument,
    kTurnsArgument,
    kForArgument,
    FlagOption("--delta", "rows of what was counted since the row before"),
};
constexpr Argument kStatsClearArguments[] = {
    FlagOption("--private", "the counters of the driver and its latencies, instead of the link's"),
};

// A reading of a port. reset: since the reading before, where there is one.
struct Reading {
    const Port* port;
    std::optional<Wwn> target;
    PortCounters counters;
    std::optional<bool> reset;
};

// shown: the kinds of counters that people see.
Fields<Reading> ReadingFieldsWith(unsigned shown, bool ofTarget) {
    return {[](const Reading& reading) { return "Port " + std::to_string(reading.port->index); },
            {
                TimeField<Reading>("UTC, when the counters were read"),
                {PortKeys((kPortIndex & kPortColumns) | (kPortName & kPortLabels) | kAdapterSerial |
                          kOldSerialKey),
                 &Reading::port},
                {"target_wwn", ofTarget ? "Remote port" : "", ofTarget ? "TARGET" : "",
                 kWwn.OrNull(), &Reading::target,
                 "the remote port that the counters concern; null: the port itself", 23},
                {CounterFields(shown), &Reading::counters},
                {"reset", "", kFlag.OrNull(), &Reading::reset,
                 "rows that keep coming: the counters were reset since the row before"},
                {kPortStatus, &Reading::port},
            }};
}

const Fields<Reading>& ReadingFields(unsigned shown, bool ofTarget) {
    static std::mutex lock;  // rows are also made on the threads of ports
    static std::map<std::pair<unsigned, bool>, Fields<Reading>> made;
    const std::lock_guard guard(lock);
    const std::pair key(shown, ofTarget);
    const auto found = made.find(key);
    return found != made.end()
               ? found->second
               : made.emplace(key, ReadingFieldsWith(shown, ofTarget)).first->second;
}

using Readings = std::vector<Reading>;
Fields<Readings> ReadingListWith(unsigned shown, bool ofTarget) {
    return ListOf("readings", "Readings", ReadingFields(shown, ofTarget), ListLayout::Sections,
                  "No ports.");
}

Shape ReadingShape() {
    return ReadingListWith(kAllKinds, true).ShapeOfAll();
}

struct OpenReading {
    std::shared_ptr<Device> device;  // shared with a thread that may be left behind
    StatsQuestion question;
    std::optional<Wwn> target;
    PortCounters counters;
};

// Looks the target up among those that the driver knows; the driver is asked all the same for one
// that is not there.
HX_STATUS ResolveTarget(PortVisit& visit, OpenReading* first) {
    std::vector<KnownTarget> known;
    visit.query = "targets";
    if (const auto status = ReadKnownTargets(visit.port, visit.Handle(), &known);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_SCSI_ADDRESS& address = *first->question.remote;
    if (const KnownTarget* found = FindKnown(known, address)) {
        address = AddressByPortName(found->PortName());
    }
    if (address.type == HX_ADDRESS_PORT_NAME) {
        first->target = Wwn::Of(address.address);
    }
    visit.task.Answered();
    return HXMGT_SUCCESS;
}

AskPort<OpenReading> FirstReading(const StatsQuestion& question) {
    return [question](PortVisit& visit, OpenReading* first) {
        first->question = question;
        HX_STATUS status = HXMGT_SUCCESS;
        if (question.remote) {
            status = ResolveTarget(visit, first);
        }
        if (status == HXMGT_SUCCESS) {
            status = ReadCounters(visit.Handle(), first->question, &first->counters, &visit.query);
            if (status == HXMGT_DEVICE_NOT_FOUND && question.remote) {
                visit.query = "the remote port is not known";
            }
        }
        first->device = std::make_shared<Device>(std::move(visit.device));
        return status;
    };
}

// What comes behind the first reading, one after the other. delta: rows of what was counted in
// between.
auto NextReadings(const Port& port, const OpenReading& first, bool delta, unsigned shown) {
    return [port, first, last = std::make_shared<PortCounters>(first.counters), delta, shown](
               PortTask&, WatchTurn& turn) {
        PortCounters now;
        std::string query;
        turn.status = ReadCounters(first.device->Handle(), first.question, &now, &query);
        if (turn.status == HXMGT_SUCCESS) {
            const Fields<Reading>& fields = ReadingFields(shown, first.question.remote.has_value());
            turn.rows.push_back(
                fields.Make({&port, first.target, delta ? CountedBetween(*last, now) : now,
                             WasReset(*last, now)}));
            *last = now;
        }
    };
}

StatsQuestion GivenQuestion(Invocation& invocation) {
    const Options& given = invocation.Given();
    StatsQuestion question;
    if (given.Has("kind")) {
        const auto name = std::ranges::find(kKindNames, given.Text("kind"));
        question.kinds = kKindsOfNames[name - std::begin(kKindNames)];
    }
    if (given.Has("target")) {
        question.remote = GivenAddress(invocation, "target");
        if ((question.kinds & kKindsOfRemotePorts) == 0) {
            invocation.Fail(ExitCode::Usage, "a remote port has no counters of this kind",
                            "--target goes with link, traffic, scm and all");
        }
        question.kinds &= kKindsOfRemotePorts;
    }
    return question;
}

ExitCode ReportReadings(Invocation& invocation, const std::vector<PortAnswer<OpenReading>>& answers,
                        const StatsQuestion& question) {
    if ((question.kinds & kLinkKind) == 0) {
        return ReportAnswers(invocation, answers);
    }
    // Every driver counts what happens on the link: one that does not tell has failed.
    std::vector<const Port*> asked;
    for (const auto& one : answers) {
        one.port->failure = one.status;
        one.port->failedQuery = one.query;
        asked.push_back(one.port);
    }
    return ReportFailures(invocation, asked);
}

ExitCode PortStats(Invocation& invocation) {
    const Options& given = invocation.Given();
    const bool delta = given.Has("delta");
    const bool watch = delta || given.Has("interval") || given.Has("count") || given.Has("for");
    const StatsQuestion question = GivenQuestion(invocation);
    const Fields<Readings> list = ReadingListWith(question.kinds, question.remote.has_value());
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    if (watch && selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
    }
    Readings readings;
    std::vector<WatchedPort> watched;
    const auto answers = ForEachPort<OpenReading>(invocation, selected, FirstReading(question));
    const ExitCode exit = ReportReadings(invocation, answers, question);
    for (const auto& one : answers) {
        const bool good = one.status == HXMGT_SUCCESS;
        readings.push_back(
            {one.port, one.answer.target, good ? one.answer.counters : PortCounters(), {}});
        if (watch && good) {
            watched.push_back(
                {*one.port, NextReadings(*one.port, one.answer, delta, question.kinds)});
        }
    }
    if (!watch) {
        invocation.Result() = list.Make(readings);
        return exit;
    }
    WatchPlan plan = GivenPlan(invocation, "port");
    plan.waitsFirst = delta;
    plan.list = list.ShapeOfAll().front();
    return WatchPorts(invocation, plan, std::move(watched), exit);
}

struct Clearing {
    Port port;
    bool cleared;
    PortCounters before;
};

template <auto group>
constexpr auto kBefore = [](const Clearing& clearing) { return clearing.before.*group; };

const Fields<Clearing> kClearingFields = {
    {PortKeys(kPortIndex | kAdapterSerial | kOldSerialKey), &Clearing::port},
    {"cleared", "Cleared", kFlag, &Clearing::cleared},
    {"before", "Before", kLinkFields, kBefore<&PortCounters::link>,
     "the counters before they were set to zero; null: they were not to be", kGroup.OrNull()},
    {"private_before", "Driver's own counters before", kPrivateFields,
     kBefore<&PortCounters::driver>, "the same of the driver's own", kGroup.OrNull()},
    {"latency_before", "Latency before", kLatencyFields, kBefore<&PortCounters::latency>,
     "the same of the latencies", kGroup.OrNull()},
};

// A reading with this option ends what it counted: it is what stood there before.
template <class Record>
HX_STATUS Restart(uint32_t handle, HX_STATUS (*read)(uint32_t, Record*),
                  std::optional<Record>* before) {
    if (!*before) {
        return HXMGT_SUCCESS;
    }
    Record record{};
    record.options = HX_PRIVATE_RESTART;
    const HX_STATUS status = read(handle, &record);
    if (status == HXMGT_SUCCESS) {
        *before = record;
    }
    return status;
}

// Zeroes the groups that were read.
HX_STATUS ClearCounters(Invocation& invocation, uint32_t handle, PortCounters* before) {
    HX_STATUS status =
        before->link ? HXResetStatistics(handle) : Restart(handle, HXGetPrivStats, &before->driver);
    if (status == HXMGT_SUCCESS) {
        invocation.Changed();
        status = Restart(handle, HXGetPrivStatsEx, &before->latency);
    }
    return status;
}

// Whether the second reading can only be that of counters that were reset in between.
template <class Record>
bool ProvesReset(const std::optional<Record>& before, const std::optional<Record>& after) {
    return !before || (after && (before->secondsSinceReset == 0 ||
                                 after->secondsSinceReset < before->secondsSinceReset));
}
bool ProvesReset(const PortCounters& before, const PortCounters& after) {
    const bool moreErrors =
        before.link && after.link &&
        std::ranges::any_of(LinkCounters(), [&](const Counter<HX_PORT_STATISTICS>& counter) {
            return counter.one != nullptr &&
                   CounterOf(*after.link, counter) > CounterOf(*before.link, counter);
        });
    return !moreErrors && ProvesReset(before.link, after.link) &&
           ProvesReset(before.driver, after.driver) && ProvesReset(before.latency, after.latency);
}

ExitCode PortStatsClear(Invocation& invocation) {
    StatsQuestion question;
    if (invocation.Given().Has("private")) {
        question.kinds = kPrivateKind | kLatencyKind;
    }
    const PortSession session = OpenSelectedPort(invocation);
    const std::string object = session.port.Object();
    PortCounters before;
    std::string query;
    HX_STATUS status = ReadCounters(session.Handle(), question, &before, &query);
    invocation.Require(status, query, object);
    const bool dry = invocation.DryRun();
    if (!dry) {
        status = ClearCounters(invocation, session.Handle(), &before);
    }
    invocation.Result() =
        kClearingFields.Make({session.port, !dry && status == HXMGT_SUCCESS, before});
    invocation.Require(status, "the counters were not reset", object);
    if (dry) {
        return invocation.DoneWith("dry run: the counters would be set to zero");
    }
    PortCounters after;
    if (ReadCounters(session.Handle(), question, &after, &query) != HXMGT_SUCCESS ||
        !ProvesReset(before, after)) {
        invocation.Fail(ExitCode::NotProven,
                        "the counters were reset, but do not read back as such");
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows StatsCommands() {
    static const Command kCommands[] = {
        {.path = "port stats",
         .help = "show the counters of the ports",
         .arguments = kStatsArguments,
         .run = PortStats,
         .example = "port stats --interval 10 --delta",
         .result = ReadingShape},
        {.path = "port stats clear",
         .risk = Risk::Reversible,
         .help = "set the counters of a port to zero",
         .arguments = kStatsClearArguments,
         .run = PortStatsClear,
         .example = "port stats clear -p scsi:3",
         .result = ShapeOf<kClearingFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
