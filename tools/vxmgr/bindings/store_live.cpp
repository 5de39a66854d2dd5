#include "vxmgr/bindings/store_live.h"

namespace vxmgr {
namespace {

bool SameAddress(const HX_DEVICE_RECORD& a, const HX_DEVICE_RECORD& b) {
    return a.bus == b.bus && a.target == b.target;
}

std::string PlaceText(const HX_DEVICE_RECORD& device) {
    return "bus:target " + std::to_string(device.bus) + ":" + std::to_string(device.target) +
           ", flags " + Hex(device.bindingFlags, 2);
}

// The request keeps the driver's own address and LUN mask of the target.
HX_STATUS SetFlags(uint32_t handle, const HX_DEVICE_RECORD& wanted) {
    const auto block = std::make_unique<HX_TARGET_DATA>();
    block->count = 1;
    HX_TARGET_ENTRY& entry = block->entries[0];
    SetNames(entry, Wwn::Of(wanted.nodeName), Wwn::Of(wanted.portName));
    entry.bindingFlags = wanted.bindingFlags;
    return HXSetTargetData(handle, 0, block.get(), 0);
}

bool HasPlace(const PortTargets& targets, const HX_DEVICE_RECORD& wanted) {
    const KnownTarget* now = targets.Known(Wwn::Of(wanted.portName));
    return now != nullptr && SameAddress(now->record, wanted);
}

bool IsProven(const PortTargets& targets, const HX_DEVICE_RECORD& wanted) {
    return HasPlace(targets, wanted) &&
           (!targets.OwnPort().IsCurrentGeneration() ||
            targets.Known(Wwn::Of(wanted.portName))->record.bindingFlags == wanted.bindingFlags);
}

// A driver may exchange the addresses alone: both targets shall be as bound as was asked for.
void BindAfterSwap(Invocation& invocation, PortTargets& targets, const HX_DEVICE_RECORD& after,
                   Steps& steps) {
    const KnownTarget* now = targets.Known(Wwn::Of(after.portName));
    if (now == nullptr || after.bindingFlags == 0 ||
        now->record.bindingFlags == after.bindingFlags ||
        !targets.OwnPort().IsCurrentGeneration()) {
        return;
    }
    HX_DEVICE_RECORD wanted = now->record;
    wanted.bindingFlags = after.bindingFlags;
    BindLive(invocation, targets, wanted, AwayTarget::Failed, steps);
}

}  // namespace

void BindLive(Invocation& invocation, PortTargets& targets, const HX_DEVICE_RECORD& wanted,
              AwayTarget away, Steps& steps) {
    const Wwn name = Wwn::Of(wanted.portName);
    const KnownTarget* known = targets.Known(name);
    const bool current = targets.OwnPort().IsCurrentGeneration();
    const bool sameAddress = known != nullptr && SameAddress(known->record, wanted);
    const std::string what = "bind, " + PlaceText(wanted);
    // An older driver does not tell the flags, so that they are always sent.
    if (sameAddress && current && known->record.bindingFlags == wanted.bindingFlags) {
        steps.Add(kLive, name, Outcome::Unchanged, PlaceText(wanted));
        return;
    }
    // There the request that adds a target would mask all of its LUNs.
    if (known != nullptr && !sameAddress && !current) {
        steps.Add(kLive, name, Outcome::Pending,
                  "this driver takes another address only at its next start");
        return;
    }
    if (invocation.DryRun()) {
        steps.Done(kLive, name, what);
        return;
    }
    HX_STATUS status =
        sameAddress ? SetFlags(targets.Handle(), wanted) : HX_STATUS{HXMGT_NOT_SUPPORTED};
    // The request that adds a target also moves it. Current drivers need not know the other one.
    if (!sameAddress || (current && ExitCodeOf(status) == ExitCode::NotSupported)) {
        status = HXAddTargetDevice(targets.Handle(), &wanted);
    }
    // An older driver does not say why it refuses.
    if (known == nullptr && status != HXMGT_SUCCESS &&
        (status == HXMGT_DEVICE_NOT_FOUND || !current)) {
        steps.Away(name, away, WhyAway(targets));
        return;
    }
    if (status == HXMGT_SUCCESS &&
        (targets.ReadKnown() != HXMGT_SUCCESS || !IsProven(targets, wanted))) {
        invocation.Changed();
        steps.Fail(kLive, name, ExitCode::NotProven,
                   "the driver took the binding, but does not show it", "see `bind list`");
        return;
    }
    steps.Tried(kLive, name, status, what);
}

std::string SwapText(const Wwn& newTarget) {
    return "gives its place to " + newTarget.Colons();
}

bool SwapLive(Invocation& invocation, PortTargets& targets, const BindingSwap& swap, Steps& steps) {
    const Wwn oldName = Wwn::Of(swap.oldTarget.portName);
    const Wwn newName = Wwn::Of(swap.newTarget.portName);
    const std::string what = SwapText(newName);
    if (invocation.DryRun()) {
        steps.Done(kLive, oldName, what);
        return true;
    }
    const bool known = targets.Known(newName) != nullptr;
    const HX_DEVICE_RECORD& newTarget = known ? swap.newTarget : swap.newAfter;
    const HX_STATUS status = HXSwapTargetDevice(targets.Handle(), &swap.oldTarget, &newTarget);
    const bool refused = status == HXMGT_DEVICE_NOT_FOUND ||
                         (status != HXMGT_SUCCESS && !targets.OwnPort().IsCurrentGeneration());
    if (refused && targets.Known(oldName) == nullptr) {
        // The old target has nothing to exchange: its place is free.
        const bool waits = known && !targets.OwnPort().IsCurrentGeneration();
        BindLive(invocation, targets, swap.newAfter, AwayTarget::Failed, steps);
        return waits || HasPlace(targets, swap.newAfter);
    }
    if (refused && !known) {
        steps.Away(newName, AwayTarget::Failed, WhyAway(targets));
        return false;
    }
    if (status != HXMGT_SUCCESS) {
        steps.Tried(kLive, oldName, status, what);
        return false;
    }
    if (targets.ReadKnown() != HXMGT_SUCCESS || !HasPlace(targets, swap.newAfter)) {
        invocation.Changed();
        steps.Fail(kLive, oldName, ExitCode::NotProven,
                   "the driver took the request, but does not show the new target there",
                   "see `target list`");
        return false;
    }
    steps.Tried(kLive, oldName, HXMGT_SUCCESS, what);
    BindAfterSwap(invocation, targets, swap.newAfter, steps);
    BindAfterSwap(invocation, targets, swap.oldAfter, steps);
    return true;
}

void ApplyBindings(Invocation& invocation, PortTargets& targets, const HX_TARGET_DATA& block,
                   AwayTarget away, Steps& steps) {
    for (const HX_TARGET_ENTRY& entry : RowsOf(block)) {
        invocation.CheckStop();
        const Wwn name = Wwn::Of(entry.portName);
        if (IsFree(entry)) {
            continue;
        }
        const KnownTarget* known = targets.Known(name);
        if (known == nullptr) {
            steps.Away(name, away, WhyAway(targets));
            continue;
        }
        HX_DEVICE_RECORD wanted = known->record;
        wanted.bus = entry.bus;
        wanted.target = entry.target;
        wanted.bindingFlags = entry.bindingFlags;
        BindLive(invocation, targets, wanted, away, steps);
    }
}

std::string MaskText(const LunSet& masked) {
    return "masked: " + (masked.none() ? "none" : LunsText(masked));
}

void MaskLive(Invocation& invocation, const PortTargets& targets, const Wwn& target,
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
        steps.Fail(kLive, target, ExitCode::NotProven,
                   "the driver took the mask, but does not show it", "see `lunmask show`");
        return;
    }
    steps.Tried(kLive, target, status, MaskText(before) + " -> " + what);
}

void ApplyMasks(Invocation& invocation, PortTargets& targets, const HX_LUN_DATA& block,
                AwayTarget away, Steps& steps) {
    for (const HX_LUN_RECORD& record : RowsOf(block)) {
        invocation.CheckStop();
        const Wwn target = Wwn::Of(record.portName);
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
