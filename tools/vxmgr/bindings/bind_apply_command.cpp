// bind apply.
#include "vxmgr/bindings/bind_commands.h"
#include "vxmgr/bindings/bind_live.h"
#include "vxmgr/bindings/lunmask_live.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

constexpr tools::Argument kApplyArguments[] = {
    {"--masks", tools::ArgumentKind::Flag, "", "the stored LUN masks too"},
};

}  // namespace

std::span<const tools::Argument> BindApplyArguments() {
    return kApplyArguments;
}

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

}  // namespace vxmgr
