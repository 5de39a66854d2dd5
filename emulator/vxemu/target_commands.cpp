// target add, remove, set; lun add, remove, set.
#include <cstring>

#include "assignments.h"
#include "commands.h"
#include "field_text.h"
#include "running_driver.h"

namespace vxemu {
namespace {

TargetSelector RequireTarget(Invocation& invocation) {
    const Field* field = FindField(FieldScope::Target, "port_name", sizeof "port_name");
    const std::string text = invocation.Given().Text("TARGET");
    TargetSelector target = {};
    std::string wanted;
    if (!ParseField(*field, text, target.portName, &wanted)) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not a port name",
                        "give 8 bytes in hexadecimal, as in 2b:00:02:45:4d:00:01:00");
    }
    return target;
}

LunSelector RequireLun(Invocation& invocation) {
    const std::string text = invocation.Given().Text("LUN");
    const auto number = ParseNumber(text);
    if (!number || *number > kMaxLunNumber) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not a LUN",
                        "LUNs are 0 to " + std::to_string(kMaxLunNumber));
    }
    return {RequireTarget(invocation), static_cast<uint32_t>(*number)};
}

std::string NameOf(const TargetSelector& target) {
    const Field* field = FindField(FieldScope::Target, "port_name", sizeof "port_name");
    return FormatField(*field, target.portName);
}

std::string NameOf(const LunSelector& lun) {
    return NameOf(lun.target) + " LUN " + std::to_string(lun.number);
}

const Fields<TargetSelector> kTargetFields = {
    {"target", "Target", kText, [](const TargetSelector& target) { return NameOf(target); }}};

const Fields<LunSelector> kLunFields = {
    {kTargetFields, &LunSelector::target},
    {"lun", "LUN", kInteger, &LunSelector::number},
};

Record ResultOf(const TargetSelector& target) {
    return kTargetFields.Make(target);
}

Record ResultOf(const LunSelector& lun) {
    return kLunFields.Make(lun);
}

// Sends a change unless this is a dry run.
template <typename Request>
void Change(Invocation& invocation, RunningDriver& driver, uint32_t code, const Request& request,
            const std::string& what) {
    if (!invocation.DryRun()) {
        driver.SendChange(code, request, what);
        invocation.Changed();
    }
}

// Adds a record that is the usual one but for what the command line says.
template <typename Profile>
void Assign(const std::vector<Assignment>& assignments, Profile& record, Record& result) {
    for (const Assignment& assignment : assignments) {
        std::memcpy(reinterpret_cast<uint8_t*>(&record) + assignment.field->offset,
                    assignment.change.value, assignment.field->size);
        AddAssignment(assignment, result);
    }
}

template <typename Selector, typename Request>
ExitCode Set(Invocation& invocation, FieldScope scope, uint32_t code, const Selector& selector) {
    const std::vector<Assignment> assignments = RequireAssignments(invocation, scope);
    RunningDriver driver(invocation, true);
    Record result = ResultOf(selector);
    for (const Assignment& assignment : assignments) {
        Change(invocation, driver, code, Request{selector, assignment.change}, NameOf(selector));
        AddAssignment(assignment, result);
    }
    invocation.Result() = std::move(result);
    return ExitCode::Done;
}

ExitCode RunTargetAdd(Invocation& invocation) {
    const TargetSelector selector = RequireTarget(invocation);
    const std::vector<Assignment> assignments = RequireAssignments(invocation, FieldScope::Target);
    RunningDriver driver(invocation, true);
    TargetProfile target = DefaultTarget(*driver.RunningProfile());
    std::memcpy(target.portName, selector.portName, sizeof target.portName);
    DeriveNodeName(target);
    Record result = ResultOf(selector);
    Assign(assignments, target, result);
    Change(invocation, driver, control::kTargetAdd, target, NameOf(selector));
    invocation.Result() = std::move(result);
    return ExitCode::Done;
}

ExitCode RunTargetRemove(Invocation& invocation) {
    const TargetSelector selector = RequireTarget(invocation);
    RunningDriver driver(invocation, true);
    Change(invocation, driver, control::kTargetRemove, selector, NameOf(selector));
    invocation.Result() = ResultOf(selector);
    return ExitCode::Done;
}

ExitCode RunTargetSet(Invocation& invocation) {
    return Set<TargetSelector, TargetFieldRequest>(invocation, FieldScope::Target,
                                                   control::kTargetSet, RequireTarget(invocation));
}

ExitCode RunLunAdd(Invocation& invocation) {
    const LunSelector selector = RequireLun(invocation);
    const std::vector<Assignment> assignments = RequireAssignments(invocation, FieldScope::Lun);
    RunningDriver driver(invocation, true);
    const auto profile = driver.RunningProfile();
    // The driver sets the index of the target; here it goes into the serial number.
    uint8_t index = 0;
    while (index < profile->targetCount &&
           std::memcmp(profile->targets[index].portName, selector.target.portName,
                       sizeof selector.target.portName) != 0) {
        ++index;
    }
    LunRequest request = {selector.target,
                          DefaultLun(index, static_cast<uint16_t>(selector.number))};
    Record result = ResultOf(selector);
    Assign(assignments, request.lun, result);
    Change(invocation, driver, control::kLunAdd, request, NameOf(selector));
    invocation.Result() = std::move(result);
    return ExitCode::Done;
}

ExitCode RunLunRemove(Invocation& invocation) {
    const LunSelector selector = RequireLun(invocation);
    RunningDriver driver(invocation, true);
    Change(invocation, driver, control::kLunRemove, selector, NameOf(selector));
    invocation.Result() = ResultOf(selector);
    return ExitCode::Done;
}

ExitCode RunLunSet(Invocation& invocation) {
    return Set<LunSelector, LunFieldRequest>(invocation, FieldScope::Lun, control::kLunSet,
                                             RequireLun(invocation));
}

Shape TargetShape() {
    return kTargetFields.ShapeOfAll();
}

Shape TargetSetShape() {
    return WithAssignments(TargetShape(), FieldScope::Target);
}

Shape LunShape() {
    return kLunFields.ShapeOfAll();
}

Shape LunSetShape() {
    return WithAssignments(LunShape(), FieldScope::Lun);
}

constexpr const char* kTargetHelp = "port name of a target: 2b:00:02:45:4d:00:01:00";
constexpr const char* kAssignmentHelp = "NAME=VALUE, as in a profile file";
constexpr Argument kTargetAdd[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .repeated = true},
};
constexpr Argument kTarget[] = {{.name = "TARGET", .help = kTargetHelp, .required = true}};
constexpr Argument kTargetSet[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .required = true, .repeated = true},
};
constexpr Argument kLunAdd[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "LUN", .help = "number of the LUN", .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .repeated = true},
};
constexpr Argument kLun[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "LUN", .help = "number of the LUN", .required = true},
};
constexpr Argument kLunSet[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "LUN", .help = "number of the LUN", .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .required = true, .repeated = true},
};

}  // namespace

CommandRows TargetCommands() {
    static const Command kCommands[] = {
        {.path = "target add",
         .risk = Risk::Reversible,
         .help = "connect a target",
         .arguments = kTargetAdd,
         .run = RunTargetAdd,
         .example = "target add 2b:00:02:45:4d:00:aa:00 bus=1",
         .result = TargetSetShape},
        {.path = "target remove",
         .risk = Risk::Reversible,
         .help = "take a target and its LUNs away",
         .arguments = kTarget,
         .run = RunTargetRemove,
         .example = "target remove 2b:00:02:45:4d:00:aa:00",
         .result = TargetShape},
        {.path = "target set",
         .risk = Risk::Reversible,
         .help = "change values of a target",
         .arguments = kTargetSet,
         .run = RunTargetSet,
         .example = "target set 2b:00:02:45:4d:00:aa:00 present=no",
         .result = TargetSetShape},
        {.path = "lun add",
         .risk = Risk::Reversible,
         .help = "give a target a LUN",
         .arguments = kLunAdd,
         .run = RunLunAdd,
         .example = "lun add 2b:00:02:45:4d:00:aa:00 7 blocks=4096",
         .result = LunSetShape},
        {.path = "lun remove",
         .risk = Risk::Reversible,
         .help = "take a LUN and what was written to it away",
         .arguments = kLun,
         .run = RunLunRemove,
         .example = "lun remove 2b:00:02:45:4d:00:aa:00 7",
         .result = LunShape},
        {.path = "lun set",
         .risk = Risk::Reversible,
         .help = "change values of a LUN",
         .arguments = kLunSet,
         .run = RunLunSet,
         .example = "lun set 2b:00:02:45:4d:00:aa:00 7 blocks=8192",
         .result = LunSetShape},
    };
    return kCommands;
}

}  // namespace vxemu
