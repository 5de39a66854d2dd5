// fault add, list, clear.
#include <algorithm>

#include "commands.h"
#include "fault_text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

Value Code(const FaultRule& rule) {
    return rule.code == kAnyCode ? Value() : Value::Text(Hex(rule.code, 8));
}

Value SubCode(const FaultRule& rule) {
    return rule.subCode == kAnySubCode ? Value() : Value::Number(rule.subCode);
}

Value Times(const FaultRule& rule) {
    return Value::Number(rule.times).Shown(rule.times == 0 ? "always" : std::to_string(rule.times));
}

const Fields<FaultRule> kRuleFields = {
    {"port", "Port", "PORT", kText, [](const FaultRule& r) { return PortName(r.port); }},
    {"request", "Request", "REQUEST", kText, FormatFaultCode},
    {"code", "Code", kText.OrNull(), Code},
    {"sub_code", "Sub-code", "SUB", kInteger.OrNull(), SubCode},
    {"action", "Action", "ACTION", kText, FormatFaultAction},
    {"after", "After", "AFTER", kInteger, &FaultRule::after},
    {"times", "Times", "TIMES", kInteger, Times, "0: always"},
};

const Fields<FaultEntry> kFaultFields = {
    {"id", "Id", "ID", kInteger, &FaultEntry::id, "0 in a dry run"},
    {kRuleFields, &FaultEntry::rule},
    {"matched", "Requests matched", "MATCHED", kInteger, &FaultEntry::matched},
    {"acted", "Requests changed", "ACTED", kInteger, &FaultEntry::acted},
};

const Fields<FaultListReply> kFaultListFields = {
    {"faults", "Fault rules", kFaultFields,
     [](const FaultListReply& reply) {
         return std::span(reply.entries, std::min<size_t>(reply.count, kMaxFaults));
     },
     "No fault rules."},
};

const Fields<uint32_t> kRemovedFields = {
    {"removed", "Rules removed", kInteger, [](uint32_t count) { return count; }}};

FaultRule RequireRule(Invocation& invocation) {
    const Options& given = invocation.Given();
    FaultRule rule = {kAnyPort, kAnyCode, kAnySubCode, 0, 0, FaultKind::None, 0, 0};
    rule.port = RequirePortOrAll(invocation, given.Text("PORT"));
    const std::string code = given.Text("code", "any");
    if (code != "any" && !ParseFaultCode(code, &rule)) {
        invocation.Fail(ExitCode::Usage, "\"" + code + "\" is not a request",
                        "give a command code such as 0xF0001001, or a name as NodeProperties");
    }
    if (const auto subCode = given.Number("sub")) {
        rule.subCode = static_cast<uint32_t>(*subCode);
    }
    rule.after = static_cast<uint32_t>(given.Number("after").value_or(0));
    rule.times = static_cast<uint32_t>(given.Number("times").value_or(0));
    std::string error;
    if (!ParseFaultAction(given.Text("do"), given.Text("VALUE"), &rule, &error)) {
        invocation.Fail(ExitCode::Usage, "--do: " + error);
    }
    return rule;
}

ExitCode RunFaultAdd(Invocation& invocation) {
    const FaultRule rule = RequireRule(invocation);
    uint32_t id = 0;
    RunningDriver driver(invocation, true);
    const auto status = driver.Status();
    bool known = rule.port == kAnyPort;
    for (uint32_t index = 0; index < status->portCount; ++index) {
        known = known || status->ports[index].scsiPort == rule.port;
    }
    if (!known) {
        invocation.Fail(ExitCode::NotFound, PortName(rule.port) + ": no such port",
                        "see `vxemu status`");
    }
    if (!invocation.DryRun()) {
        id = driver.SendForCount(control::kFaultAdd, rule, "fault add");
        if (id == 0) {
            invocation.Fail(ExitCode::Failed,
                            "there are " + std::to_string(kMaxFaults) + " rules already",
                            "remove some with `vxemu fault clear`");
        }
        invocation.Changed();
    }
    FaultEntry entry = {};
    entry.id = id;
    entry.rule = rule;
    invocation.Result() = kFaultFields.Make(entry);
    return ExitCode::Done;
}

ExitCode RunFaultList(Invocation& invocation) {
    invocation.Result() = kFaultListFields.Make(*RunningDriver(invocation, false).Faults());
    return ExitCode::Done;
}

ExitCode RunFaultClear(Invocation& invocation) {
    const auto id = invocation.Given().Number("ID");
    RunningDriver driver(invocation, true);
    uint32_t removed = 0;
    if (!invocation.DryRun()) {
        const FaultClear request = {static_cast<uint32_t>(id.value_or(0))};
        removed = driver.SendForCount(control::kFaultClear, request, "fault clear");
        if (removed == 0 && id) {
            invocation.Fail(ExitCode::NotFound, "no fault rule " + std::to_string(*id),
                            "see `vxemu fault list`");
        }
        if (removed != 0) {
            invocation.Changed();
        }
    }
    invocation.Result() = kRemovedFields.Make(removed);
    return ExitCode::Done;
}

constexpr Argument kFaultAdd[] = {
    {.name = "PORT", .help = "scsi:N, N or all", .required = true},
    {"VALUE", ArgumentKind::Text, "",
     "milliseconds, status, detail, bytes or place of the action; a detail may name its driver "
     "status: "
     "11:0x4005"},
    TextOption("--code", "C", "command code or name of the request (any)"),
    NumberOption("--sub", "S", "sub-code (any)", 0, 0xFFFF),
    NumberOption("--after", "N", "let N matching requests pass (0)"),
    NumberOption("--times", "N", "act N times; 0 = always (0)"),
    {.name = "--do",
     .valueName = "ACTION",
     .help = "busy, hang MS, status S, detail D, short N, long N, lie-length, corrupt, "
             "forget, corrupt-byte AT, bad-signature, old-version, wrong-bank or no-return",
     .required = true},
};
constexpr Argument kFaultClear[] = {{.name = "ID",
                                     .kind = ArgumentKind::Number,
                                     .help = "the rule; without: all rules",
                                     .least = 1}};

}  // namespace

CommandRows FaultCommands() {
    static const Command kCommands[] = {
        {.path = "fault add",
         .risk = Risk::Reversible,
         .help = "let matching requests go wrong",
         .arguments = kFaultAdd,
         .run = RunFaultAdd,
         .example = "fault add scsi:3 --code NodeProperties --do busy --times 2",
         .result = ShapeOf<kFaultFields>,
         .notes = FaultRequestNames},
        {.path = "fault list",
         .help = "fault rules and how often they acted",
         .run = RunFaultList,
         .example = "fault list",
         .result = ShapeOf<kFaultListFields>},
        {.path = "fault clear",
         .risk = Risk::Reversible,
         .help = "remove one fault rule or all",
         .arguments = kFaultClear,
         .run = RunFaultClear,
         .example = "fault clear 2",
         .result = ShapeOf<kRemovedFields>},
    };
    return kCommands;
}

}  // namespace vxemu
