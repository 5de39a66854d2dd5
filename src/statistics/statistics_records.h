// Byte layouts of statistics and management address requests. The library reads them, the emulated
// adapters fill them. Free of platform headers; little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hxstatistics.h"
#include "transport/ext_ioctl.h"

namespace statistics {

static_assert(sizeof(HX_STATISTICS) == 112);  // LinkStatistics
static_assert(offsetof(HX_STATISTICS, lipCount) == 20);
static_assert(offsetof(HX_STATISTICS, linkFailures) == 24);
static_assert(offsetof(HX_STATISTICS, invalidCrcs) == 44);
static_assert(sizeof(HX_MGMT_ADDRESS) == 52);  // ManagementAddress
static_assert(offsetof(HX_MGMT_ADDRESS, unitType) == 16);
static_assert(offsetof(HX_MGMT_ADDRESS, portId) == 20);
static_assert(offsetof(HX_MGMT_ADDRESS, attachedNodes) == 24);
static_assert(offsetof(HX_MGMT_ADDRESS, ipVersion) == 28);
static_assert(offsetof(HX_MGMT_ADDRESS, udpPort) == 30);
static_assert(offsetof(HX_MGMT_ADDRESS, ipAddress) == 32);
static_assert(offsetof(HX_MGMT_ADDRESS, topologyDiscoveryFlags) == 50);
static_assert(sizeof(HX_MGMT_ADDRESS_SETTING) == 20);
static_assert(offsetof(HX_MGMT_ADDRESS_SETTING, ipAddress) == 4);

#pragma pack(push, 1)

// LegacyQuery of the counters: the extended reply's words behind the selector record.
enum class LegacyStatisticsSelector : uint32_t { Statistics = 7 };
struct LegacyStatisticsReply {
    transport::SelectorRecord selector;
    HX_STATISTICS counters;
    uint8_t reserved124[16];
};
static_assert(sizeof(LegacyStatisticsReply) == 140);
static_assert(offsetof(LegacyStatisticsReply, counters) == 12);

// SetManagementAddress.
struct SetAddressRequest {
    HX_MGMT_ADDRESS_SETTING setting;
    uint8_t reserved20[64];
};
static_assert(sizeof(SetAddressRequest) == 84);

#pragma pack(pop)

}  // namespace statistics
