// stats bump, scm.
#include <cstring>

#include "commands.h"
#include "field_text.h"
#include "model/bytes/bytes.h"
#include "model/health/counter_keys.h"
#include "port_rows.h"
#include "running_driver.h"

namespace vxemu {
namespace {

struct RaisedCounter {
    CounterRequest request;
    bool remote;
};

const Fields<RaisedCounter> kRaisedCounterFields = {
    {kPortNameFields, [](const RaisedCounter& raised) { return raised.request.scsiPort; }},
    {"target", "Target", kWwn.OrNull(),
     [](const RaisedCounter& raised) {
         return raised.remote ? std::optional(Wwn::Of(raised.request.target.portName))
                              : std::nullopt;
     }},
    {"counter", "Counter", kText,
     [](const RaisedCounter& raised) { return std::string(raised.request.key); }},
    {"by", "Raised by", kCounter,
     [](const RaisedCounter& raised) { return uint64_t{raised.request.n}; }},
};

bool IsCongestion(const CounterKey& counter) {
    return counter.group == CounterGroup::Fpin || counter.group == CounterGroup::Signals;
}

bool IsAny(const CounterKey&) {
    return true;
}

std::string KeysOf(bool (*accepts)(const CounterKey&), bool remote) {
    std::string names;
    for (const CounterKey& counter : CounterKeys()) {
        if (accepts(counter) && (counter.remote || !remote)) {
            names += (names.empty() ? "" : ", ") + std::string(counter.key);
        }
    }
    return names;
}

// The key, among those that the command takes.
const CounterKey& RequireCounter(Invocation& invocation, const std::string& text, const char* what,
                                 bool (*accepts)(const CounterKey&), bool remote) {
    const CounterKey* counter = FindCounter(text.c_str(), text.size() + 1);
    const bool taken = counter != nullptr && accepts(*counter) && (counter->remote || !remote);
    if (!taken) {
        const std::string about = remote ? " that a port keeps about a target" : "";
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not " + what + about,
                        "give one of " + KeysOf(accepts, remote));
    }
    return *counter;
}

TargetSelector RequireTarget(Invocation& invocation, const std::string& text) {
    const Field* field = FindField(FieldScope::Target, "port_name", sizeof "port_name");
    TargetSelector target = {};
    std::string wanted;
    if (!ParseField(*field, text, target.portName, &wanted)) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not a port name",
                        "give 8 bytes in hexadecimal, as in 2b:00:02:45:4d:00:01:00");
    }
    return target;
}

ExitCode Raise(Invocation& invocation, const char* keyArgument, const char* what,
               bool (*accepts)(const CounterKey&)) {
    const Options& given = invocation.Given();
    RaisedCounter raised = {};
    raised.remote = given.Has("target");
    raised.request.scsiPort = RequirePort(invocation, given.Text("PORT"));
    const CounterKey& counter =
        RequireCounter(invocation, given.Text(keyArgument), what, accepts, raised.remote);
    CopyText(raised.request.key, counter.key);
    raised.request.n = given.Number("N").value_or(1);
    if (raised.remote) {
        raised.request.target = RequireTarget(invocation, given.Text("target"));
    }
    RunningDriver driver(invocation, true);
    if (!invocation.DryRun()) {
        driver.SendForCount(
            control::kRaiseCounter, raised.request,
            raised.remote ? given.Text("target") : PortName(raised.request.scsiPort));
        invocation.Changed();
    }
    invocation.Result() = kRaisedCounterFields.Make(raised);
    return ExitCode::Done;
}

ExitCode RunStatsBump(Invocation& invocation) {
    return Raise(invocation, "KEY", "a counter", IsAny);
}

ExitCode RunScm(Invocation& invocation) {
    return Raise(invocation, "KIND", "a kind of FPIN or congestion signal", IsCongestion);
}

std::string CounterNotes() {
    return "Counters: " + KeysOf(IsAny, false) + ".";
}

std::string CongestionNotes() {
    return "Kinds: " + KeysOf(IsCongestion, false) + ".";
}

constexpr uint64_t kMostRaised = uint64_t{1} << 48;
constexpr Argument kTargetOption = TextOption(
    "-t,--target", "TARGET", "port name of a target: what the port has counted about it");
constexpr Argument kBump[] = {
    kPortArgument,
    {.name = "KEY", .help = "the counter, as vxmgr names it", .required = true},
    {.name = "N",
     .kind = ArgumentKind::Number,
     .help = "how much",
     .required = true,
     .most = kMostRaised},
    kTargetOption,
};
constexpr Argument kScm[] = {
    kPortArgument,
    {.name = "KIND", .help = "the kind of FPIN, or of congestion signal", .required = true},
    {.name = "N", .kind = ArgumentKind::Number, .help = "how many (1)", .most = kMostRaised},
    kTargetOption,
};

}  // namespace

CommandRows CounterCommands() {
    static const Command kCommands[] = {
        {.path = "stats bump",
         .risk = Risk::Reversible,
         .help = "raise a counter of a port, or what it has counted about a target",
         .arguments = kBump,
         .run = RunStatsBump,
         .example = "stats bump scsi:3 invalid_crcs 5",
         .result = ShapeOf<kRaisedCounterFields>,
         .notes = CounterNotes},
        {.path = "scm",
         .risk = Risk::Reversible,
         .help = "let the fabric tell a port of congestion and damaged links",
         .arguments = kScm,
         .run = RunScm,
         .example = "scm scsi:3 credit_stall 2",
         .result = ShapeOf<kRaisedCounterFields>,
         .notes = CongestionNotes},
    };
    return kCommands;
}

}  // namespace vxemu
