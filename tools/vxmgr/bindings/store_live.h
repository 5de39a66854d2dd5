// Binding targets and masking LUNs in the driver.
#pragma once

#include "vxmgr/bindings/bind_edit.h"
#include "vxmgr/bindings/store_port.h"
#include "vxmgr/bindings/store_steps.h"

namespace vxmgr {

// Binds the target as wanted says (names, identifier, bus, target, flags) and proves it by reading
// back, as one step. A driver below 7.05.03 changes the flags of a target that it knows, but not
// its address. away: what it means that the driver finds no such target.
void BindLive(Invocation& invocation, PortTargets& targets, const HX_DEVICE_RECORD& wanted,
              AwayTarget away, Steps& steps);

// Exchanges the targets in the driver and proves it, in the same way. A new target takes the place
// of an old one that the driver does not know. True when the new target has the place now, or will
// have it: at the driver's next start, or behind a dry run.
bool SwapLive(Invocation& invocation, PortTargets& targets, const BindingSwap& swap, Steps& steps);

std::string SwapText(const Wwn& newTarget);  // "gives its place to ..."

// The bindings of a whole block.
void ApplyBindings(Invocation& invocation, PortTargets& targets, const HX_TARGET_DATA& block,
                   AwayTarget away, Steps& steps);

// Masks these LUNs of the target and no others, and proves it by reading back, as one step.
void MaskLive(Invocation& invocation, const PortTargets& targets, const Wwn& target,
              const LunSet& masked, Steps& steps);

// The masks of a whole block.
void ApplyMasks(Invocation& invocation, PortTargets& targets, const HX_LUN_DATA& block,
                AwayTarget away, Steps& steps);

std::string MaskText(const LunSet& masked);  // "masked: 3-4"

}  // namespace vxmgr
