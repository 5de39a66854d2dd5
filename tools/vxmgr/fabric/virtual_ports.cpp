#include "vxmgr/fabric/virtual_ports.h"

#include "vxmgr/app/read_list.h"

namespace vxmgr {

HX_STATUS ReadVirtualPorts(uint32_t handle, VirtualPorts* known) {
    return ReadList(
        [&](HX_VIRTUAL_PORT* ports, uint32_t* count) {
            return HXGetNPIVAttributes(handle, &known->attributes, ports, count);
        },
        &known->ports);
}

}  // namespace vxmgr
