#include "vxmgr/bindings/bind_edit.h"

#include "vxmgr/bindings/store_blocks.h"

namespace vxmgr {
namespace {

template <class To, class From>
void CopyIdentity(To& to, const From& from) {
    SetNames(to, Wwn::Of(from.nodeName), Wwn::Of(from.portName));
    std::memcpy(to.portId, from.portId, sizeof to.portId);
}

void SetPlace(HX_TARGET_ENTRY& entry, const HX_DEVICE_RECORD& wanted) {
    entry.bus = static_cast<uint8_t>(wanted.bus);
    entry.target = static_cast<uint8_t>(wanted.target);
    entry.targetNumber = wanted.targetNumber;
}

HX_DEVICE_RECORD InPlaceOf(HX_DEVICE_RECORD target, const HX_DEVICE_RECORD& other) {
    target.bus = other.bus;
    target.target = other.target;
    target.targetNumber = other.targetNumber;
    target.bindingFlags = 0;
    return target;
}

}  // namespace

std::optional<Wwn> AddressHolder(const HX_TARGET_DATA& block, const HX_DEVICE_RECORD& wanted) {
    for (const HX_TARGET_ENTRY& entry : RowsOf(block)) {
        const Wwn name = Wwn::Of(entry.portName);
        if (!IsFree(entry) && entry.bus == wanted.bus && entry.target == wanted.target &&
            name != Wwn::Of(wanted.portName)) {
            return name;
        }
    }
    return std::nullopt;
}

bool PutBinding(HX_TARGET_DATA& block, const HX_DEVICE_RECORD& wanted,
                std::optional<uint16_t> lunBase) {
    HX_TARGET_ENTRY* entry = FindRow(block, Wwn::Of(wanted.portName));
    if (entry == nullptr) {
        entry = NewRow(block);
    }
    if (entry == nullptr) {
        return false;
    }
    CopyIdentity(*entry, wanted);
    SetPlace(*entry, wanted);
    entry->bindingFlags = wanted.bindingFlags;
    entry->lunBase = lunBase.value_or(entry->lunBase);
    return true;
}

bool RemoveBinding(HX_TARGET_DATA& block, const Wwn& portName) {
    HX_TARGET_ENTRY* const entry = FindRow(block, portName);
    if (entry != nullptr) {
        *entry = {};
    }
    return entry != nullptr;
}

bool SwapBindings(HX_TARGET_DATA& block, const Wwn& oldPortName,
                  const HX_DEVICE_RECORD& newTarget) {
    HX_TARGET_ENTRY* const before = FindRow(block, oldPortName);
    if (before == nullptr) {
        return false;
    }
    if (HX_TARGET_ENTRY* const after = FindRow(block, Wwn::Of(newTarget.portName))) {
        CopyIdentity(*after, HX_TARGET_ENTRY(*before));
    }
    CopyIdentity(*before, newTarget);
    return true;
}

BindingSwap SwapOf(const HX_DEVICE_RECORD& oldTarget, const HX_DEVICE_RECORD& newTarget) {
    return {oldTarget, newTarget, InPlaceOf(oldTarget, newTarget), InPlaceOf(newTarget, oldTarget)};
}

bool PutSwap(HX_TARGET_DATA& block, const BindingSwap& swap, bool oldHasPlace) {
    if (!PutBinding(block, swap.oldTarget, std::nullopt) ||
        (oldHasPlace && !PutBinding(block, swap.newTarget, std::nullopt))) {
        return false;
    }
    // Masks count from a LUN byte of the slot, which goes with the place.
    SwapBindings(block, Wwn::Of(swap.oldTarget.portName), swap.newTarget);
    for (const HX_DEVICE_RECORD& after : {swap.newAfter, swap.oldAfter}) {
        if (HX_TARGET_ENTRY* const entry = FindRow(block, Wwn::Of(after.portName))) {
            SetPlace(*entry, after);
            entry->bindingFlags = after.bindingFlags;
        }
    }
    return true;
}

}  // namespace vxmgr
