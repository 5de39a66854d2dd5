// The update locks of all adapters, as the library shares them between processes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vxmgr {

inline constexpr char kLockTableName[] = "Global\\HXMGT_FlashUpdateLocksMapFile";
inline constexpr uint32_t kLockRecords = 256;
inline constexpr uint32_t kLongestHoldSeconds = 900;  // after more, anybody may take a lock over

#pragma pack(push, 1)

struct LockRecord {
    uint32_t owner;      // process ID, 0: free
    uint32_t startTick;  // milliseconds of the system's tick count when it was taken
    uint8_t hasSerial;   // these two as in HX_NODE_PROPERTY; 0: the record is not in use
    char serial[31];     // of the adapter
    uint64_t watchdog;   // thread handle of the owner
    uint8_t reserved48[256];
};
static_assert(sizeof(LockRecord) == 304);
static_assert(offsetof(LockRecord, hasSerial) == 8);
static_assert(offsetof(LockRecord, watchdog) == 40);

struct LockTable {
    LockRecord records[kLockRecords];
    uint8_t reserved[256];
};
static_assert(sizeof(LockTable) == 78080);

#pragma pack(pop)

std::string SerialOf(const LockRecord& record);  // empty: not in use

// The record of an adapter, or null when it has none yet.
const LockRecord* FindLock(const LockTable& table, const std::string& serial);

// How long a lock has been held at a tick count.
inline uint32_t HeldMs(const LockRecord& record, uint32_t nowTick) {
    return nowTick - record.startTick;  // survives the wrap of the count
}

// Whether a process that has lived so long may have taken the lock: process IDs are used again.
constexpr bool MayOwn(uint64_t processMs, uint32_t heldMs) {
    constexpr uint32_t kClockSlackMs = 2000;  // the two ages come from different clocks
    return processMs + kClockSlackMs >= heldMs;
}

}  // namespace vxmgr
