#include "hbaapi/handlers.h"
#include "hbaapi/status.h"
#include "statistics/statistics.h"

namespace hbaapi {
namespace {

constexpr HBA_INT64 kNotAvailable = -1;

}  // namespace

HBA_STATUS GetPortStatistics(HBA_HANDLE handle, HBA_UINT32, HBA_PORTSTATISTICS* statistics) {
    if (const HBA_STATUS status = CheckCall(handle, statistics); status != HBA_STATUS_OK) {
        return status;
    }
    HX_STATISTICS counters{};
    const HX_STATUS status = statistics::GetStatistics(handle, &counters);
    if (status == HXMGT_SUCCESS) {
        // Of the traffic nothing is told: intended.
        *statistics = {kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       kNotAvailable,
                       counters.linkFailures,
                       counters.lossesOfSync,
                       counters.lossesOfSignal,
                       counters.primitiveSequenceErrors,
                       counters.invalidTransmissionWords,
                       counters.invalidCrcs};
    }
    return MapStatus(status);
}

HBA_STATUS ResetStatistics(HBA_HANDLE handle, HBA_UINT32) {
    return statistics::ResetStatistics(handle);  // not mapped: intended
}

}  // namespace hbaapi
