#include "vxmgr/bindings/bind_live.h"

#include "common/status_codes.h"
#include "common/text.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

bool SameAddress(const HX_DEVICE_RECORD& a, const HX_DEVICE_RECORD& b) {
    return a.bus == b.bus && a.target == b.target;
}

std::string Described(const HX_DEVICE_RECORD& device) {
    return "bus:target " + std::to_string(device.bus) + ":" + std::to_string(device.target) +
           ", flags " + tools::Hex(device.bindingFlags, 2);
}

// The request keeps the driver's own address and LUN mask of the target.
HX_STATUS SetFlags(uint32_t handle, const HX_DEVICE_RECORD& wanted) {
    const auto block = std::make_unique<HX_TARGET_DATA>();
    block->count = 1;
    HX_TARGET_ENTRY& entry = block->entries[0];
    SetNames(entry, tools::Wwn::Of(wanted.nodeName), tools::Wwn::Of(wanted.portName));
    entry.bindingFlags = wanted.bindingFlags;
    return HXSetTargetData(handle, 0, block.get(), 0);
}

bool IsProven(const PortTargets& targets, const HX_DEVICE_RECORD& wanted) {
    const KnownTarget* now = targets.Known(tools::Wwn::Of(wanted.portName));
    return now != nullptr && SameAddress(now->record, wanted) &&
           (!targets.OwnPort().IsCurrentGeneration() ||
            now->record.bindingFlags == wanted.bindingFlags);
}

}  // namespace

void BindLive(tools::Invocation& invocation, PortTargets& targets, const HX_DEVICE_RECORD& wanted,
              Steps& steps) {
    const tools::Wwn name = tools::Wwn::Of(wanted.portName);
    const KnownTarget* known = targets.Known(name);
    const bool current = targets.OwnPort().IsCurrentGeneration();
    const bool sameAddress = known != nullptr && SameAddress(known->record, wanted);
    const std::string what = "bind, " + Described(wanted);
    // An older driver does not tell the flags, so that they are always sent.
    if (sameAddress && current && known->record.bindingFlags == wanted.bindingFlags) {
        steps.Add(kLive, name, Outcome::Unchanged, Described(wanted));
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
    if (!sameAddress || (current && tools::ExitCodeOf(status) == ExitCode::NotSupported)) {
        status = HXAddTargetDevice(targets.Handle(), &wanted);
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

std::string SwapText(const tools::Wwn& newTarget) {
    return "gives its place to " + newTarget.Colons();
}

void SwapLive(tools::Invocation& invocation, PortTargets& targets,
              const HX_DEVICE_RECORD& oldTarget, HX_DEVICE_RECORD newTarget, Steps& steps) {
    const tools::Wwn oldName = tools::Wwn::Of(oldTarget.portName);
    const tools::Wwn newName = tools::Wwn::Of(newTarget.portName);
    const std::string what = SwapText(newName);
    if (targets.Known(oldName) == nullptr) {
        steps.Away(oldName, AwayTarget::Failed);
        return;
    }
    if (invocation.DryRun()) {
        steps.Done(kLive, oldName, what);
        return;
    }
    if (targets.Known(newName) == nullptr) {
        newTarget.bus = oldTarget.bus;
        newTarget.target = oldTarget.target;
        newTarget.targetNumber = oldTarget.targetNumber;
        newTarget.bindingFlags = oldTarget.bindingFlags;
    }
    const HX_STATUS status = HXSwapTargetDevice(targets.Handle(), &oldTarget, &newTarget);
    if (status != HXMGT_SUCCESS) {
        steps.Tried(kLive, oldName, status, what);
        return;
    }
    const HX_STATUS read = targets.ReadKnown();
    const KnownTarget* after = read == HXMGT_SUCCESS ? targets.Known(newName) : nullptr;
    if (after == nullptr || !SameAddress(after->record, oldTarget)) {
        invocation.Changed();
        steps.Fail(kLive, oldName, ExitCode::NotProven,
                   "the driver took the request, but does not show the new target there",
                   "see `target list`");
        return;
    }
    steps.Tried(kLive, oldName, HXMGT_SUCCESS, what);
    // A driver may exchange the addresses alone: the new target shall be as bound as the old one
    // was.
    if (oldTarget.bindingFlags != 0 && after->record.bindingFlags == 0 &&
        targets.OwnPort().IsCurrentGeneration()) {
        newTarget = after->record;
        newTarget.bindingFlags = oldTarget.bindingFlags;
        BindLive(invocation, targets, newTarget, steps);
    }
}

void ApplyBindings(tools::Invocation& invocation, PortTargets& targets, const HX_TARGET_DATA& block,
                   AwayTarget away, Steps& steps) {
    for (const HX_TARGET_ENTRY& entry : RowsOf(block)) {
        invocation.CheckStop();
        const tools::Wwn name = tools::Wwn::Of(entry.portName);
        if (IsFree(entry)) {
            continue;
        }
        const KnownTarget* known = targets.Known(name);
        if (known == nullptr) {
            steps.Away(name, away);
            continue;
        }
        HX_DEVICE_RECORD wanted = known->record;
        wanted.bus = entry.bus;
        wanted.target = entry.target;
        wanted.bindingFlags = entry.bindingFlags;
        BindLive(invocation, targets, wanted, steps);
    }
}

}  // namespace vxmgr
