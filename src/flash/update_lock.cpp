#include "flash/update_lock.h"

#include <windows.h>

#include "flash/flash.h"
#include "flash/lock_records.h"
#include "flash/watchdogs.h"
#include "frame/handle_table.h"
#include "properties/generation.h"

namespace flash {

HX_STATUS StartUpdate(uint32_t handle, uint32_t* lockKey) {
    if (const HX_STATUS status = properties::CheckQuery(handle, lockKey); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::optional<uint32_t> number = FindOrAssignLock(handle);
    if (!number) {
        return HXMGT_OUT_OF_MEMORY;
    }
    *lockKey = 0;
    const frame::FlashLock lock = CopyOfLock(*number);
    const bool held = lock.owner != 0;
    // Unsigned differences survive the wrap of the tick count.
    if (held && (GetTickCount() - lock.startTick) / 1000 <= formats::kLongestHoldSeconds) {
        return HXMGT_SESSION_IN_PROGRESS;
    }
    const uint32_t self = GetCurrentProcessId();
    if (!HoldLock(*number, lock, self, GetTickCount())) {
        return HXMGT_SESSION_IN_PROGRESS;  // somebody was quicker
    }
    // The watchdog of a lock that is taken over watches handle 0, which has none; the old one is
    // not stopped: intended.
    NoteWatchdog(*number, StartWatchdog(*number, held ? 0 : handle));
    *lockKey = self;
    return HXMGT_SUCCESS;
}

HX_STATUS EndUpdate(uint32_t handle, uint32_t lockKey) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    const std::optional<uint32_t> number = FindLock(handle);
    const uint32_t owner = number ? CopyOfLock(*number).owner : 0;
    // Only the key is compared, not the process: intended.
    if (owner == 0 || owner != lockKey) {
        return HXMGT_INVALID_REQUEST;
    }
    if (owner == GetCurrentProcessId()) {
        StopWatchdog(*number);
    }
    FreeLock(*number);
    return HXMGT_SUCCESS;
}

bool HoldsUpdateLock(uint32_t handle) {
    const std::optional<uint32_t> number = FindLock(handle);
    return number && CopyOfLock(*number).owner == GetCurrentProcessId();
}

}  // namespace flash
