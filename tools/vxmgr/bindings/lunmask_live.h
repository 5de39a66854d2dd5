// LUN masks in the driver.
#pragma once

#include "vxmgr/bindings/store_port.h"
#include "vxmgr/bindings/store_steps.h"

namespace vxmgr {

// Masks these LUNs of the target and no others, and proves it by reading back, as one step.
void MaskLive(tools::Invocation& invocation, const PortTargets& targets, const tools::Wwn& target,
              const LunSet& masked, Steps& steps);

// The masks of a whole block.
void ApplyMasks(tools::Invocation& invocation, const PortTargets& targets, const HX_LUN_DATA& block,
                AwayTarget away, Steps& steps);

std::string MaskText(const LunSet& masked);  // "masked: 3-4"

}  // namespace vxmgr
