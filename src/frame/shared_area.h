// Layout of the two shared mappings: what every process that loads the library reads and writes,
// and how it does so.
// Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "formats/flash_lock.h"

namespace frame {

// The second mapping.
using formats::FlashLock;
using formats::FlashLockArea;

inline constexpr uint32_t kHandleRecords = 65;  // device handles 0 to 64
inline constexpr uint32_t kProcessSlots = 8;
inline constexpr uint32_t kRingCapacity = 32;

#pragma pack(push, 1)

// One event as the driver gave it: code and data.
struct EventRecord {
    uint32_t code;
    uint32_t data[3];
};
static_assert(sizeof(EventRecord) == 16);

// The event queues of one process.
struct EventSlot {
    uint32_t inUse;
    EventRecord queue[kHandleRecords][kRingCapacity];
    uint32_t writeIndex[kHandleRecords];
    uint32_t capacity[kHandleRecords];  // kRingCapacity while enabled, else 0
    uint32_t readIndex[kHandleRecords];
    uint32_t adapterIndex[kHandleRecords];
};
static_assert(sizeof(EventSlot) == 34324);
static_assert(offsetof(EventSlot, queue) == 4);
static_assert(offsetof(EventSlot, writeIndex) == 33284);
static_assert(offsetof(EventSlot, capacity) == 33544);
static_assert(offsetof(EventSlot, readIndex) == 33804);
static_assert(offsetof(EventSlot, adapterIndex) == 34064);

// "Global\HXMGT_GetAENMapFile"
struct EventArea {
    EventSlot slots[kProcessSlots];
    uint32_t registrations[kHandleRecords];  // by adapter index
};
static_assert(sizeof(EventArea) == 274852);
static_assert(offsetof(EventArea, registrations) == 274592);

#pragma pack(pop)

// Anybody may change a word of these areas at any moment. It is copied once, and the copy checked
// and used; a new value is stored once. The compiler must not read or write more often.
inline uint32_t ReadOnce(const uint32_t& word) {
    return static_cast<const volatile uint32_t&>(word);
}
inline void WriteOnce(uint32_t& word, uint32_t value) {
    static_cast<volatile uint32_t&>(word) = value;
}

}  // namespace frame
