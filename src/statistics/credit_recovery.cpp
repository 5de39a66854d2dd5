// Buffer-to-buffer credit recovery of a port's link.
#include "statistics/health.h"
#include "statistics/health_records.h"
#include "statistics/query.h"

namespace statistics {

HX_STATUS GetCreditRecovery(uint32_t handle, HX_BBCR_DATA* record) {
    const HX_STATUS status = Check(handle, needs::kCreditRecovery, record != nullptr);
    return status == HXMGT_SUCCESS ? Fetch(handle, transport::command::BbCreditRecovery,
                                           properties::AddressBlock{}, *record)
                                   : status;
}

}  // namespace statistics
