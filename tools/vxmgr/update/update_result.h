// What `fw update` and `fw restore` report of each adapter: the plan first, then what became of it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "records/fields.h"
#include "vxmgr/update/update_plan.h"
#include "vxmgr/update/update_record.h"

namespace vxmgr {

enum class RegionOutcome : uint8_t { Planned, Nothing, Written, Failed, NotReached };
inline constexpr const char* kRegionOutcomes[] = {"planned", "nothing_to_do", "written", "failed",
                                                  "not_reached"};
enum class AdapterOutcome : uint8_t {
    Planned,
    Nothing,
    Done,     // and it runs, where it is code that runs
    Pending,  // stored, not started yet
    Refused,  // nothing was written
    Failed,
};
inline constexpr const char* kAdapterOutcomes[] = {"planned", "nothing_to_do", "done",
                                                   "pending", "refused",       "failed"};

struct UpdateRegionResult {
    uint32_t code = 0;
    std::string file;
    std::string content{};
    std::string chips{};
    std::string running, stored, wanted;
    uint64_t size = 0;
    bool staged = false;   // checked as a whole before it takes effect
    std::string unsafe{};  // why a power cut harms; empty: it does not
    std::string reset{};
    RegionOutcome outcome = RegionOutcome::Planned;
};

struct UpdateResult {
    std::string serial;
    std::string model;
    std::string chip;
    std::string ports;
    std::vector<std::string> volumes;
    std::vector<std::string> warnings;
    std::optional<uint64_t> seconds;  // expected
    std::string command;              // that does it
    std::string folder;               // of the journal
    std::string before, after;        // firmware that runs
    AdapterOutcome outcome = AdapterOutcome::Planned;
    std::optional<uint32_t> status;
    std::vector<UpdateRegionResult> regions;
};
using UpdateResults = std::vector<UpdateResult>;

const Fields<UpdateResults>& UpdateResultFields();

// Has `run` work on each adapter that -a selects, one after the other; without -a on the only one.
// The first failure ends it, unless --keep-going was given. The results grow meanwhile.
ExitCode ForEachAdapter(
    Invocation& invocation,
    const std::function<ExitCode(AdapterSession& session, UpdateResult& result)>& run);

// Of the ports, the firmware, and the volumes behind the ports.
UpdateResult ResultOf(const AdapterSession& session);

}  // namespace vxmgr
