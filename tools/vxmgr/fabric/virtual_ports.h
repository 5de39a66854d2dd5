// The virtual ports of a port (NPIV).
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

struct VirtualPorts {
    HX_NPIV_ATTRIBUTES attributes{};
    std::vector<HX_VIRTUAL_PORT> ports{};
};

HX_STATUS ReadVirtualPorts(uint32_t handle, VirtualPorts* known);

}  // namespace vxmgr
