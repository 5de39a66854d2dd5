// Ports that are watched: asked again and again, side by side, with rows that go out as they come.
#pragma once

#include <chrono>
#include <functional>

#include "vxmgr/app/inventory.h"
#include "vxmgr/app/side_by_side.h"

namespace vxmgr {

inline constexpr Argument kIntervalArgument =
    NumberOption("--interval", "S", "seconds between the rows of a port (5)", 1, 86400);
inline constexpr Argument kTurnsArgument =
    NumberOption("--count", "N", "end after N rows of each port", 1);
inline constexpr Argument kForArgument =
    NumberOption("--for", "S", "end after S seconds, with what has come until then", 1);

// What a port gave when it was asked once.
struct WatchTurn {
    HX_STATUS status = HXMGT_SUCCESS;
    std::string query;  // what failed, where there is more to say than the status
    std::vector<Record> rows;
};

struct WatchedPort {
    Port port;
    // On a thread that may be left behind: it owns, or shares, what it uses.
    std::function<void(PortTask& task, WatchTurn& turn)> ask;
};

struct WatchPlan {
    const char* what;  // is watched, in the singular
    std::chrono::milliseconds interval;
    bool waitsFirst = false;      // there is nothing to tell before the first interval is over
    bool repeatsHeading = false;  // of the table that people read, before each turn
    uint64_t turns = UINT64_MAX;  // to end after
    uint64_t rows = UINT64_MAX;   // of all ports together, likewise
    // The list, where its columns depend on what was asked for.
    std::optional<FieldShape> list = std::nullopt;
};

// As --interval and --count say.
WatchPlan GivenPlan(Invocation& invocation, const char* what);

// Asks the ports until the plan or --for is fulfilled, the user ends it, or no port answers any
// more: one that fails three times in a row, or does not answer in time, is left alone. The rows
// are those of the one list in the command's result. started: how the ports came to be watched, the
// command's exit code when nothing else happens.
ExitCode WatchPorts(Invocation& invocation, const WatchPlan& plan, std::vector<WatchedPort> ports,
                    ExitCode started);

// The first field of such rows.
std::string TimeNow();
template <class Source>
FieldRow<Source> TimeField(const char* about) {
    constexpr size_t kWidth = sizeof "2026-01-31T23:59:59.123Z" - 1;
    return {"time", "Time", "TIME", kText, [](const Source&) { return TimeNow(); }, about, kWidth};
}

}  // namespace vxmgr
