// Byte layouts of the requests for counters and for the management address. The library reads them,
// the emulated adapters fill them. Free of platform headers; little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hxstatistics.h"
#include "properties/target_address.h"
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

// PortStatistics: an AddressBlock in, HX_STATISTICS back.
// DestinationStatistics and DestinationStatisticsV1: an AddressBlock with its page in, the page
// back.
enum class StatisticsPage : uint16_t { Counters = 0, Scm = 1 };
static_assert(sizeof(HX_PORT_STATISTICS) == 136);
static_assert(offsetof(HX_PORT_STATISTICS, txWords) == 16);
static_assert(offsetof(HX_PORT_STATISTICS, lipCount) == 40);
static_assert(offsetof(HX_PORT_STATISTICS, nosCount) == 48);
static_assert(offsetof(HX_PORT_STATISTICS, linkFailures) == 72);
static_assert(offsetof(HX_PORT_STATISTICS, invalidCrcs) == 112);
static_assert(offsetof(HX_PORT_STATISTICS, correctedFecBlocks) == 120);
static_assert(offsetof(HX_PORT_STATISTICS, uncorrectableFecBlocks) == 128);
static_assert(sizeof(HX_FPIN_COUNTERS) == 120);
static_assert(offsetof(HX_FPIN_COUNTERS, linkOther) == 48);
static_assert(offsetof(HX_FPIN_COUNTERS, deliveryTimeout) == 56);
static_assert(offsetof(HX_FPIN_COUNTERS, congestionCleared) == 80);
static_assert(offsetof(HX_FPIN_COUNTERS, congestionOther) == 112);
static_assert(sizeof(HX_PORT_SCM_STATISTICS) == 136);
static_assert(offsetof(HX_PORT_SCM_STATISTICS, state) == 4);
static_assert(offsetof(HX_PORT_SCM_STATISTICS, fpins) == 8);
static_assert(offsetof(HX_PORT_SCM_STATISTICS, lastEvent) == 128);
// DestinationStatisticsV2: an AddressBlock in.
static_assert(sizeof(HX_PORT_STATISTICS_V2) == 496);
static_assert(offsetof(HX_PORT_STATISTICS_V2, fcp) == 136);
static_assert(offsetof(HX_PORT_STATISTICS_V2, nvme) == 176);
static_assert(offsetof(HX_PORT_STATISTICS_V2, nvme.outputBytes) == 208);
static_assert(offsetof(HX_PORT_STATISTICS_V2, txCreditZero) == 216);
static_assert(offsetof(HX_PORT_STATISTICS_V2, txCreditsRecovered) == 248);
static_assert(offsetof(HX_PORT_STATISTICS_V2, abtsSent) == 280);
static_assert(offsetof(HX_PORT_STATISTICS_V2, taskSetFull) == 312);
static_assert(offsetof(HX_PORT_STATISTICS_V2, rscnsReceived) == 344);
static_assert(offsetof(HX_PORT_STATISTICS_V2, plogis) == 368);
// ScmStatistics; the link errors come with LinkStatistics.
static_assert(sizeof(HX_LINK_ERRORS) == 24);
static_assert(offsetof(HX_LINK_ERRORS, invalidCrcs) == 20);
static_assert(sizeof(HX_SCM_STATISTICS) == 512);
static_assert(offsetof(HX_SCM_STATISTICS, secondsSinceReset) == 8);
static_assert(offsetof(HX_SCM_STATISTICS, fpins) == 16);
static_assert(offsetof(HX_SCM_STATISTICS, peerFpins) == 136);
static_assert(offsetof(HX_SCM_STATISTICS, warningSignals) == 256);
static_assert(offsetof(HX_SCM_STATISTICS, warningInterval) == 288);
static_assert(offsetof(HX_SCM_STATISTICS, severity) == 296);
static_assert(offsetof(HX_SCM_STATISTICS, allowedPercent) == 298);
static_assert(offsetof(HX_SCM_STATISTICS, fpinsReceived) == 300);
static_assert(offsetof(HX_SCM_STATISTICS, lastEvent) == 304);
static_assert(offsetof(HX_SCM_STATISTICS, linkErrors) == 312);
static_assert(offsetof(HX_SCM_STATISTICS, reserved336) == 336);
// PrivateStatistics and PrivateStatisticsEx, both ways; of the input options alone count.
static_assert(sizeof(HX_PRIVATE_STATISTICS) == 512);
static_assert(offsetof(HX_PRIVATE_STATISTICS, secondsSinceReset) == 8);
static_assert(offsetof(HX_PRIVATE_STATISTICS, commandsStarted) == 16);
static_assert(offsetof(HX_PRIVATE_STATISTICS, queueFull) == 72);
static_assert(offsetof(HX_PRIVATE_STATISTICS, interrupts) == 128);
static_assert(offsetof(HX_PRIVATE_STATISTICS, linkDowns) == 160);
static_assert(sizeof(HX_PRIVATE_STATISTICS_EX) == 512);
static_assert(offsetof(HX_PRIVATE_STATISTICS_EX, buckets) == 4);
static_assert(offsetof(HX_PRIVATE_STATISTICS_EX, reads) == 16);
static_assert(offsetof(HX_PRIVATE_STATISTICS_EX, writes) == 208);
static_assert(offsetof(HX_PRIVATE_STATISTICS_EX, readTime) == 400);
static_assert(offsetof(HX_PRIVATE_STATISTICS_EX, longestWrite) == 424);

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
