// Persistent target binding and LUN masks: the store in the registry, and the driver's live state.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"
#include "hxpersist.h"

namespace persist {

HX_STATUS GetTargetData(uint32_t handle, HX_TARGET_DATA* block, bool fromRegistry);
HX_STATUS SetTargetData(uint32_t handle, const HX_TARGET_DATA* block, bool toRegistry);
HX_STATUS AddTarget(uint32_t handle, const HX_DEVICE_RECORD* device);
HX_STATUS SwapTargets(uint32_t handle, const HX_DEVICE_RECORD* oldDevice,
                      const HX_DEVICE_RECORD* newDevice);

HX_STATUS GetLunData(uint32_t handle, HX_LUN_DATA* block, bool fromRegistry);
HX_STATUS SetLunData(uint32_t handle, HX_LUN_DATA* block, bool toRegistry);

HX_STATUS GetLunMask(uint32_t handle, const HX_BUS_TARGET_LUN* address, bool fromRegistry,
                     uint8_t* mask, uint32_t maskSize);
HX_STATUS GetLunMaskFc(uint32_t handle, const DESTINATIONADDRESS* address, bool fromRegistry,
                       uint8_t* mask, uint32_t maskSize);
HX_STATUS UpdateLunMask(uint32_t handle, const HX_BUS_TARGET_LUN* address, bool toRegistry,
                        const uint8_t* mask, uint32_t maskSize);
HX_STATUS UpdateLunMaskFc(uint32_t handle, const DESTINATIONADDRESS* address, bool toRegistry,
                          const uint8_t* mask, uint32_t maskSize);

// The lists and deletes need no adapter: they go through the stores of every driver service.
HX_STATUS GetDeviceList(HX_WWN_LIST* list);
HX_STATUS GetTargetList(HX_WWN_LIST* list);
HX_STATUS DeleteDeviceEntry(const uint8_t* portName);
HX_STATUS DeleteTargetEntry(const uint8_t* targetName);

}  // namespace persist
