// The update locks of all adapters, as the library shares them between processes.
#pragma once

#include <string>

#include "formats/flash_lock.h"

namespace vxmgr {

using formats::FlashLock;
using formats::FlashLockArea;

std::string SerialOf(const FlashLock& record);  // empty: not in use

// The record of an adapter, or null when it has none yet.
const FlashLock* FindLock(const FlashLockArea& table, const std::string& serial);

// How long a lock has been held at a tick count.
inline uint32_t HeldMs(const FlashLock& record, uint32_t nowTick) {
    return nowTick - record.startTick;  // survives the wrap of the count
}

// Whether a process that has lived so long may have taken the lock: process IDs are used again.
constexpr bool MayOwn(uint64_t processMs, uint32_t heldMs) {
    constexpr uint32_t kClockSlackMs = 2000;  // the two ages come from different clocks
    return processMs + kClockSlackMs >= heldMs;
}

}  // namespace vxmgr
