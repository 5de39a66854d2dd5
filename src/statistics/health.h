// Health of a port's hardware: temperature, locate LED, credit recovery, SerDes and retimer.
#pragma once

#include <cstdint>

#include "hxhealth.h"

namespace statistics {

HX_STATUS GetCreditRecovery(uint32_t handle, HX_BBCR_DATA* record);
HX_STATUS GetBoardTemperature(uint32_t handle, HX_BOARD_TEMPERATURE* record);
HX_STATUS GetBeacon(uint32_t handle, HX_BEACON* beacon);
HX_STATUS SetBeacon(uint32_t handle, const HX_BEACON* beacon);

HX_STATUS GetSerdesRegister(uint32_t handle, uint16_t address, uint16_t* value);
HX_STATUS SetSerdesRegister(uint32_t handle, uint16_t address, uint16_t value);
HX_STATUS GetLaneRegister(uint32_t handle, uint16_t lane, uint32_t address, uint32_t* value);
HX_STATUS SetLaneRegister(uint32_t handle, uint16_t lane, uint32_t address, uint32_t value);
HX_STATUS GetI2cRegister(uint32_t handle, uint16_t device, uint16_t address, uint16_t* value);
HX_STATUS SetI2cRegister(uint32_t handle, uint16_t device, uint16_t address, uint16_t value);
HX_STATUS GetSerdesLanes(uint32_t handle, HX_SERDES_LANE* lanes, uint32_t* count);

}  // namespace statistics
