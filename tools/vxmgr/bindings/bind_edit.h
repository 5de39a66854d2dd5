// Editing the stored bindings of a port.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// The target of another binding that has the same bus and target ID.
std::optional<Wwn> AddressHolder(const HX_TARGET_DATA& block, const HX_DEVICE_RECORD& wanted);

// Binds the target, or changes its binding: what the record does not say stays. False when the
// block is full.
bool PutBinding(HX_TARGET_DATA& block, const HX_DEVICE_RECORD& wanted,
                std::optional<uint16_t> lunBase);

// Leaves a free slot behind. False when the target is not bound.
bool RemoveBinding(HX_TARGET_DATA& block, const Wwn& portName);

// The new target takes the place (slot, address, flags) of the old one, and gives the old one its
// own when it was bound too. False when the old one is not bound.
bool SwapBindings(HX_TARGET_DATA& block, const Wwn& oldPortName, const HX_DEVICE_RECORD& newTarget);

// Two targets as they are, and as they are to be bound once they have exchanged their places (bus,
// target ID, target number). Flags of 0 afterwards leave those that a target has.
struct BindingSwap {
    HX_DEVICE_RECORD oldTarget;
    HX_DEVICE_RECORD newTarget;
    HX_DEVICE_RECORD oldAfter;
    HX_DEVICE_RECORD newAfter;
};

// Neither has flags afterwards.
BindingSwap SwapOf(const HX_DEVICE_RECORD& oldTarget, const HX_DEVICE_RECORD& newTarget);

// Binds the new target as the swap leaves it, and the old one unless it goes without a place. False
// when the block is full.
bool PutSwap(HX_TARGET_DATA& block, const BindingSwap& swap, bool oldHasPlace);

}  // namespace vxmgr
