// What an adapter and its port are: the property records, on both driver generations.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace properties {

HX_STATUS GetNodeProperty(uint32_t handle, HX_NODE_PROPERTY* record);
HX_STATUS GetNodePropertyResync(uint32_t handle, HX_NODE_PROPERTY* record);

HX_STATUS GetPortProperty(uint32_t handle, HX_PORT_PROPERTY* record);
HX_STATUS GetPortPropertyV1(uint32_t handle, HX_PORT_PROPERTY* record);
HX_STATUS GetPortPropertyV2(uint32_t handle, HX_PORT_PROPERTY* record);
HX_STATUS GetPortDisableInfo(uint32_t handle);

HX_STATUS GetChipProperty(uint32_t handle, HX_CHIP_PROPERTY* record);
HX_STATUS GetDriverProperty(uint32_t handle, HX_DRIVER_PROPERTY* record);
HX_STATUS GetFirmwareProperty(uint32_t handle, HX_FIRMWARE_PROPERTY* record);
HX_STATUS VerifyHbaState(uint32_t handle);
HX_STATUS UpdateAdapterModelInBios(uint32_t handle, uint8_t* record);

HX_STATUS GetSmartSanStatus(uint8_t* enabled);
HX_STATUS EnableSmartSan(uint32_t handle);
HX_STATUS DisableSmartSan(uint32_t handle);

}  // namespace properties
