// flash write
#include "vxmgr/flash/commands.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/flash/flash_version.h"
#include "vxmgr/update/update_plan.h"
#include "vxmgr/update/update_region.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr Argument kWriteArguments[] = {
    {.name = "REGION", .help = "region by key or code", .required = true},
    {.name = "FILE", .help = "the image", .required = true},
    {"--pad", ArgumentKind::Flag, "", "fill a shorter image up to the region's size with 0xff"},
    {"--allow-older", ArgumentKind::Flag, "", "write an older version than there is"},
    {"--allow-same", ArgumentKind::Flag, "", "write what the region holds already"},
};

// Null: the adapter does not answer, so that nobody knows.
Value WrittenValue(const RegionOutcome& outcome) {
    const bool unknown = outcome.state == RegionState::Unknown && outcome.status != HXMGT_SUCCESS;
    return unknown ? Value() : Value::Flag(outcome.state != RegionState::Old);
}

void AddOutcome(Record& result, Value written, Value state, Value verified,
                const std::string& running) {
    result.Add("written", "Written", std::move(written));
    result.Add("state", "Region holds", std::move(state));
    result.Add("verified", "Verified", std::move(verified));
    result.Add("running_after", "Running now", Value::TextOrNull(running));
}

void AddNothing(Record& result, const UpdatePlan& plan) {
    AddOutcome(result, Value::Flag(false), Value(), Value(), plan.running);
}

// Whether what was written has still to be started.
bool IsPending(const UpdatePlan& plan, const RegionOutcome& outcome, const std::string& running) {
    if (outcome.NeedsRestart()) {
        return true;
    }
    if (!plan.running.empty()) {
        const auto order = CompareVersions(plan.image.version, running);
        return order && *order != 0;
    }
    const RegionKind kind = RegionKindOf(plan.region.code);
    return kind == RegionKind::Nvram || kind == RegionKind::Vpd;
}

void TellPending(tools::Invocation& invocation, const AdapterSession& session,
                 const UpdatePlan& plan) {
    invocation.AddPending({session.Object(), "firmware_restart",
                           RegionName(plan.region.code) +
                               ": stored, takes effect when the firmware starts next (`fw "
                               "activate`, or a restart of the host)"});
}

ExitCode Write(tools::Invocation& invocation, AdapterSession& session, const UpdatePlan& plan) {
    RegionWrite write{plan.layout, plan.region, plan.before, plan.bytes};
    const RegionOutcome outcome = UpdateRegion(invocation, session, write);
    session.Refresh();
    const std::string running = RunningVersion(session.First(), plan.region.code);
    AddOutcome(invocation.Result(), WrittenValue(outcome), Value::Text(StateName(outcome.state)),
               outcome.state == RegionState::Unknown ? Value() : Value::Flag(outcome.Proven()),
               running);
    const ExitCode exit = ReportOutcome(invocation, session, write, outcome);
    if (outcome.state != RegionState::Old) {
        invocation.Changed();
    }
    if (exit == ExitCode::Done && IsPending(plan, outcome, running)) {
        TellPending(invocation, session, plan);
    }
    if (exit == ExitCode::Done && write.image != plan.bytes) {
        invocation.Note("the adapter's own identity was carried over into the image");
    }
    if (outcome.interrupted) {
        invocation.Note("interrupted: the region was finished first");
        throw tools::Stopped{tools::StopReason::Interrupted};
    }
    return exit;
}

ExitCode FlashWrite(tools::Invocation& invocation) {
    const auto& given = invocation.Given();
    AdapterSession session = OpenSelectedAdapter(invocation);
    const UpdatePlan plan = PlanUpdate(
        invocation, session,
        {given.Text("FILE"), given.Text("REGION"), given.Has("pad"), {given.Has("allow-older")}});
    Record& result = invocation.Result();
    AddPlan(result, session, plan);
    if (const ExitCode exit = ReportFindings(invocation, plan); exit != ExitCode::Done) {
        AddNothing(result, plan);
        return exit;
    }
    if (plan.same && !given.Has("allow-same")) {
        AddNothing(result, plan);
        invocation.Note("nothing to do: the region holds these bytes already",
                        "--allow-same writes them all the same");
        return ExitCode::Done;
    }
    if (invocation.DryRun()) {
        AddNothing(result, plan);
        invocation.Note("dry run: the image would be written");
        return ExitCode::Done;
    }
    invocation.Confirm(QuestionAbout(session, plan));
    invocation.CheckStop();
    return Write(invocation, session, plan);
}

}  // namespace

tools::CommandRows FlashWriteCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "flash write",
            .risk = tools::Risk::Irrecoverable,
            .help = "write a region, and prove that it was",
            .schema = "flash.write",
            .arguments = kWriteArguments,
            .run = FlashWrite,
            .example = "flash write boot boot-362.bin -a serial:EMU7740A0001",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
