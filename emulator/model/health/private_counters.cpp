#include "model/health/private_counters.h"

#include <algorithm>
#include <cstring>

#include "model/bytes/pattern.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "statistics/statistics_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint32_t kCounters = (offsetof(HX_PRIVATE_STATISTICS, reserved168) -
                                offsetof(HX_PRIVATE_STATISTICS, commandsStarted)) /
                               sizeof(uint64_t);

// A request takes 64 microseconds up to a millisecond, by the pattern of its number.
constexpr uint32_t kFirstBucket = 6;
constexpr uint32_t kBucketsInUse = 4;

uint64_t SecondsSince(const Port& port, uint64_t when) {
    return (port.fabric->host.Now() - when) / 1000;
}

// What the request asks to happen behind the reading.
template <typename Record>
bool ReadOptions(const Exchange& exchange, bool& restart) {
    uint32_t options;
    static_assert(offsetof(Record, options) == 0);
    if (!exchange.Read(options) || options > HX_PRIVATE_RESTART) {
        return false;
    }
    restart = options == HX_PRIVATE_RESTART;
    return exchange.InputLength() >= sizeof(Record);
}

DriverStatus PrivateStatistics(Exchange& exchange) {
    bool restart;
    if (!ReadOptions<HX_PRIVATE_STATISTICS>(exchange, restart)) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    PrivateCounts& counts = port.privateCounts;
    const uint64_t requests = port.requests - counts.requestsBefore;
    HX_PRIVATE_STATISTICS reply = counts.counted;
    reply.counters = kCounters;
    reply.secondsSinceReset = SecondsSince(port, counts.countedSince);
    reply.commandsStarted += requests;
    reply.commandsCompleted += requests;
    reply.commandsOutstandingMost += 1;
    reply.interrupts += requests;
    exchange.Reply(reply);
    if (restart) {
        std::memset(&counts.counted, 0, sizeof counts.counted);
        counts.countedSince = port.fabric->host.Now();
        counts.requestsBefore = port.requests;
    }
    return DriverStatus::Success;
}

DriverStatus PrivateStatisticsEx(Exchange& exchange) {
    bool restart;
    if (!ReadOptions<HX_PRIVATE_STATISTICS_EX>(exchange, restart)) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    PrivateCounts& counts = port.privateCounts;
    counts.times.buckets = HX_LATENCY_BUCKETS;
    counts.times.secondsSinceReset = SecondsSince(port, counts.timesSince);
    exchange.Reply(counts.times);
    if (restart) {
        std::memset(&counts.times, 0, sizeof counts.times);
        counts.timesSince = port.fabric->host.Now();
    }
    return DriverStatus::Success;
}

constexpr ExtendedRow kPrivateRequests[] = {
    {.command = command::PrivateStatistics, .handle = PrivateStatistics, .flags = WithinPort},
    {.command = command::PrivateStatisticsEx, .handle = PrivateStatisticsEx, .flags = WithinPort},
};

}  // namespace

void CountFault(Port& port, const FaultAction& fault) {
    HX_PRIVATE_STATISTICS& counted = port.privateCounts.counted;
    const bool mailbox = fault.kind == FaultKind::Detail &&
                         fault.status == static_cast<uint32_t>(DriverStatus::MailboxFailed);
    counted.busyRetries += fault.kind == FaultKind::Busy ? 1 : 0;
    counted.mailboxFailures += mailbox ? 1 : 0;
    counted.underruns += fault.kind == FaultKind::Short ? 1 : 0;
}

void CountTime(Port& port) {
    PrivateCounts& counts = port.privateCounts;
    const uint32_t word = PatternWord(port.requests, 0);
    const uint32_t bucket = kFirstBucket + word % kBucketsInUse;
    const uint64_t time = (uint64_t{1} << bucket) + (word >> 8) % (1u << bucket);
    HX_PRIVATE_STATISTICS_EX& times = counts.times;
    uint64_t& total = counts.wrote ? times.writeTime : times.readTime;
    uint64_t& longest = counts.wrote ? times.longestWrite : times.longestRead;
    ++(counts.wrote ? times.writes : times.reads)[bucket];
    total += time;
    longest = std::max<uint64_t>(longest, time);
    counts.wrote = false;
}

RequestRows PrivateRequests() {
    return {.extended = kPrivateRequests};
}

}  // namespace vxemu
