// The documents of commands that only read, all of one moment.
#pragma once

#include "common/nested.h"
#include "vxmgr/app/inventory.h"
#include "vxmgr/support/report_page.h"

namespace vxmgr {

struct TakenDocument {
    std::string command;  // "nvram show"
    std::string member;   // "nvram_show/port-3"; of one about all: "port_list"
    std::string words;    // as they would be typed
    ExitCode exit;
    std::string text;
    uint64_t milliseconds;  // that it took
    // It did what it could, although there may be findings, a chip that cannot tell, or no adapter.
    bool good;
};

struct SnapshotPlan {
    bool forReport = false;     // those alone that a report shows
    std::string traceFolder{};  // as of an OpenPortsMemory
};

// Takes them, of the ports that -a and -p select. Ports that do not answer are in the documents as
// such; what hangs is given up. An InventoryMemory has to be alive.
std::vector<TakenDocument> TakeSnapshot(Invocation& invocation, const SnapshotPlan& plan);

// --interval and --count, or what stands for the one that is not given; none: neither is.
struct Sampling {
    uint64_t interval;
    uint64_t count;
};
inline constexpr Argument kSampleIntervalArgument = NumberOption(
    "--interval", "S", "sample the counters, with S seconds between samples (2)", 1, 3600);
inline constexpr Argument kSampleCountArgument =
    NumberOption("--count", "N", "sample the counters N times (10)", 1, 10000);
std::optional<Sampling> GivenSampling(Invocation& invocation);

// The counters over time, and the events meanwhile.
std::vector<TakenDocument> TakeSamples(Invocation& invocation, const Sampling& sampling);

// The name of this machine, as --redact has it; from then on it is masked everywhere.
std::string ShownHostName(Invocation& invocation);

// The page that shows the documents.
std::string ReportOf(Invocation& invocation, const std::vector<TakenDocument>& documents,
                     const std::optional<Sampling>& sampling, const std::string& time);

}  // namespace vxmgr
