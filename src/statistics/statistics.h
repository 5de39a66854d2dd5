// Counters of a port's link and its management address.
#pragma once

#include <cstdint>

#include "hxstatistics.h"

namespace statistics {

HX_STATUS GetStatistics(uint32_t handle, HX_STATISTICS* record);
HX_STATUS ResetStatistics(uint32_t handle);

HX_STATUS GetManagementAddress(uint32_t handle, void* record, uint32_t size);
HX_STATUS SetManagementAddress(uint32_t handle, const HX_MGMT_ADDRESS_SETTING* record);

}  // namespace statistics
