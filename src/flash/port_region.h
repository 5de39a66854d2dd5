// The flash region of a port's NVRAM or VPD.
#pragma once

#include <cstdint>

#include "flash/region_rules.h"
#include "hxmgtapi.h"

namespace flash {

HX_STATUS IdentifyPort(uint32_t handle, PortIdentity& port);

// The region that an access goes to; asks the driver for the active bank where that decides.
// An answer that does not come counts as the first. HXMGT_INVALID_REQUEST when the port has none.
HX_STATUS ChoosePortRegion(uint32_t handle, const PortRegionRules& rules, const PortIdentity& port,
                           Direction direction, uint32_t& regionCode);

struct FoundRegion {
    uint32_t code;
    uint32_t size;
};

// The same, and its size by the layout; HXMGT_INVALID_REQUEST when the layout does not have it.
HX_STATUS FindPortRegion(uint32_t handle, const PortRegionRules& rules, const PortIdentity& port,
                         Direction direction, FoundRegion& region);

}  // namespace flash
