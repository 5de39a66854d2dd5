// SAN congestion management: state and counters of a port.
#include "statistics/query.h"
#include "statistics/statistics.h"
#include "statistics/statistics_records.h"

namespace statistics {

HX_STATUS GetScmStatistics(uint32_t handle, HX_SCM_STATISTICS* record) {
    if (const HX_STATUS status = Check(handle, needs::kScmStatistics, record != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_SCM_STATISTICS scm;
    if (const HX_STATUS status = Fetch(handle, transport::command::ScmStatistics, scm);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_STATISTICS link;
    if (const HX_STATUS status = Fetch(handle, transport::command::LinkStatistics, link);
        status != HXMGT_SUCCESS) {
        return status;
    }
    scm.linkErrors = {link.linkFailures,
                      link.lossesOfSync,
                      link.lossesOfSignal,
                      link.primitiveSequenceErrors,
                      link.invalidTransmissionWords,
                      link.invalidCrcs};
    *record = scm;
    return HXMGT_SUCCESS;
}

}  // namespace statistics
