#include "vxmgr/targets/target_luns.h"

namespace vxmgr {
namespace {

std::optional<bool> Has(const std::optional<LunSet>& view, uint32_t lun) {
    return view ? std::optional(view->test(lun)) : std::nullopt;
}

bool LooksAs(const LunRun& a, const LunRun& b) {
    return a.seen == b.seen && a.maskedLive == b.maskedLive && a.maskedStored == b.maskedStored;
}

}  // namespace

std::vector<LunRun> LunRuns(const LunViews& views) {
    std::vector<LunRun> runs;
    for (uint32_t lun = 0; lun < HX_MAX_LUNS; ++lun) {
        const LunRun one{{lun, lun},
                         Has(views.seen, lun),
                         Has(views.maskedLive, lun),
                         Has(views.maskedStored, lun)};
        const bool worthSaying = one.seen.value_or(false) || one.maskedLive.value_or(false) ||
                                 one.maskedStored.value_or(false);
        if (!worthSaying) {
            continue;
        }
        if (!runs.empty() && runs.back().luns.last + 1 == lun && LooksAs(runs.back(), one)) {
            runs.back().luns.last = lun;
        } else {
            runs.push_back(one);
        }
    }
    return runs;
}

}  // namespace vxmgr
