// fault add, list, clear.
#include "commands.h"
#include "common/text.h"
#include "fault_text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

using tools::ExitCode;
using tools::Invocation;
using tools::Record;
using tools::Value;

Record FaultRow(uint32_t id, const FaultRule& rule, uint32_t matched, uint32_t acted) {
    const bool anyPort = rule.port == kAnyPort;
    const bool anySubCode = rule.subCode == kAnySubCode;
    Record row;
    row.Add("id", "Id", Value::Number(id), "ID");
    row.Add("port", "Port", Value::Text(anyPort ? "all" : PortName(rule.port)), "PORT");
    row.Add("request", "Request", Value::Text(FormatFaultCode(rule)), "REQUEST");
    row.Add("code", "Code",
            rule.code == kAnyCode ? Value() : Value::Text(tools::Hex(rule.code, 8)));
    row.Add("sub_code", "Sub-code", anySubCode ? Value() : Value::Number(rule.subCode), "SUB");
    row.Add("action", "Action", Value::Text(FormatFaultAction(rule)), "ACTION");
    row.Add("after", "After", Value::Number(rule.after), "AFTER");
    row.Add(
        "times", "Times",
        Value::Number(rule.times).Shown(rule.times == 0 ? "always" : std::to_string(rule.times)),
        "TIMES");
    row.Add("matched", "Requests matched", Value::Number(matched), "MATCHED");
    row.Add("acted", "Requests changed", Value::Number(acted), "ACTED");
    return row;
}

FaultRule RequireRule(Invocation& invocation) {
    const tools::Options& given = invocation.Given();
    FaultRule rule = {kAnyPort, kAnyCode, kAnySubCode, 0, 0, FaultKind::None, 0, 0};
    const std::string port = given.Text("PORT");
    if (port != "all") {
        rule.port = RequirePort(invocation, port);
    }
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

}  // namespace

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
    invocation.Result() = FaultRow(id, rule, 0, 0);
    return ExitCode::Done;
}

ExitCode RunFaultList(Invocation& invocation) {
    const auto faults = RunningDriver(invocation, false).Faults();
    std::vector<Record> rows;
    for (uint32_t at = 0; at < faults->count && at < kMaxFaults; ++at) {
        const FaultEntry& entry = faults->entries[at];
        rows.push_back(FaultRow(entry.id, entry.rule, entry.matched, entry.acted));
    }
    invocation.Result().AddList("faults", "Fault rules", tools::ListLayout::Table,
                                FaultRow(0, {}, 0, 0), "No fault rules.", std::move(rows));
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
    invocation.Result().Add("removed", "Rules removed", Value::Number(removed));
    return ExitCode::Done;
}

}  // namespace vxemu
