#include "model/statistics.h"

#include <cstring>

#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "model/health/scm.h"
#include "statistics/statistics_records.h"

namespace vxemu {
namespace {

// Words of a frame on average, data aside.
constexpr uint32_t kTxFrameWords = 16;
constexpr uint32_t kRxFrameWords = 64;
constexpr uint32_t kDataFrameBytes = 2048;
constexpr uint32_t kSecondsPerCorrectedBlock = 10;

// Data beyond the command and response frames that every request counts as.
void CountData(HX_PORT_STATISTICS& counters, const ScsiTraffic& traffic) {
    const uint64_t frames = (traffic.bytes + kDataFrameBytes - 1) / kDataFrameBytes;
    const uint64_t words = traffic.bytes / sizeof(uint32_t);
    (traffic.out ? counters.txFrames : counters.rxFrames) += frames;
    (traffic.out ? counters.txWords : counters.rxWords) += words;
}

void CountProtocol(HX_PROTOCOL_STATISTICS& counters, const ScsiTraffic& traffic) {
    if (traffic.bytes == 0) {
        ++counters.controlRequests;
    } else if (traffic.out) {
        ++counters.outputRequests;
        counters.outputBytes += traffic.bytes;
    } else {
        ++counters.inputRequests;
        counters.inputBytes += traffic.bytes;
    }
}

}  // namespace

uint64_t RemoteLinkErrors(const uint8_t* portName, uint32_t counter) {
    return (portName[6] + counter) % 7;
}

uint64_t RemoteLinkErrors(const Port& port, const TargetProfile& device, uint32_t counter) {
    const HX_PORT_STATISTICS& counted = PeerOf(port, device).counted.port;
    uint64_t more[kLinkErrorCounters];
    static_assert(offsetof(HX_PORT_STATISTICS, correctedFecBlocks) -
                      offsetof(HX_PORT_STATISTICS, linkFailures) ==
                  sizeof more);
    std::memcpy(
        more,
        reinterpret_cast<const uint8_t*>(&counted) + offsetof(HX_PORT_STATISTICS, linkFailures),
        sizeof more);
    return RemoteLinkErrors(device.portName, counter) + more[counter];
}

// Each request counts as an exchange of a command and a response frame; besides, an idle port sends
// and receives one frame a second. A link that goes down costs the light, the synchronisation and
// the link, once each.
HX_PORT_STATISTICS WideCountersOf(const Port& port) {
    const uint64_t seconds = (port.fabric->host.Now() - port.statisticsReset) / 1000;
    const uint64_t requests = port.requests - port.requestsBefore;
    HX_PORT_STATISTICS counters = port.counted.port;
    counters.secondsSinceReset = seconds;
    counters.txFrames += seconds + requests;
    counters.rxFrames += seconds + 2 * requests;
    counters.txWords += kTxFrameWords * (seconds + requests);
    counters.rxWords += kRxFrameWords * (seconds + 2 * requests);
    counters.lipCount += port.profile->topology == Topology::PrivateLoop ? 1 : 0;
    counters.nosCount += counters.linkFailures;
    counters.errorFrames +=
        counters.primitiveSequenceErrors + counters.invalidTransmissionWords + counters.invalidCrcs;
    counters.correctedFecBlocks +=
        port.profile->fecActive != 0 ? seconds / kSecondsPerCorrectedBlock : 0;
    return counters;
}

HX_STATISTICS Narrow(const HX_PORT_STATISTICS& wide) {
    HX_STATISTICS counters = {};
    counters.secondsSinceReset = static_cast<uint32_t>(wide.secondsSinceReset);
    counters.txFrames = static_cast<uint32_t>(wide.txFrames);
    counters.rxFrames = static_cast<uint32_t>(wide.rxFrames);
    counters.txWords = static_cast<uint32_t>(wide.txWords);
    counters.rxWords = static_cast<uint32_t>(wide.rxWords);
    counters.lipCount = static_cast<uint32_t>(wide.lipCount);
    counters.linkFailures = static_cast<uint32_t>(wide.linkFailures);
    counters.lossesOfSync = static_cast<uint32_t>(wide.lossesOfSync);
    counters.lossesOfSignal = static_cast<uint32_t>(wide.lossesOfSignal);
    counters.primitiveSequenceErrors = static_cast<uint32_t>(wide.primitiveSequenceErrors);
    counters.invalidTransmissionWords = static_cast<uint32_t>(wide.invalidTransmissionWords);
    counters.invalidCrcs = static_cast<uint32_t>(wide.invalidCrcs);
    return counters;
}

HX_STATISTICS CountersOf(const Port& port) {
    return Narrow(WideCountersOf(port));
}

void StartCounters(Port& port) {
    const uint64_t now = port.fabric->host.Now();
    port.statisticsReset = now;
    port.privateCounts.countedSince = now;
    port.privateCounts.timesSince = now;
    port.counted.flogis = 1;
}

void CountScsi(Port& port, const TargetProfile& device, const ScsiTraffic& traffic) {
    CountData(port.counted.port, traffic);
    CountProtocol(port.counted.fcp, traffic);
    HX_PORT_STATISTICS_V2& remote = PeerOf(port, device).counted;
    CountData(remote.port, traffic);
    CountProtocol(remote.fcp, traffic);
    remote.port.txFrames += 1;
    remote.port.rxFrames += 2;
    remote.port.txWords += kTxFrameWords;
    remote.port.rxWords += 2 * kRxFrameWords;
    port.privateCounts.wrote = traffic.out;
}

namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

void Reset(Port& port) {
    port.statisticsReset = port.fabric->host.Now();
    port.requestsBefore = port.requests;
    std::memset(&port.counted, 0, sizeof port.counted);
    ResetCongestion(port);
}

DriverStatus LinkStatistics(Exchange& exchange) {
    exchange.Reply(CountersOf(exchange.GetPort()));
    return DriverStatus::Success;
}

DriverStatus ResetStatistics(Exchange& exchange) {
    Reset(exchange.GetPort());
    return DriverStatus::Success;
}

bool LegacyResetStatistics(Exchange& exchange) {
    Reset(exchange.GetPort());
    return true;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::LinkStatistics, .handle = LinkStatistics, .flags = WithinPort},
    {.command = command::ResetStatistics, .handle = ResetStatistics, .flags = WithinPort},
};

constexpr PlainRow kPlainRequests[] = {
    {.code = command::LegacyResetStatistics, .handle = LegacyResetStatistics, .flags = WithinPort},
    {.code = command::LegacyResetStatistics2, .handle = LegacyResetStatistics, .flags = WithinPort},
};

}  // namespace

RequestRows StatisticsRequests() {
    return {.extended = kRequests, .plain = kPlainRequests};
}

}  // namespace vxemu
