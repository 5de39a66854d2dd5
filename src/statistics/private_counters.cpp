// What the driver counted by itself, and how long commands took.
#include <algorithm>

#include "statistics/query.h"
#include "statistics/statistics.h"
#include "statistics/statistics_records.h"

namespace statistics {
namespace {

// Of the caller's record the options alone travel.
template <class Record>
HX_STATUS FetchPrivate(uint32_t handle, transport::Command command, Record* record) {
    if (const HX_STATUS status = Check(handle, needs::kPrivateStatistics, record != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    Record request{};
    request.options = record->options;
    if (request.options > HX_PRIVATE_RESTART) {
        return HXMGT_INVALID_PARAMETER;
    }
    return Fetch(handle, command, request, *record);
}

}  // namespace

HX_STATUS GetPrivateStatistics(uint32_t handle, HX_PRIVATE_STATISTICS* record) {
    return FetchPrivate(handle, transport::command::PrivateStatistics, record);
}

HX_STATUS GetPrivateStatisticsEx(uint32_t handle, HX_PRIVATE_STATISTICS_EX* record) {
    const HX_STATUS status = FetchPrivate(handle, transport::command::PrivateStatisticsEx, record);
    if (status == HXMGT_SUCCESS) {
        record->buckets = std::min<uint32_t>(record->buckets, HX_LATENCY_BUCKETS);
    }
    return status;
}

}  // namespace statistics
