// Counters of a remote port, or of the port itself, page by page.
#include <cstring>

#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "model/health/scm.h"
#include "model/statistics.h"
#include "statistics/statistics_records.h"

namespace vxemu {
namespace {

using properties::AddressBlock;
using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

// Whose counters a request is about: a device, or the port itself when it is null.
DriverStatus ReadDestination(const Exchange& exchange, AddressBlock& block,
                             const TargetProfile*& device) {
    device = nullptr;
    if (!exchange.Read(block)) {
        return DriverStatus::InvalidParameter;
    }
    const auto type = static_cast<properties::DriverAddress>(block.driverType);
    if (type != properties::DriverAddress::None) {
        device = FindDevice(exchange.GetPort(), type, block.address);
    }
    return device != nullptr || type == properties::DriverAddress::None
               ? DriverStatus::Success
               : DriverStatus::DeviceNotFound;
}

constexpr uint32_t kWords = sizeof(HX_PORT_STATISTICS) / sizeof(uint64_t);

// A port knows of another one its link errors and what went to and fro.
HX_PORT_STATISTICS RemoteCounters(const Port& port, const TargetProfile& device) {
    HX_PORT_STATISTICS counters;
    std::memset(&counters, 0xFF, sizeof counters);
    const HX_PORT_STATISTICS& counted = PeerOf(port, device).counted.port;
    counters.txFrames = counted.txFrames;
    counters.txWords = counted.txWords;
    counters.rxFrames = counted.rxFrames;
    counters.rxWords = counted.rxWords;
    counters.linkFailures = RemoteLinkErrors(port, device, 0);
    counters.lossesOfSync = RemoteLinkErrors(port, device, 1);
    counters.lossesOfSignal = RemoteLinkErrors(port, device, 2);
    counters.primitiveSequenceErrors = RemoteLinkErrors(port, device, 3);
    counters.invalidTransmissionWords = RemoteLinkErrors(port, device, 4);
    counters.invalidCrcs = RemoteLinkErrors(port, device, 5);
    return counters;
}

HX_PORT_STATISTICS CountersFor(const Port& port, const TargetProfile* device) {
    return device != nullptr ? RemoteCounters(port, *device) : WideCountersOf(port);
}

// Counters of 32 bits in places of 64: they wrap, but those that are not available.
HX_PORT_STATISTICS Wrapped(const HX_PORT_STATISTICS& counters) {
    uint64_t words[kWords];
    std::memcpy(words, &counters, sizeof words);
    for (uint64_t& word : words) {
        word = word == HX_NOT_COUNTED ? word : static_cast<uint32_t>(word);
    }
    HX_PORT_STATISTICS wrapped;
    std::memcpy(&wrapped, words, sizeof wrapped);
    return wrapped;
}

DriverStatus ReplyPage(Exchange& exchange, bool wraps) {
    AddressBlock block;
    const TargetProfile* device;
    if (const DriverStatus status = ReadDestination(exchange, block, device);
        status != DriverStatus::Success) {
        return status;
    }
    Port& port = exchange.GetPort();
    if (block.page == static_cast<uint16_t>(statistics::StatisticsPage::Scm)) {
        if (port.profile->scm == 0) {
            return DriverStatus::UnsupportedSubCode;
        }
        exchange.Reply(CongestionPage(port, device));
        return DriverStatus::Success;
    }
    if (block.page != static_cast<uint16_t>(statistics::StatisticsPage::Counters)) {
        return DriverStatus::InvalidParameter;
    }
    const HX_PORT_STATISTICS counters = CountersFor(port, device);
    exchange.Reply(wraps ? Wrapped(counters) : counters);
    return DriverStatus::Success;
}

DriverStatus DestinationStatistics(Exchange& exchange) {
    return ReplyPage(exchange, true);
}

DriverStatus DestinationStatisticsV1(Exchange& exchange) {
    return ReplyPage(exchange, false);
}

DriverStatus DestinationStatisticsV2(Exchange& exchange) {
    AddressBlock block;
    const TargetProfile* device;
    if (const DriverStatus status = ReadDestination(exchange, block, device);
        status != DriverStatus::Success) {
        return status;
    }
    const Port& port = exchange.GetPort();
    HX_PORT_STATISTICS_V2 reply = port.counted;
    if (device != nullptr) {
        std::memset(&reply, 0xFF, offsetof(HX_PORT_STATISTICS_V2, reserved376));
        reply.fcp = PeerOf(port, *device).counted.fcp;
    }
    reply.port = CountersFor(port, device);
    exchange.Reply(reply);
    return DriverStatus::Success;
}

// The first form has no word for what is not available.
DriverStatus PortStatistics(Exchange& exchange) {
    AddressBlock block;
    const TargetProfile* device;
    if (const DriverStatus status = ReadDestination(exchange, block, device);
        status != DriverStatus::Success) {
        return status;
    }
    const Port& port = exchange.GetPort();
    HX_STATISTICS reply = Narrow(CountersFor(port, device));
    if (device != nullptr) {
        reply.secondsSinceReset = 0;
        reply.lipCount = 0;
    }
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr ExtendedRow kDestinationRequests[] = {
    {.command = command::PortStatistics, .handle = PortStatistics, .flags = WithinPort},
    {.command = command::DestinationStatistics,
     .handle = DestinationStatistics,
     .flags = WithinPort},
    {.command = command::DestinationStatisticsV1,
     .handle = DestinationStatisticsV1,
     .flags = WithinPort},
    {.command = command::DestinationStatisticsV2,
     .handle = DestinationStatisticsV2,
     .flags = WithinPort},
};

}  // namespace

RequestRows DestinationRequests() {
    return {.extended = kDestinationRequests};
}

}  // namespace vxemu
