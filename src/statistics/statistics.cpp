#include "statistics/statistics.h"

#include "properties/generation.h"
#include "statistics/statistics_records.h"
#include "transport/requests.h"

namespace statistics {
namespace {

namespace command = transport::command;

HX_STATUS GetLegacy(uint32_t handle, HX_STATISTICS& record) {
    LegacyStatisticsReply reply{};
    const HX_STATUS status =
        transport::AskLegacy(handle, LegacyStatisticsSelector::Statistics, reply);
    if (status == HXMGT_SUCCESS) {
        record = reply.counters;
    }
    return status;
}

HX_STATUS GetExtended(uint32_t handle, HX_STATISTICS& record) {
    HX_STATISTICS reply{};
    const HX_STATUS status = transport::Ask(handle, command::LinkStatistics, reply);
    if (status == HXMGT_SUCCESS) {
        record = reply;
    }
    return status;
}

HX_STATUS ResetLegacy(uint32_t handle) {
    const HX_STATUS status =
        transport::SendPlain(handle, command::LegacyResetStatistics, nullptr, 0, nullptr, 0);
    return status == HXMGT_SUCCESS ? transport::SendPlain(handle, command::LegacyResetStatistics2,
                                                          nullptr, 0, nullptr, 0)
                                   : status;
}

// Only drivers with extended requests have a management address.
HX_STATUS CheckAddressCall(uint32_t handle, const void* record) {
    if (const HX_STATUS status = properties::CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return properties::TakesExtendedRequests(handle) ? HXMGT_SUCCESS : HXMGT_NOT_SUPPORTED;
}

}  // namespace

HX_STATUS GetStatistics(uint32_t handle, HX_STATISTICS* record) {
    if (const HX_STATUS status = properties::CheckQuery(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    return properties::TakesExtendedRequests(handle) ? GetExtended(handle, *record)
                                                     : GetLegacy(handle, *record);
}

HX_STATUS ResetStatistics(uint32_t handle) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    const transport::Command reset = command::ResetStatistics;
    return properties::TakesExtendedRequests(handle)
               ? transport::SendExtended(handle, reset.code, reset.subCode, nullptr, 0, nullptr, 0,
                                         nullptr)
               : ResetLegacy(handle);
}

HX_STATUS GetManagementAddress(uint32_t handle, void* record, uint32_t size) {
    if (const HX_STATUS status = CheckAddressCall(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    const transport::Command query = command::ManagementAddress;
    return transport::SendExtended(handle, query.code, query.subCode, nullptr, 0, record, size,
                                   nullptr);
}

HX_STATUS SetManagementAddress(uint32_t handle, const HX_MGMT_ADDRESS_SETTING* record) {
    if (const HX_STATUS status = CheckAddressCall(handle, record); status != HXMGT_SUCCESS) {
        return status;
    }
    const SetAddressRequest request{*record, {}};
    return transport::Tell(handle, command::SetManagementAddress, request);
}

}  // namespace statistics
