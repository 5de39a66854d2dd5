// What a port knows of its fabric: remote and secured ports, the loop, link speeds, priorities,
// virtual ports, NVMe.
#pragma once

#include <cstdint>

#include "hxfabric.h"

namespace statistics {

HX_STATUS GetPositionalMap(uint32_t handle, HX_POSITIONAL_MAP* map);
HX_STATUS GetRemotePorts(uint32_t handle, HX_REMOTE_PORT* ports, uint32_t* count);
HX_STATUS GetSecurePorts(uint32_t handle, HX_SECURE_PORT* ports, uint32_t* count);

HX_STATUS GetTargetLinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target,
                             HX_TARGET_LINK_SPEED* record);
HX_STATUS SetTargetLinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target, uint16_t speed);

HX_STATUS GetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos);
HX_STATUS GetLunQosEnable(uint32_t handle, uint8_t* enabled);
HX_STATUS SetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos);

HX_STATUS GetVirtualPorts(uint32_t handle, HX_NPIV_ATTRIBUTES* attributes, HX_VIRTUAL_PORT* ports,
                          uint32_t* count);

HX_STATUS GetNvmePorts(uint32_t handle, HX_NVME_PORT* ports, uint32_t* count);
HX_STATUS GetNvmeTarget(uint32_t handle, const DESTINATIONADDRESS* target, HX_NVME_TARGET* record);
HX_STATUS GetNvmeNamespaces(uint32_t handle, const DESTINATIONADDRESS* target,
                            HX_NVME_NAMESPACE* namespaces, uint32_t* count);

}  // namespace statistics
