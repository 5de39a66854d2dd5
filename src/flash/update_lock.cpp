#include "flash/update_lock.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>

#include "flash/adapter_serial.h"
#include "flash/flash.h"
#include "frame/library_state.h"
#include "properties/generation.h"

namespace flash {
namespace {

constexpr uint32_t kLongestHoldSeconds = 900;
constexpr uint32_t kWatchdogMs = kLongestHoldSeconds * 1000;

// The watchdogs of this process that sleep, by thread ID. Only a sleeping thread may be terminated:
// any other may hold a lock of the process heap or of the loader. Whoever takes a thread off the
// list decides what becomes of it.
class SleepingWatchdogs {
  public:
    bool Add(DWORD thread) { return Replace(0, thread); }
    bool Remove(DWORD thread) { return Replace(thread, 0); }

  private:
    bool Replace(DWORD from, DWORD to) {
        return std::any_of(std::begin(threads_), std::end(threads_), [&](auto& entry) {
            DWORD expected = from;
            return entry.compare_exchange_strong(expected, to);
        });
    }

    std::atomic<DWORD> threads_[frame::kFlashLocks] = {};
};
SleepingWatchdogs sleeping;

// How long an end waits for a watchdog to fall asleep: longer than a driver may stay busy.
constexpr uint32_t kLongestWaitMs = 100000;

std::string_view SerialOf(const frame::FlashLock& lock) {
    return properties::TextOf(lock.serial);
}

// The lock of an adapter, or null. An adapter without a serial number has none.
frame::FlashLock* LockOf(const AdapterSerial& serial) {
    if (serial.Text().empty()) {
        return nullptr;
    }
    auto& locks = frame::FlashLocks()->locks;
    const auto found = std::find_if(std::begin(locks), std::end(locks), [&](const auto& lock) {
        return SerialOf(lock) == serial.Text();
    });
    return found != std::end(locks) ? found : nullptr;
}

frame::FlashLock* FindLock(uint32_t handle) {
    AdapterSerial serial;
    return serial.Read(handle) == HXMGT_SUCCESS ? LockOf(serial) : nullptr;
}

// Binds a free record to the adapter; it stays bound for the life of the shared area.
frame::FlashLock* AssignLock(uint32_t handle) {
    AdapterSerial serial;
    if (serial.Read(handle) != HXMGT_SUCCESS || serial.Text().empty()) {
        return nullptr;
    }
    auto& locks = frame::FlashLocks()->locks;
    const auto unassigned = std::find_if(std::begin(locks), std::end(locks),
                                         [](const auto& lock) { return lock.serial[0] == 0; });
    if (unassigned == std::end(locks)) {
        return nullptr;
    }
    properties::PutText(serial.Text(), unassigned->serial);
    return unassigned;
}

// Frees a lock that has been held for 15 minutes, whoever holds it by then: intended.
DWORD WINAPI Watch(void* argument) {
    frame::FlashLock* const lock = FindLock(*static_cast<const uint32_t*>(argument));
    if (lock == nullptr) {
        return 0;  // the argument is not freed: intended
    }
    const bool listed = sleeping.Add(GetCurrentThreadId());
    Sleep(kWatchdogMs);
    if (listed && !sleeping.Remove(GetCurrentThreadId())) {
        Sleep(INFINITE);  // about to be terminated
    }
    HeapFree(GetProcessHeap(), 0, argument);
    if (lock->owner != 0) {
        lock->owner = 0;
        lock->watchdog = 0;
    }
    return 0;
}

// Thread handle of a new watchdog, as a lock keeps it; 0 when it could not be started.
uint64_t StartWatchdog(uint32_t handle) {
    auto* const argument =
        static_cast<uint32_t*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(uint32_t)));
    if (argument == nullptr) {
        return 0;
    }
    *argument = handle;
    const HANDLE thread = CreateThread(nullptr, 0, &Watch, argument, 0, nullptr);
    if (thread == nullptr) {
        HeapFree(GetProcessHeap(), 0, argument);
    }
    return reinterpret_cast<uintptr_t>(thread);
}

// The thread of a watchdog that this process started, or null. A thread handle means nothing
// outside the process that started the thread.
HANDLE OwnWatchdog(const frame::FlashLock& lock) {
    const HANDLE thread = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(lock.watchdog));
    return lock.owner == GetCurrentProcessId() && GetThreadId(thread) != 0 ? thread : nullptr;
}

bool StopIfAsleep(HANDLE thread) {
    return sleeping.Remove(GetThreadId(thread)) && TerminateThread(thread, 0);
}

void StopWatchdog(const frame::FlashLock& lock) {
    const HANDLE thread = OwnWatchdog(lock);
    if (thread == nullptr) {
        return;
    }
    for (uint32_t waited = 0; waited < kLongestWaitMs && !StopIfAsleep(thread); ++waited) {
        if (WaitForSingleObject(thread, 1) != WAIT_TIMEOUT) {
            break;  // it has ended by itself
        }
    }
    CloseHandle(thread);
}

}  // namespace

HX_STATUS StartUpdate(uint32_t handle, uint32_t* lockKey) {
    if (const HX_STATUS status = properties::CheckQuery(handle, lockKey); status != HXMGT_SUCCESS) {
        return status;
    }
    frame::FlashLock* lock = FindLock(handle);
    if (lock == nullptr) {
        lock = AssignLock(handle);
    }
    if (lock == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    *lockKey = 0;
    // Unsigned differences survive the wrap of the tick count.
    const bool held = lock->owner != 0;
    if (held && (GetTickCount() - lock->startTick) / 1000 <= kLongestHoldSeconds) {
        return HXMGT_SESSION_IN_PROGRESS;
    }
    lock->owner = GetCurrentProcessId();
    lock->startTick = GetTickCount();
    // The watchdog of a lock that is taken over watches handle 0, which has none; the old one is
    // not stopped: intended.
    lock->watchdog = StartWatchdog(held ? 0 : handle);
    *lockKey = lock->owner;
    return HXMGT_SUCCESS;
}

HX_STATUS EndUpdate(uint32_t handle, uint32_t lockKey) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    frame::FlashLock* const lock = FindLock(handle);
    // Only the key is compared, not the process: intended.
    if (lock == nullptr || lock->owner == 0 || lock->owner != lockKey) {
        return HXMGT_INVALID_REQUEST;
    }
    StopWatchdog(*lock);
    lock->owner = 0;
    lock->watchdog = 0;
    return HXMGT_SUCCESS;
}

void StopWatchdogsAtUnload() {
    if (frame::FlashLocks() == nullptr) {
        return;  // the library never came to be loaded
    }
    for (const frame::FlashLock& lock : frame::FlashLocks()->locks) {
        if (const HANDLE thread = OwnWatchdog(lock)) {
            StopIfAsleep(thread);
            CloseHandle(thread);
        }
    }
}

bool HoldsUpdateLock(uint32_t handle) {
    const frame::FlashLock* const lock = FindLock(handle);
    return lock != nullptr && lock->owner == GetCurrentProcessId();
}

}  // namespace flash
