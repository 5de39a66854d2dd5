#include "vxmgr/targets/qos_levels.h"

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

std::optional<uint8_t> ParseQosLevel(const std::string& text) {
    for (uint8_t level = 0; level < std::size(kQosLevels); ++level) {
        if (EqualIgnoringCase(text, kQosLevels[level])) {
            return level;
        }
    }
    const auto number = ParseNumber(text);
    return number && *number < std::size(kQosLevels) ? std::optional(static_cast<uint8_t>(*number))
                                                     : std::nullopt;
}

std::vector<QosRun> QosRuns(const HX_LUN_QOS& now, const HX_LUN_QOS* before) {
    std::vector<QosRun> runs;
    for (uint32_t lun = 0; lun < HX_QOS_LUNS; ++lun) {
        const QosRun run{{lun, lun},
                         now.levels[lun],
                         before != nullptr ? std::optional(before->levels[lun]) : std::nullopt};
        if (!runs.empty() && runs.back().level == run.level && runs.back().before == run.before) {
            runs.back().luns.last = lun;
        } else {
            runs.push_back(run);
        }
    }
    return runs;
}

}  // namespace vxmgr
