// Requests that change the driver's targets.
#pragma once

#include <cstdint>
#include <span>

#include "hxmgtapi.h"
#include "hxpersist.h"

namespace persist {

// Sends a plain request that carries a target entry of the driver and the mask of its LUNs, of
// which at most 256 bytes are taken.
HX_STATUS SendTargetAndMask(uint32_t handle, uint32_t code, const HX_TARGET_ENTRY& entry,
                            std::span<const uint8_t> mask);

}  // namespace persist
