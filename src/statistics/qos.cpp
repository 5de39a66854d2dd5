// Priorities of the logical units of a target.
#include <algorithm>
#include <iterator>

#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/query.h"

namespace statistics {
namespace {

bool AreLevels(const HX_LUN_QOS& qos) {
    return std::all_of(std::begin(qos.levels), std::end(qos.levels),
                       [](uint8_t level) { return level <= HX_QOS_HIGH; });
}

}  // namespace

HX_STATUS GetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos) {
    if (const HX_STATUS status = Check(handle, needs::kLunQos, target != nullptr && qos != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    properties::AddressBlock block;
    const HX_STATUS status = PutTarget(target, block);
    return status == HXMGT_SUCCESS ? Fetch(handle, transport::command::LunQos, block, *qos)
                                   : status;
}

HX_STATUS GetLunQosEnable(uint32_t handle, uint8_t* enabled) {
    if (const HX_STATUS status = Check(handle, needs::kLunQos, enabled != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    uint8_t reply = 0;
    const HX_STATUS status = Fetch(handle, transport::command::LunQosEnable, uint8_t{0}, reply);
    if (status == HXMGT_SUCCESS) {
        *enabled = reply != 0;
    }
    return status;
}

HX_STATUS SetLunQos(uint32_t handle, const DESTINATIONADDRESS* target, HX_LUN_QOS* qos) {
    if (const HX_STATUS status = Check(handle, needs::kLunQos, target != nullptr && qos != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    SetQosRequest request{};
    if (const HX_STATUS status = PutTarget(target, request.target); status != HXMGT_SUCCESS) {
        return status;
    }
    request.qos = *qos;
    return AreLevels(request.qos) ? Fetch(handle, transport::command::SetLunQos, request, *qos)
                                  : HXMGT_INVALID_PARAMETER;
}

}  // namespace statistics
