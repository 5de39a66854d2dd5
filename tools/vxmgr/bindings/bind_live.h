// Binding a target in the driver.
#pragma once

#include "vxmgr/bindings/store_port.h"
#include "vxmgr/bindings/store_steps.h"

namespace vxmgr {

// Binds the target as wanted says (names, identifier, bus, target, flags) and proves it by reading
// back, as one step. A driver below 7.05.03 changes the flags of a target that it knows, but not
// its address.
void BindLive(tools::Invocation& invocation, PortTargets& targets, const HX_DEVICE_RECORD& wanted,
              Steps& steps);

// Puts the new target in the place of the old one, in the same way.
void SwapLive(tools::Invocation& invocation, PortTargets& targets,
              const HX_DEVICE_RECORD& oldTarget, HX_DEVICE_RECORD newTarget, Steps& steps);

std::string SwapText(const tools::Wwn& newTarget);  // "gives its place to ..."

// The bindings of a whole block.
void ApplyBindings(tools::Invocation& invocation, PortTargets& targets, const HX_TARGET_DATA& block,
                   AwayTarget away, Steps& steps);

}  // namespace vxmgr
