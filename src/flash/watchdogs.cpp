#include "flash/watchdogs.h"

#include <windows.h>

#include <atomic>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "flash/lock_records.h"
#include "frame/owned.h"

namespace flash {
namespace {

constexpr uint32_t kSleepMs = formats::kLongestHoldSeconds * 1000;

// How long a stop waits for a watchdog that asks its driver: longer than a driver may stay busy.
constexpr uint32_t kLongestWaitMs = 100000;

// The life of a watchdog. It may be terminated only while it is asleep: any other time it may hold
// a lock of the process heap or of the loader. Whoever moves it on from there decides its end.
enum class Phase : uint32_t {
    Asking,   // looks its lock up; holds a reference to the library
    Parting,  // gives the reference back
    Asleep,
    Awake,    // frees the lock, and ends without the loader
    Stopped,  // by another thread
    Leaving,  // gives the reference back by ending
};

struct Watchdog {
    Watchdog* next;
    uint32_t lock;
    uint32_t handle;
    HMODULE library = nullptr;
    bool isLatest = true;  // of its lock
    std::atomic<Phase> phase{Phase::Asking};
    frame::OwnedObject thread{};

    bool MoveOn(Phase from, Phase to) { return phase.compare_exchange_strong(from, to); }
};

// Of this process, the latest first.
SRWLOCK listLock = SRWLOCK_INIT;
Watchdog* list = nullptr;

class ListHold {
  public:
    ListHold() { AcquireSRWLockExclusive(&listLock); }
    ~ListHold() { ReleaseSRWLockExclusive(&listLock); }
    ListHold(const ListHold&) = delete;
    ListHold& operator=(const ListHold&) = delete;
};

using OwnedWatchdog = std::unique_ptr<Watchdog>;

// Takes the first one that wanted(watchdog) accepts off the list. The list is held.
template <class Wanted>
OwnedWatchdog TakeFirst(Wanted wanted) {
    for (Watchdog** link = &list; *link != nullptr; link = &(*link)->next) {
        if (wanted(**link)) {
            Watchdog* const found = *link;
            *link = found->next;
            return OwnedWatchdog(found);
        }
    }
    return nullptr;
}

void Keep(OwnedWatchdog watchdog) {
    watchdog->next = list;
    list = watchdog.release();
}

bool HasEnded(const Watchdog& watchdog) {
    return WaitForSingleObject(watchdog.thread.Get(), 0) == WAIT_OBJECT_0;
}

// A reference to the library, which the caller of any of its functions has, too.
HMODULE ReferToLibrary() {
    HMODULE library = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&list),
                       &library);
    return library;
}

// Nobody may free the code that he stands on: the system does, once this has returned.
void CALLBACK FreeLibraryAfterwards(PTP_CALLBACK_INSTANCE instance, void* library) {
    FreeLibraryWhenCallbackReturns(instance, static_cast<HMODULE>(library));
}

[[noreturn]] void Leave(Watchdog& self) {
    const HMODULE library = self.library;
    self.phase = Phase::Leaving;  // from here on the record may go
    FreeLibraryAndExitThread(library, 0);
}

// Ends without the loader, whose lock an unload holds while it waits for this thread.
[[noreturn]] void EndAtOnce() {
    TerminateThread(GetCurrentThread(), 0);
    for (;;) {
        Sleep(INFINITE);
    }
}

DWORD WINAPI Watch(void* argument) {
    Watchdog& self = *static_cast<Watchdog*>(argument);
    const std::optional<uint32_t> lock = FindLock(self.handle);
    if (!lock || !self.MoveOn(Phase::Asking, Phase::Parting) ||
        !TrySubmitThreadpoolCallback(&FreeLibraryAfterwards, self.library, nullptr)) {
        Leave(self);
    }
    self.phase = Phase::Asleep;
    Sleep(kSleepMs);
    if (!self.MoveOn(Phase::Asleep, Phase::Awake)) {
        EndAtOnce();
    }
    // Whoever holds it by then: intended.
    if (CopyOfLock(*lock).owner != 0) {
        FreeLock(*lock);
    }
    EndAtOnce();
}

// Ends a watchdog that has no reference to the library, or is about to be without. True when
// nothing of it runs any more.
bool EndSleeper(Watchdog& watchdog) {
    while (watchdog.phase == Phase::Parting) {
        SwitchToThread();
    }
    if (watchdog.phase == Phase::Leaving) {
        return true;
    }
    if (watchdog.MoveOn(Phase::Asleep, Phase::Stopped)) {
        TerminateThread(watchdog.thread.Get(), 0);
    }
    return WaitForSingleObject(watchdog.thread.Get(), kLongestWaitMs) == WAIT_OBJECT_0;
}

}  // namespace

uint64_t StartWatchdog(uint32_t lock, uint32_t handle) {
    const ListHold hold;
    while (TakeFirst(&HasEnded) != nullptr) {
    }
    for (Watchdog* earlier = list; earlier != nullptr; earlier = earlier->next) {
        earlier->isLatest &= earlier->lock != lock;
    }
    OwnedWatchdog watchdog(new (std::nothrow) Watchdog{nullptr, lock, handle});
    if (watchdog == nullptr) {
        return 0;
    }
    watchdog->library = ReferToLibrary();
    if (watchdog->library == nullptr) {
        return 0;
    }
    const HANDLE thread = CreateThread(nullptr, 0, &Watch, watchdog.get(), 0, nullptr);
    if (thread == nullptr) {
        FreeLibrary(watchdog->library);
        return 0;
    }
    watchdog->thread.Reset(thread);
    Keep(std::move(watchdog));
    return reinterpret_cast<uintptr_t>(thread);
}

void StopWatchdog(uint32_t lock) {
    OwnedWatchdog watchdog;
    {
        const ListHold hold;
        watchdog = TakeFirst([&](const Watchdog& candidate) {
            return candidate.lock == lock && candidate.isLatest;
        });
    }
    if (watchdog == nullptr) {
        return;
    }
    // One that is asking ends by itself, when it has its answer.
    const bool ended =
        watchdog->MoveOn(Phase::Asking, Phase::Stopped)
            ? WaitForSingleObject(watchdog->thread.Get(), kLongestWaitMs) == WAIT_OBJECT_0
            : EndSleeper(*watchdog);
    if (!ended) {
        const ListHold hold;
        Keep(std::move(watchdog));
    }
}

void StopWatchdogsAtUnload() {
    for (const auto any = [](const Watchdog&) { return true; };;) {
        const OwnedWatchdog watchdog = TakeFirst(any);
        if (watchdog == nullptr) {
            return;
        }
        EndSleeper(*watchdog);
    }
}

}  // namespace flash
