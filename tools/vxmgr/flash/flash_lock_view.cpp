#include "vxmgr/flash/flash_lock_view.h"

#include <windows.h>

#include <cstring>

namespace vxmgr {
namespace {

// Closes itself.
class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() {
        if (handle_ != nullptr) {
            CloseHandle(handle_);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    HANDLE Get() const { return handle_; }

  private:
    const HANDLE handle_;
};

constexpr uint64_t kTicksPerMs = 10000;  // of a FILETIME

uint64_t TicksOf(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// How long the process has lived; empty when it has ended. A process that may not be looked at is
// as old as can be.
bool LifeOf(uint32_t processId, uint64_t* ms) {
    *ms = UINT64_MAX / 2;
    const Handle process(
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (process.Get() == nullptr) {
        return GetLastError() == ERROR_ACCESS_DENIED;
    }
    if (WaitForSingleObject(process.Get(), 0) != WAIT_TIMEOUT) {
        return false;
    }
    FILETIME created{};
    FILETIME unused{};
    if (GetProcessTimes(process.Get(), &created, &unused, &unused, &unused)) {
        FILETIME now{};
        GetSystemTimeAsFileTime(&now);
        const uint64_t start = TicksOf(created);
        const uint64_t end = TicksOf(now);
        *ms = end > start ? (end - start) / kTicksPerMs : 0;
    }
    return true;
}

}  // namespace

std::unique_ptr<FlashLockArea> ReadLockTable(tools::Invocation& invocation) {
    const Handle section(OpenFileMappingA(FILE_MAP_READ, FALSE, formats::kFlashLockAreaName));
    const void* view = section.Get() == nullptr ? nullptr
                                                : MapViewOfFile(section.Get(), FILE_MAP_READ, 0, 0,
                                                                sizeof(FlashLockArea));
    if (view == nullptr) {
        invocation.Fail(static_cast<uint32_t>(GetLastError()),
                        "the update locks cannot be looked at");
    }
    auto table = std::make_unique<FlashLockArea>();
    std::memcpy(table.get(), view, sizeof *table);
    UnmapViewOfFile(view);
    return table;
}

LockState StateOf(const FlashLock& record) {
    LockState state;
    state.held = record.owner != 0;
    state.owner = record.owner;
    if (state.held) {
        const uint32_t heldMs = HeldMs(record, GetTickCount());
        state.heldSeconds = heldMs / 1000;
        state.expired = state.heldSeconds > formats::kLongestHoldSeconds;
        uint64_t lifeMs = 0;
        state.ownerLives = LifeOf(record.owner, &lifeMs) && MayOwn(lifeMs, heldMs);
    }
    return state;
}

}  // namespace vxmgr
