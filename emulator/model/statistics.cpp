#include "model/statistics.h"

#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "statistics/statistics_records.h"

namespace vxemu {

uint32_t RemoteLinkErrors(const uint8_t* portName, uint32_t counter) {
    return (portName[6] + counter) % 7;
}

// Each request counts as an exchange of a command and a response frame; besides, an idle port sends
// and receives one frame a second. A link that goes down costs the light, the synchronisation and
// the link, once each.
HX_STATISTICS CountersOf(const Port& port) {
    const uint64_t seconds = (port.fabric->host.Now() - port.statisticsReset) / 1000;
    const uint64_t requests = port.requests - port.requestsBefore;
    HX_STATISTICS counters = {};
    counters.secondsSinceReset = static_cast<uint32_t>(seconds);
    counters.txFrames = static_cast<uint32_t>(seconds + requests);
    counters.rxFrames = static_cast<uint32_t>(seconds + 2 * requests);
    counters.txWords = 16 * counters.txFrames;
    counters.rxWords = 64 * counters.rxFrames;
    counters.lipCount = port.profile->topology == Topology::PrivateLoop ? 1 : 0;
    counters.linkFailures = port.linkLosses;
    counters.lossesOfSync = port.linkLosses;
    counters.lossesOfSignal = port.linkLosses;
    return counters;
}

namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

void Reset(Port& port) {
    port.statisticsReset = port.fabric->host.Now();
    port.requestsBefore = port.requests;
    port.linkLosses = 0;
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
