// The exit codes of the tools: one table feeds the programs, their help, `explain` and the manual.
#pragma once

#include <span>

namespace tools {

enum class ExitCode : int {
    Done = 0,
    Failed = 1,
    Usage = 2,
    NotFound = 3,
    NotSupported = 4,
    AccessDenied = 5,
    Busy = 6,
    TimedOut = 7,
    Refused = 8,
    NotProven = 9,
    Cancelled = 10,
    Partial = 11,
    HealthWarning = 20,
    HealthCritical = 21,
    NothingChanged = 30,
    ResetPending = 31,
    Internal = 70,
};

struct ExitCodeRow {
    ExitCode code;
    const char* name;
    const char* meaning;
    const char* advice;
};

std::span<const ExitCodeRow> ExitCodes();

// The row of a number, or null when no tool ends with it.
const ExitCodeRow* FindExitCode(int number);

constexpr int Number(ExitCode code) {
    return static_cast<int>(code);
}

}  // namespace tools
