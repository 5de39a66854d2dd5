// Counters of a port's link, of its traffic, of what the fabric notifies, of the driver; and the
// port's management address.
#pragma once

#include <cstdint>

#include "hxstatistics.h"

namespace statistics {

HX_STATUS GetStatistics(uint32_t handle, HX_STATISTICS* record);
HX_STATUS ResetStatistics(uint32_t handle);

HX_STATUS GetManagementAddress(uint32_t handle, void* record, uint32_t size);
HX_STATUS SetManagementAddress(uint32_t handle, const HX_MGMT_ADDRESS_SETTING* record);

HX_STATUS GetPortStatistics(uint32_t handle, const DESTINATIONADDRESS* destination,
                            HX_PORT_STATISTICS* record);
HX_STATUS GetPortStatisticsV1(uint32_t handle, const DESTINATIONADDRESS* destination,
                              HX_PORT_STATISTICS* record);
HX_STATUS GetPortStatisticsV2(uint32_t handle, const DESTINATIONADDRESS* destination,
                              HX_PORT_STATISTICS_V2* record);
HX_STATUS GetPortScmStatistics(uint32_t handle, const DESTINATIONADDRESS* destination,
                               HX_PORT_SCM_STATISTICS* record);
HX_STATUS GetScmStatistics(uint32_t handle, HX_SCM_STATISTICS* record);
HX_STATUS GetPrivateStatistics(uint32_t handle, HX_PRIVATE_STATISTICS* record);
HX_STATUS GetPrivateStatisticsEx(uint32_t handle, HX_PRIVATE_STATISTICS_EX* record);

}  // namespace statistics
