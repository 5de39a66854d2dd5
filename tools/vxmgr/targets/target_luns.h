// A target's LUNs in three views: what it reports, what the driver masks and what is stored. LUNs
// next to each other that look the same make one row.
#pragma once

#include <optional>
#include <vector>

#include "vxmgr/bindings/lunmask_luns.h"

namespace vxmgr {

// Nothing where a view could not be had.
struct LunViews {
    std::optional<LunSet> seen;
    std::optional<LunSet> maskedLive;
    std::optional<LunSet> maskedStored;
};

struct LunRun {
    LunRange luns;
    std::optional<bool> seen;
    std::optional<bool> maskedLive;
    std::optional<bool> maskedStored;
};

// LUNs that nobody sees and nobody masks are left out.
std::vector<LunRun> LunRuns(const LunViews& views);

}  // namespace vxmgr
