#include "vxmgr/flash/flash_lock_view.h"

#include <windows.h>

#include <cstring>

#include "frame/owned.h"

namespace vxmgr {
namespace {

constexpr uint64_t kTicksPerMs = 10000;  // of a FILETIME

uint64_t TicksOf(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// How long the process has lived; empty when it has ended. A process that may not be looked at is
// as old as can be.
bool LifeOf(uint32_t processId, uint64_t* ms) {
    *ms = UINT64_MAX / 2;
    const frame::OwnedObject process(
        OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (!process.Valid()) {
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

constexpr DWORD kPatienceMs = 120000;  // a driver may be busy for more than a minute
constexpr DWORD kPollMs = 100;

std::wstring OwnProgram() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

std::wstring Widened(const std::string& ascii) {
    return {ascii.begin(), ascii.end()};
}

}  // namespace

std::unique_ptr<FlashLockArea> ReadLockTable(Invocation& invocation) {
    auto table = CopyLockTable();
    if (table == nullptr) {
        invocation.Fail(static_cast<uint32_t>(GetLastError()),
                        "the update locks cannot be looked at");
    }
    return table;
}

std::unique_ptr<FlashLockArea> CopyLockTable() {
    const frame::OwnedObject section(
        OpenFileMappingA(FILE_MAP_READ, FALSE, formats::kFlashLockAreaName));
    const void* view =
        section.Valid() ? MapViewOfFile(section.Get(), FILE_MAP_READ, 0, 0, sizeof(FlashLockArea))
                        : nullptr;
    if (view == nullptr) {
        return nullptr;
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

ExitCode EndLockInChild(Invocation& invocation, uint32_t portIndex, uint32_t owner) {
    const std::wstring program = OwnProgram();
    std::wstring line = L"\"" + program + L"\" " +
                        Widened(std::string(kLockEndCommand) + " --quiet --owner-pid " +
                                std::to_string(owner) + " -p index:" + std::to_string(portIndex));
    // Inherits no handles and has no console: neither its output nor its end is anybody's business.
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                        nullptr, nullptr, &start, &process)) {
        invocation.Fail(static_cast<uint32_t>(GetLastError()),
                        "the process that releases the lock cannot be started");
    }
    const frame::OwnedObject thread(process.hThread);
    const frame::OwnedObject ending(process.hProcess);
    DWORD waited = 0;
    while (WaitForSingleObject(process.hProcess, kPollMs) == WAIT_TIMEOUT && waited < kPatienceMs) {
        waited += kPollMs;
    }
    DWORD exit = static_cast<DWORD>(Number(ExitCode::TimedOut));
    if (waited >= kPatienceMs) {
        TerminateProcess(process.hProcess, exit);
    } else {
        GetExitCodeProcess(process.hProcess, &exit);
    }
    const ExitCodeRow* row = FindExitCode(static_cast<int>(exit));
    return row == nullptr ? ExitCode::Internal : row->code;
}

}  // namespace vxmgr
