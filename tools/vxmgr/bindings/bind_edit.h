// Editing the stored bindings of a port.
#pragma once

#include <optional>

#include "common/wwn.h"
#include "hxmgtapi.h"

namespace vxmgr {

// The target of another binding that has the same bus and target ID.
std::optional<tools::Wwn> AddressHolder(const HX_TARGET_DATA& block,
                                        const HX_DEVICE_RECORD& wanted);

// Binds the target, or changes its binding: what the record does not say stays. False when the
// block is full.
bool PutBinding(HX_TARGET_DATA& block, const HX_DEVICE_RECORD& wanted,
                std::optional<uint16_t> lunBase);

// Leaves a free slot behind. False when the target is not bound.
bool RemoveBinding(HX_TARGET_DATA& block, const tools::Wwn& portName);

// The new target takes the place (slot, address, flags) of the old one, and gives the old one its
// own when it was bound too. False when the old one is not bound.
bool SwapBindings(HX_TARGET_DATA& block, const tools::Wwn& oldPortName,
                  const HX_DEVICE_RECORD& newTarget);

}  // namespace vxmgr
