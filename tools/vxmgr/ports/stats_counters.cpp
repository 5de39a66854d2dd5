#include "vxmgr/ports/stats_counters.h"

#include <algorithm>

namespace vxmgr {
namespace {

using Link = HX_PORT_STATISTICS;
using Traffic = HX_PORT_STATISTICS_V2;
using Protocol = HX_PROTOCOL_STATISTICS;
using Fpins = HX_FPIN_COUNTERS;
using Scm = HX_SCM_STATISTICS;
using Driver = HX_PRIVATE_STATISTICS;
using Latency = HX_PRIVATE_STATISTICS_EX;

// clang-format off
constexpr Counter<Link> kLink[] = {
    {"seconds",          "Since the last reset",       "SECONDS",   8,  &Link::secondsSinceReset, "s"},
    {"tx_frames",        "Frames sent",                "TX FRAMES", 10, &Link::txFrames},
    {"rx_frames",        "Frames received",            "RX FRAMES", 10, &Link::rxFrames},
    {"tx_words",         "Words sent",                 "TX WORDS",  10, &Link::txWords},
    {"rx_words",         "Words received",             "RX WORDS",  10, &Link::rxWords},
    {"lips",             "Loop initialisations",       "LIP",       5,  &Link::lipCount},
    {"link_failures",    "Link failures",              "LINK",      5,  &Link::linkFailures, "", false, "link failure", "link failures"},
    {"losses_of_sync",   "Losses of synchronisation",  "SYNC",      5,  &Link::lossesOfSync, "", false, "loss of synchronisation", "losses of synchronisation"},
    {"losses_of_signal", "Losses of signal",           "SIGNAL",    6,  &Link::lossesOfSignal, "", false, "loss of signal", "losses of signal"},
    {"sequence_errors",  "Primitive sequence errors",  "SEQUENCE",  8,  &Link::primitiveSequenceErrors, "", false, "primitive sequence error", "primitive sequence errors"},
    {"invalid_words",    "Invalid transmission words", "WORD",      5,  &Link::invalidTransmissionWords, "", false, "invalid transmission word", "invalid transmission words"},
    {"invalid_crcs",     "CRC errors",                 "CRC",       5,  &Link::invalidCrcs, "", false, "CRC error", "CRC errors"},
};

constexpr Counter<Link> kFrames[] = {
    {"seconds",           "Since the last reset",     "SECONDS",  8, &Link::secondsSinceReset, "s"},
    {"nos",               "NOS primitives",           "NOS",      5, &Link::nosCount},
    {"error_frames",      "Frames with errors",       "ERRORS",   6, &Link::errorFrames},
    {"dumped_frames",     "Frames without a buffer",  "DUMPED",   6, &Link::dumpedFrames},
    {"fec_corrected",     "FEC blocks corrected",     "FEC GOOD", 8, &Link::correctedFecBlocks},
    {"fec_uncorrectable", "FEC blocks uncorrectable", "FEC BAD",  7, &Link::uncorrectableFecBlocks},
};

constexpr Counter<Protocol> kProtocol[] = {
    {"input_requests",   "Reading requests",      "IN",        8,  &Protocol::inputRequests},
    {"output_requests",  "Writing requests",      "OUT",       8,  &Protocol::outputRequests},
    {"control_requests", "Requests without data", "",          0,  &Protocol::controlRequests},
    {"input_bytes",      "Bytes read",            "BYTES IN",  10, &Protocol::inputBytes},
    {"output_bytes",     "Bytes written",         "BYTES OUT", 10, &Protocol::outputBytes},
};

constexpr Counter<Traffic> kTraffic[] = {
    {"tx_credit_zero",       "Times without transmit credit", "NO CREDIT", 9, &Traffic::txCreditZero},
    {"tx_credit_zero_us",    "Time without it",               "",          0, &Traffic::txCreditZeroTime, "us"},
    {"link_resets_sent",     "Link resets sent",              "",          0, &Traffic::linkResetsSent},
    {"link_resets_received", "Link resets received",          "",          0, &Traffic::linkResetsReceived},
    {"tx_credits_recovered", "Transmit credits recovered",    "",          0, &Traffic::txCreditsRecovered},
    {"rx_credits_recovered", "Receive credits recovered",     "",          0, &Traffic::rxCreditsRecovered},
    {"rx_buffer_full",       "Receive buffers full",          "",          0, &Traffic::rxBufferFull},
    {"frames_timed_out",     "Frames timed out",              "",          0, &Traffic::framesTimedOut},
    {"abts_sent",            "ABTS sent",                     "",          0, &Traffic::abtsSent},
    {"abts_received",        "ABTS received",                 "",          0, &Traffic::abtsReceived},
    {"exchanges_timed_out",  "Exchanges timed out",           "TIMED OUT", 9, &Traffic::exchangesTimedOut},
    {"exchanges_retried",    "Exchanges retried",             "RETRIED",   7, &Traffic::exchangesRetried},
    {"task_set_full",        "TASK SET FULL",                 "",          0, &Traffic::taskSetFull},
    {"logouts_received",     "Logouts received",              "",          0, &Traffic::logoutsReceived},
    {"ls_rejects",           "LS_RJT",                        "",          0, &Traffic::lsRejects},
    {"busy_replies",         "F_BSY and P_BSY",               "",          0, &Traffic::busyReplies},
    {"rscns_received",       "RSCN received",                 "",          0, &Traffic::rscnsReceived},
    {"fpins_received",       "FPIN received",                 "",          0, &Traffic::fpinsReceived},
    {"flogis",               "FLOGI",                         "",          0, &Traffic::flogis},
    {"plogis",               "PLOGI",                         "",          0, &Traffic::plogis},
};

constexpr Counter<Fpins> kFpins[] = {
    {"link_failure",              "Link failure",              "", 0, &Fpins::linkFailure},
    {"loss_of_sync",              "Loss of synchronisation",   "", 0, &Fpins::lossOfSync},
    {"loss_of_signal",            "Loss of signal",            "", 0, &Fpins::lossOfSignal},
    {"primitive_sequence_error",  "Primitive sequence error",  "", 0, &Fpins::primitiveSequenceError},
    {"invalid_transmission_word", "Invalid transmission word", "", 0, &Fpins::invalidTransmissionWord},
    {"invalid_crc",               "CRC error",                 "", 0, &Fpins::invalidCrc},
    {"link_other",                "Link, other",               "", 0, &Fpins::linkOther},
    {"delivery_timeout",          "Delivery timed out",        "", 0, &Fpins::deliveryTimeout},
    {"delivery_unable_to_route",  "Unable to route",           "", 0, &Fpins::deliveryUnableToRoute},
    {"delivery_other",            "Delivery, other",           "", 0, &Fpins::deliveryOther},
    {"congestion_cleared",        "Congestion cleared",        "", 0, &Fpins::congestionCleared},
    {"lost_credit",               "Lost credit",               "", 0, &Fpins::lostCredit},
    {"credit_stall",              "Credit stall",              "", 0, &Fpins::creditStall},
    {"oversubscription",          "Oversubscription",          "", 0, &Fpins::oversubscription},
    {"congestion_other",          "Congestion, other",         "", 0, &Fpins::congestionOther},
};

constexpr Counter<Scm> kScm[] = {
    {"seconds",            "Since the last reset",      "",         0, &Scm::secondsSinceReset, "s"},
    {"warning_signals",    "Warning signals",           "WARNINGS", 8, &Scm::warningSignals},
    {"alarm_signals",      "Alarm signals",             "ALARMS",   6, &Scm::alarmSignals},
    {"throttled_s",        "Time with less bandwidth",  "",         0, &Scm::throttledSeconds, "s"},
    {"throttled_requests", "Requests held back",        "",         0, &Scm::throttledRequests},
    {"last_event_s",       "Last event, from the reset","",         0, &Scm::lastEvent, "s", true},
};

constexpr Counter<Driver> kDriver[] = {
    {"seconds",                   "Since the last reset",  "SECONDS",     8,  &Driver::secondsSinceReset, "s"},
    {"commands_started",          "Commands started",      "STARTED",     10, &Driver::commandsStarted},
    {"commands_completed",        "Commands completed",    "COMPLETED",   10, &Driver::commandsCompleted},
    {"commands_failed",           "Commands failed",       "FAILED",      6,  &Driver::commandsFailed},
    {"commands_aborted",          "Commands aborted",      "ABORTED",     7,  &Driver::commandsAborted},
    {"commands_timed_out",        "Commands timed out",    "TIMED OUT",   9,  &Driver::commandsTimedOut},
    {"commands_outstanding",      "Commands outstanding",  "OUTSTANDING", 11, &Driver::commandsOutstanding, "", true},
    {"commands_outstanding_most", "Outstanding at most",   "",            0,  &Driver::commandsOutstandingMost, "", true},
    {"queue_full",                "Queue full",            "QUEUE FULL",  10, &Driver::queueFull},
    {"busy_retries",              "Retries while busy",    "BUSY",        5,  &Driver::busyRetries},
    {"underruns",                 "Underruns",             "",            0,  &Driver::underruns},
    {"overruns",                  "Overruns",              "",            0,  &Driver::overruns},
    {"lun_resets",                "LUN resets",            "",            0,  &Driver::lunResets},
    {"target_resets",             "Target resets",         "",            0,  &Driver::targetResets},
    {"login_retries",             "Login retries",         "",            0,  &Driver::loginRetries},
    {"interrupts",                "Interrupts",            "INTERRUPTS",  10, &Driver::interrupts},
    {"mailbox_commands",          "Mailbox commands",      "",            0,  &Driver::mailboxCommands},
    {"mailbox_failures",          "Mailbox failures",      "",            0,  &Driver::mailboxFailures},
    {"firmware_resets",           "Firmware resets",       "",            0,  &Driver::firmwareResets},
    {"link_downs",                "Times the link went down", "",         0,  &Driver::linkDowns},
};

constexpr Counter<Latency> kLatency[] = {
    {"seconds",          "Since the last reset", "SECONDS",       8,  &Latency::secondsSinceReset, "s"},
    {"read_time_us",     "Time of all reads",    "",              0,  &Latency::readTime, "us"},
    {"write_time_us",    "Time of all writes",   "",              0,  &Latency::writeTime, "us"},
    {"longest_read_us",  "Longest read",         "LONGEST READ",  12, &Latency::longestRead, "us", true},
    {"longest_write_us", "Longest write",        "LONGEST WRITE", 13, &Latency::longestWrite, "us", true},
};
// clang-format on

// A counter of 64 bits does not wrap: less than before is a wrap of 32 bits.
uint64_t Difference(uint64_t before, uint64_t after) {
    if (before == HX_NOT_COUNTED || after == HX_NOT_COUNTED) {
        return HX_NOT_COUNTED;
    }
    return after >= before ? after - before : static_cast<uint32_t>(after - before);
}

template <class Record>
void Subtract(const Record& before, std::span<const Counter<Record>> counters, Record* record) {
    for (const Counter<Record>& counter : counters) {
        if (!counter.isLevel) {
            const uint64_t counted =
                Difference(CounterOf(before, counter), CounterOf(*record, counter));
            std::memcpy(&(record->*counter.member), &counted, sizeof counted);
        }
    }
}

bool BeganAnew(const Link& before, const Link& after) {
    return after.secondsSinceReset < before.secondsSinceReset;
}
void TakeOff(const Link& before, Link* record) {
    Subtract(before, LinkCounters(), record);
    Subtract(before, FrameCounters().subspan(1), record);  // they share the time
}

bool BeganAnew(const Traffic& before, const Traffic& after) {
    return BeganAnew(before.port, after.port);
}
void TakeOff(const Traffic& before, Traffic* record) {
    TakeOff(before.port, &record->port);
    Subtract(before, TrafficCounters(), record);
    Subtract(before.fcp, ProtocolCounters(), &record->fcp);
    Subtract(before.nvme, ProtocolCounters(), &record->nvme);
}

// What concerns a remote port has no time of its own, but its counters only grow.
bool BeganAnew(const ScmReading& before, const ScmReading& after) {
    if (!before.ofRemotePort) {
        return after.record.secondsSinceReset < before.record.secondsSinceReset;
    }
    return std::ranges::any_of(kFpins, [&](const Counter<Fpins>& counter) {
        return CounterOf(after.record.fpins, counter) < CounterOf(before.record.fpins, counter);
    });
}
void TakeOff(const ScmReading& before, ScmReading* reading) {
    Subtract(before.record, ScmCounters(), &reading->record);
    Subtract(before.record.fpins, FpinCounters(), &reading->record.fpins);
    Subtract(before.record.peerFpins, FpinCounters(), &reading->record.peerFpins);
}

bool BeganAnew(const Driver& before, const Driver& after) {
    return after.secondsSinceReset < before.secondsSinceReset;
}
void TakeOff(const Driver& before, Driver* record) {
    Subtract(before, PrivateCounters(), record);
}

bool BeganAnew(const Latency& before, const Latency& after) {
    return after.secondsSinceReset < before.secondsSinceReset;
}
void TakeOff(const Latency& before, Latency* record) {
    Subtract(before, LatencyCounters(), record);
    for (size_t i = 0; i < HX_LATENCY_BUCKETS; ++i) {
        record->reads[i] = Difference(before.reads[i], record->reads[i]);
        record->writes[i] = Difference(before.writes[i], record->writes[i]);
    }
}

template <class Group>
bool GroupBeganAnew(const std::optional<Group>& before, const std::optional<Group>& after) {
    return before && after && BeganAnew(*before, *after);
}

template <class Group>
std::optional<Group> GroupBetween(const std::optional<Group>& before,
                                  const std::optional<Group>& after) {
    std::optional<Group> between = after;
    if (before && after && !BeganAnew(*before, *after)) {
        TakeOff(*before, &*between);
    }
    return between;
}

}  // namespace

std::span<const Counter<Link>> LinkCounters() {
    return kLink;
}
std::span<const Counter<Link>> FrameCounters() {
    return kFrames;
}
std::span<const Counter<Traffic>> TrafficCounters() {
    return kTraffic;
}
std::span<const Counter<Protocol>> ProtocolCounters() {
    return kProtocol;
}
std::span<const Counter<Fpins>> FpinCounters() {
    return kFpins;
}
std::span<const Counter<Scm>> ScmCounters() {
    return kScm;
}
std::span<const Counter<Driver>> PrivateCounters() {
    return kDriver;
}
std::span<const Counter<Latency>> LatencyCounters() {
    return kLatency;
}

Link Widened(const HX_STATISTICS& statistics) {
    Link wide;
    std::memset(&wide, 0xFF, sizeof wide);
    wide.secondsSinceReset = statistics.secondsSinceReset;
    wide.txFrames = statistics.txFrames;
    wide.txWords = statistics.txWords;
    wide.rxFrames = statistics.rxFrames;
    wide.rxWords = statistics.rxWords;
    wide.lipCount = statistics.lipCount;
    wide.linkFailures = statistics.linkFailures;
    wide.lossesOfSync = statistics.lossesOfSync;
    wide.lossesOfSignal = statistics.lossesOfSignal;
    wide.primitiveSequenceErrors = statistics.primitiveSequenceErrors;
    wide.invalidTransmissionWords = statistics.invalidTransmissionWords;
    wide.invalidCrcs = statistics.invalidCrcs;
    return wide;
}

Traffic Widened(const Link& statistics) {
    Traffic wide;
    std::memset(&wide, 0xFF, sizeof wide);
    wide.port = statistics;
    return wide;
}

ScmReading ScmOfRemotePort(const HX_PORT_SCM_STATISTICS& statistics) {
    ScmReading reading;
    std::memset(&reading.record, 0xFF, sizeof reading.record);
    reading.record.state = statistics.state;
    reading.record.fpins = statistics.fpins;
    reading.record.lastEvent = statistics.lastEvent;
    reading.ofRemotePort = true;
    return reading;
}

bool WasReset(const PortCounters& before, const PortCounters& after) {
    return GroupBeganAnew(before.link, after.link) ||
           GroupBeganAnew(before.traffic, after.traffic) || GroupBeganAnew(before.scm, after.scm) ||
           GroupBeganAnew(before.driver, after.driver) ||
           GroupBeganAnew(before.latency, after.latency);
}

PortCounters CountedBetween(const PortCounters& before, const PortCounters& after) {
    return {GroupBetween(before.link, after.link), GroupBetween(before.traffic, after.traffic),
            GroupBetween(before.scm, after.scm), GroupBetween(before.driver, after.driver),
            GroupBetween(before.latency, after.latency)};
}

std::string LinkErrorsText(const Link& statistics) {
    std::string text;
    for (const Counter<Link>& counter : kLink) {
        const uint64_t count = CounterOf(statistics, counter);
        if (counter.one != nullptr && count != 0) {
            text += (text.empty() ? "" : ", ") + std::to_string(count) + " " +
                    (count == 1 ? counter.one : counter.many);
        }
    }
    return text;
}

}  // namespace vxmgr
