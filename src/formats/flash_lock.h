// The flash update locks of all adapters, in memory that processes share.
#pragma once

#include <cstddef>
#include <cstdint>

namespace formats {

inline constexpr char kFlashLockAreaName[] = "Global\\HXMGT_FlashUpdateLocksMapFile";
inline constexpr uint32_t kFlashLocks = 256;
inline constexpr uint32_t kLongestHoldSeconds = 900;  // after more, anybody may take a lock over

#pragma pack(push, 1)

// One lock, bound to a physical adapter by its serial.
struct FlashLock {
    uint32_t owner;      // process ID, 0: free
    uint32_t startTick;  // milliseconds of the system's tick count when it was taken
    char serial[32];     // begins with a mark, as in HX_NODE_PROPERTY; empty: not in use
    uint64_t watchdog;   // thread handle in the owner's process
    uint8_t reserved[256];
};
static_assert(sizeof(FlashLock) == 304);
static_assert(offsetof(FlashLock, serial) == 8);
static_assert(offsetof(FlashLock, watchdog) == 40);

struct FlashLockArea {
    FlashLock locks[kFlashLocks];
    uint8_t reserved[256];
};
static_assert(sizeof(FlashLockArea) == 78080);

#pragma pack(pop)

}  // namespace formats
