// The update locks of all adapters, as the library shares them between processes.
#pragma once

#include "formats/flash_lock.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

using formats::FlashLock;
using formats::FlashLockArea;

// Empty: not in use.
inline std::string SerialOf(const FlashLock& record) {
    return record.serial[0] == 0 ? std::string()
                                 : FieldText(record.serial + 1, sizeof record.serial - 1);
}

// The record of an adapter, or null when it has none yet.
inline const FlashLock* FindLock(const FlashLockArea& table, const std::string& serial) {
    for (const FlashLock& record : table.locks) {
        if (!serial.empty() && SerialOf(record) == serial) {
            return &record;
        }
    }
    return nullptr;
}

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
