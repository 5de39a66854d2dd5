#include "model/statistics.h"

#include "model/fabric.h"
#include "model/handlers.h"

namespace vxemu {
namespace {

using transport::DriverStatus;

#pragma pack(push, 1)
struct StatisticsReply {
    uint32_t secondsSinceReset;
    uint32_t transmittedFrames;
    uint32_t receivedFrames;
    uint32_t transmittedWords;
    uint32_t receivedWords;
    uint32_t lipCount;
    uint32_t linkErrors[kLinkErrorCounters];
    uint32_t reserved[16];
};
static_assert(sizeof(StatisticsReply) == 112);
#pragma pack(pop)

void Reset(Port& port) {
    port.statisticsReset = port.fabric->host.Now();
    port.requestsBefore = port.requests;
}

}  // namespace

uint32_t RemoteLinkErrors(const uint8_t* portName, uint32_t counter) {
    return (portName[6] + counter) % 7;
}

// Each request counts as an exchange of a command and a response frame; besides, an idle port sends
// and receives one frame a second.
DriverStatus LinkStatistics(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    const uint64_t seconds = (port.fabric->host.Now() - port.statisticsReset) / 1000;
    const uint64_t requests = port.requests - port.requestsBefore;
    StatisticsReply reply = {};
    reply.secondsSinceReset = static_cast<uint32_t>(seconds);
    reply.transmittedFrames = static_cast<uint32_t>(seconds + requests);
    reply.receivedFrames = static_cast<uint32_t>(seconds + 2 * requests);
    reply.transmittedWords = 16 * reply.transmittedFrames;
    reply.receivedWords = 64 * reply.receivedFrames;
    reply.lipCount = port.profile->topology == Topology::PrivateLoop ? 1 : 0;
    exchange.Reply(reply);
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

}  // namespace vxemu
