// flash write
#include "vxmgr/flash/commands.h"
#include "vxmgr/update/update_plan.h"
#include "vxmgr/update/update_region.h"
#include "vxmgr/update/update_stored.h"
#include "vxmgr/update/update_write.h"

namespace vxmgr {
namespace {

using tools::ArgumentKind;
using tools::ExitCode;
using tools::kFlag;

constexpr tools::Argument kWriteArguments[] = {
    {.name = "REGION", .help = "region by key or code", .required = true},
    {.name = "FILE", .help = "the image", .required = true},
    {.name = "--pad",
     .kind = ArgumentKind::Flag,
     .help = "fill a shorter image up to the region's size with 0xff"},
    {.name = "--allow-older",
     .kind = ArgumentKind::Flag,
     .help = "write an older version than there is"},
    {.name = "--allow-same",
     .kind = ArgumentKind::Flag,
     .help = "write what the region holds already"},
};

// What came of it, known only at the end.
struct FlashWriteEnd {
    std::optional<bool> written = false;
    std::optional<PlaceState> state{};
    std::optional<bool> verified{};
    std::string running;
};

const tools::Fields<FlashWriteEnd>& FlashWriteEndFields() {
    using End = FlashWriteEnd;
    static const tools::Fields<End> kFields = {
        {"written", "Written", kFlag.OrNull(), &End::written,
         "null: the adapter does not answer, so that nobody knows"},
        {"state", "Region holds", tools::Choice(kPlaceStates).OrNull(),
         [](const End& end) {
             return end.state ? kPlaceStates[static_cast<size_t>(*end.state)] : nullptr;
         },
         "what the region held when it was read back: its old contents, the image, a mixture, or "
         "not known; null when nothing was to be written"},
        {"verified", "Verified", kFlag.OrNull(), &End::verified,
         "null when nothing was written or the region could not be read back"},
        {"running_after", "Running now", tools::kText.OrNull(), &End::running},
    };
    return kFields;
}

struct FlashWritten {
    const UpdatePlan* plan;
    std::optional<FlashWriteEnd> end;
};

const tools::Fields<FlashWritten>& FlashWriteFields() {
    static const tools::Fields<FlashWritten> kFields = {
        {PlanFields(), &FlashWritten::plan},
        {FlashWriteEndFields(), &FlashWritten::end},
    };
    return kFields;
}

// Whether what was written has still to be started.
bool IsPending(const UpdatePlan& plan, const WriteOutcome& outcome, const std::string& running) {
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

FlashWriteEnd EndOf(const WriteOutcome& outcome, const std::string& running) {
    const bool unknown = outcome.state == PlaceState::Unknown;
    FlashWriteEnd end{.state = outcome.state, .running = running};
    end.written = unknown && outcome.status != HXMGT_SUCCESS
                      ? std::nullopt
                      : std::optional(outcome.state != PlaceState::Old);
    end.verified = unknown ? std::nullopt : std::optional(!outcome.trouble);
    return end;
}

ExitCode WriteImage(tools::Invocation& invocation, AdapterSession& session, const UpdatePlan& plan,
                    FlashWritten& result) {
    PlaceWrite write = RegionWrite(session, plan.layout, plan.region, plan.bytes, plan.before);
    const WriteOutcome outcome = WritePlace(invocation, session.Handle(), session.First(), write);
    session.Refresh();
    const std::string running = RunningVersion(session.First(), plan.region.code);
    result.end = EndOf(outcome, running);
    if (outcome.trouble) {
        invocation.Add(outcome.trouble->message);
    } else {
        if (IsPending(plan, outcome, running)) {
            invocation.AddPending({session.Object(), "firmware_restart",
                                   plan.region.Name() +
                                       ": stored, takes effect when the firmware starts next (`fw "
                                       "activate`, or a restart of the host)"});
        }
        if (write.image != plan.bytes) {
            invocation.Note("the adapter's own identity was carried over into the image");
        }
    }
    if (outcome.interrupted) {
        invocation.Note("interrupted: the region was finished first");
    }
    invocation.CheckStop();
    return outcome.trouble ? outcome.trouble->exit : ExitCode::Done;
}

ExitCode FlashWrite(tools::Invocation& invocation) {
    const auto& given = invocation.Given();
    AdapterSession session = OpenSelectedAdapter(invocation);
    const UpdatePlan plan = PlanUpdate(
        invocation, session, LookBeforeUpdate(invocation, session),
        {given.Text("FILE"), given.Text("REGION"), given.Has("pad"), {given.Has("allow-older")}});
    tools::GrowingResult result(invocation.Result(), FlashWriteFields(),
                                {&plan, FlashWriteEnd{.running = plan.running}});
    if (const ExitCode exit = ReportFindings(invocation, plan); exit != ExitCode::Done) {
        return exit;
    }
    if (plan.same && !given.Has("allow-same")) {
        invocation.Note("nothing to do: the region holds these bytes already",
                        "--allow-same writes them all the same");
        return ExitCode::Done;
    }
    if (invocation.DryRun()) {
        invocation.Note("dry run: the image would be written");
        return ExitCode::Done;
    }
    result.end.reset();
    invocation.Confirm(QuestionAbout(plan));
    invocation.CheckStop();
    return WriteImage(invocation, session, plan, result);
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
            .result = tools::ShapeOf<FlashWriteFields>,
        },
    };
    return kCommands;
}

}  // namespace vxmgr
