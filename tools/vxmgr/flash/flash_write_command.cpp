// flash write
#include "vxmgr/commands.h"
#include "vxmgr/update/update_plan.h"
#include "vxmgr/update/update_region.h"
#include "vxmgr/update/update_stored.h"
#include "vxmgr/update/update_write.h"

namespace vxmgr {
namespace {

constexpr Argument kWriteArguments[] = {
    {.name = "REGION", .help = "region by key or code", .required = true},
    {.name = "FILE", .help = "the image", .required = true},
    FlagOption("--pad", "fill a shorter image up to the region's size with 0xff"),
    FlagOption("--allow-older", "write an older version than there is"),
    FlagOption("--allow-same", "write what the region holds already"),
};

// What came of it, known only at the end.
struct FlashWriteEnd {
    std::optional<bool> written = false;
    std::optional<PlaceState> state{};
    std::optional<bool> verified{};
    std::string running;
};

const Fields<FlashWriteEnd> kFlashWriteEndFields = {
    {"written", "Written", kFlag.OrNull(), &FlashWriteEnd::written,
     "null: the adapter does not answer, so that nobody knows"},
    {"state", "Region holds", Choice(kPlaceStates).OrNull(),
     [](const FlashWriteEnd& end) {
         return end.state ? kPlaceStates[static_cast<size_t>(*end.state)] : nullptr;
     },
     "what the region held when it was read back: its old contents, the image, a mixture, or "
     "not known; null when nothing was to be written"},
    {"verified", "Verified", kFlag.OrNull(), &FlashWriteEnd::verified,
     "null when nothing was written or the region could not be read back"},
    {"running_after", "Running now", kText.OrNull(), &FlashWriteEnd::running},
};

struct FlashWritten {
    const UpdatePlan* plan;
    std::optional<FlashWriteEnd> end;
};

const Fields<FlashWritten> kFlashWriteFields = {
    {kPlanFields, &FlashWritten::plan},
    {kFlashWriteEndFields, &FlashWritten::end},
};

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

ExitCode WriteImage(Invocation& invocation, AdapterSession& session, const UpdatePlan& plan,
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

ExitCode FlashWrite(Invocation& invocation) {
    const auto& given = invocation.Given();
    AdapterSession session = OpenSelectedAdapter(invocation);
    const UpdatePlan plan = PlanUpdate(
        invocation, session, LookBeforeUpdate(invocation, session),
        {given.Text("FILE"), given.Text("REGION"), given.Has("pad"), {given.Has("allow-older")}});
    GrowingResult result(invocation.Result(), kFlashWriteFields,
                         {&plan, FlashWriteEnd{.running = plan.running}});
    if (const ExitCode exit = ReportFindings(invocation, plan); exit != ExitCode::Done) {
        return exit;
    }
    if (plan.same && !given.Has("allow-same")) {
        return invocation.DoneWith("nothing to do: the region holds these bytes already",
                                   "--allow-same writes them all the same");
    }
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: the image would be written");
    }
    result.end.reset();
    invocation.Confirm(QuestionAbout(plan));
    invocation.CheckStop();
    return WriteImage(invocation, session, plan, result);
}

}  // namespace

CommandRows FlashWriteCommands() {
    static const Command kCommands[] = {
        {.path = "flash write",
         .risk = Risk::Irrecoverable,
         .help = "write a region, and prove that it was",
         .arguments = kWriteArguments,
         .run = FlashWrite,
         .example = "flash write boot boot-362.bin -a serial:EMU7740A0001",
         .result = ShapeOf<kFlashWriteFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
