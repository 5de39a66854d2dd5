// The counters that can be raised from outside, by name: the one table of them.
#pragma once

#include <cstdint>
#include <span>

#include "model/port.h"

namespace vxemu {

enum class CounterGroup : uint8_t {
    Link,            // HX_PORT_STATISTICS_V2
    Fpin,            // HX_FPIN_COUNTERS
    Signals,         // CongestionState
    Private,         // HX_PRIVATE_STATISTICS
    CreditRecovery,  // CreditRecoveryCounts
};

struct CounterKey {
    const char* key;
    CounterGroup group;
    uint16_t offset;  // in the group's record
    bool remote;      // a port counts it for a device, too
};
std::span<const CounterKey> CounterKeys();

// The row of that name, or null. The name need not be terminated within its length.
const CounterKey* FindCounter(const char* key, size_t length);

// Raises a counter of the port, or what it has counted for a device; false when there is none.
bool RaiseCounter(Port& port, const TargetProfile* device, const CounterKey& counter, uint64_t n);

}  // namespace vxemu
