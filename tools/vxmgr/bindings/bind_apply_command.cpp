// bind apply.
#include "vxmgr/bindings/store_live.h"
#include "vxmgr/bindings/commands.h"
#include "vxmgr/bindings/lunmask_live.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

constexpr tools::Argument kApplyArguments[] = {
    {"--masks", tools::ArgumentKind::Flag, "", "the stored LUN masks too"},
};

ExitCode BindApply(tools::Invocation& invocation) {
    PortTargets targets = OpenPortTargets(invocation);
    const bool masks = invocation.Given().Has("masks");
    TellState(invocation, targets.OwnPort(), targets.bindings.state, "bindings");
    if (!targets.bindings.IsStored() && !(masks && targets.masks.IsStored())) {
        invocation.Fail(ExitCode::NotFound, "there is nothing stored to apply",
                        "`bind add` and `bind import` store bindings");
    }
    if (!invocation.DryRun()) {
        invocation.Confirm(QuestionAbout(
            targets.session, "Bind the stored targets in the running driver.",
            "A target whose address changes is not reached meanwhile: I/O to it stops."));
    }
    Steps steps(invocation, targets.OwnPort().Object());
    ApplyBindings(invocation, targets, *targets.bindings.block, AwayTarget::Failed, steps);
    if (masks) {
        TellState(invocation, targets.OwnPort(), targets.masks.state, "LUN masks");
        ApplyMasks(invocation, targets, *targets.masks.block, AwayTarget::Failed, steps);
    }
    return steps.Finish();
}

}  // namespace

tools::CommandRows BindApplyCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "bind apply",
            .risk = tools::Risk::InterruptsIo,
            .help = "bind in the driver what is stored",
            .schema = "bind.change",
            .arguments = kApplyArguments,
            .run = BindApply,
            .example = "bind apply --masks -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
