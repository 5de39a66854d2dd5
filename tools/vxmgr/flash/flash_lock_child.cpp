#include "vxmgr/flash/flash_lock_child.h"

#include <windows.h>

#include <string>

namespace vxmgr {
namespace {

using tools::ExitCode;

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

ExitCode EndLockInChild(tools::Invocation& invocation, uint32_t portIndex, uint32_t owner) {
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
    CloseHandle(process.hThread);
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
    CloseHandle(process.hProcess);
    const tools::ExitCodeRow* row = tools::FindExitCode(static_cast<int>(exit));
    return row == nullptr ? ExitCode::Internal : row->code;
}

}  // namespace vxmgr
