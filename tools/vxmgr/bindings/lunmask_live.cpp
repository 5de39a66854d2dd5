#include "vxmgr/bindings/lunmask_live.h"

namespace vxmgr {

std::string MaskText(const LunSet& masked) {
    return "masked: " + (masked.none() ? "none" : LunsText(masked));
}

void MaskLive(tools::Invocation& invocation, const PortTargets& targets, const tools::Wwn& target,
              const LunSet& masked, Steps& steps) {
    const std::string what = MaskText(masked);
    LunSet before;
    HX_STATUS status = ReadLiveMask(targets.OwnPort(), targets.Handle(), target, &before);
    if (status == HXMGT_SUCCESS && before == masked) {
        steps.Add(kLive, target, Outcome::Unchanged, what);
        return;
    }
    if (status == HXMGT_SUCCESS && invocation.DryRun()) {
        steps.Done(kLive, target, MaskText(before) + " -> " + what);
        return;
    }
    if (status == HXMGT_SUCCESS) {
        status = WriteLiveMask(targets.Handle(), target, masked);
    }
    LunSet after;
    if (status == HXMGT_SUCCESS &&
        (ReadLiveMask(targets.OwnPort(), targets.Handle(), target, &after) != HXMGT_SUCCESS ||
         after != masked)) {
        invocation.Changed();
        steps.Fail(kLive, target, tools::ExitCode::NotProven,
                   "the driver took the mask, but does not show it", "see `lunmask show`");
        return;
    }
    steps.Tried(kLive, target, status, MaskText(before) + " -> " + what);
}

void ApplyMasks(tools::Invocation& invocation, const PortTargets& targets, const HX_LUN_DATA& block,
                AwayTarget away, Steps& steps) {
    for (const HX_LUN_RECORD& record : RowsOf(block)) {
        invocation.CheckStop();
        const tools::Wwn target = tools::Wwn::Of(record.portName);
        if (IsFree(record)) {
            continue;
        }
        if (targets.Known(target) != nullptr) {
            const LunSet masked = MaskedOf(record) & FirstLuns(LunLimit(targets.OwnPort()));
            MaskLive(invocation, targets, target, masked, steps);
        } else {
            steps.Away(target, away, WhyAway(targets));
        }
    }
}

}  // namespace vxmgr
