// Priorities of logical units: their names, and LUNs next to each other that have the same.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vxmgr/bindings/lunmask_luns.h"

namespace vxmgr {

inline constexpr const char* kQosLevels[] = {"none", "low", "medium", "high"};

// A level's name, or its number; nothing for anything else.
std::optional<uint8_t> ParseQosLevel(const std::string& text);

struct QosRun {
    LunRange luns;
    uint8_t level;
    std::optional<uint8_t> before;
};

// before may be null.
std::vector<QosRun> QosRuns(const HX_LUN_QOS& now, const HX_LUN_QOS* before);

}  // namespace vxmgr
