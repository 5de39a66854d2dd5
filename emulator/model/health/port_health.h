// What a port keeps for the queries about its health: counters beside those of its statistics, and
// what the parts between it and the cable hold. Zero is the state before the first request, unless
// a function that starts them is named.
#pragma once

#include <cstdint>

#include "hxstatistics.h"

namespace vxemu {

// SAN congestion management (scm.h).
struct CongestionState {
    HX_FPIN_COUNTERS own;    // FPINs about this port
    HX_FPIN_COUNTERS peers;  // about ports that it talks to
    uint64_t warningSignals;
    uint64_t alarmSignals;
    uint64_t lastEvent;  // when, 0 = never
    uint64_t throttledMilliseconds;
    uint64_t throttledRequests;
    // Whether it was throttled when it was looked at last, when that was, and after how many
    // requests.
    bool throttled;
    uint64_t lookedAt;
    uint64_t requestsThen;
    uint16_t severity;  // HX_SCM_SEVERITY_...
};

// What the driver counts for itself (private_counters.h). Each record starts again on its own.
struct PrivateCounts {
    HX_PRIVATE_STATISTICS counted;  // as far as it does not follow from the number of requests
    HX_PRIVATE_STATISTICS_EX times;
    uint64_t countedSince;
    uint64_t timesSince;
    uint64_t requestsBefore;
    bool wrote;  // the request at hand brings data for a target
};

struct CreditRecoveryCounts {
    uint64_t creditsRecovered;
    uint64_t framesLost;
};

// The locate LED.
struct Beacon {
    bool on;
    uint64_t until;  // it ends by itself; 0 = not
};

// Registers between the chip and the cage (serdes.h, started by StartSignals).
inline constexpr uint32_t kSerdesLanes = 4;
inline constexpr uint32_t kSerdesRegisters = 0x40;
inline constexpr uint32_t kRetimerRegisters = 0x100;
struct Signals {
    uint32_t lanes[kSerdesLanes][kSerdesRegisters];
    uint8_t retimer[kRetimerRegisters];
};

// What the board of an adapter has measured when it was asked.
struct Board {
    bool asked;
    int32_t highest;  // 1/256 degree
    uint64_t askedAt;
    uint64_t millisecondsAbove;  // the warning limit
    bool above;
};

}  // namespace vxemu
