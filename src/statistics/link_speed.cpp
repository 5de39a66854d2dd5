// The rate at which frames go to a target.
#include <algorithm>
#include <iterator>

#include "statistics/fabric.h"
#include "statistics/fabric_records.h"
#include "statistics/query.h"

namespace statistics {
namespace {

constexpr uint16_t kSpeeds[] = {HX_SPEED_UNKNOWN, HX_SPEED_1GBIT,  HX_SPEED_2GBIT,
                                HX_SPEED_4GBIT,   HX_SPEED_8GBIT,  HX_SPEED_10GBIT,
                                HX_SPEED_16GBIT,  HX_SPEED_32GBIT, HX_SPEED_64GBIT};

bool IsSpeed(uint16_t speed) {
    return std::find(std::begin(kSpeeds), std::end(kSpeeds), speed) != std::end(kSpeeds);
}

}  // namespace

HX_STATUS GetTargetLinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target,
                             HX_TARGET_LINK_SPEED* record) {
    if (const HX_STATUS status =
            Check(handle, needs::kLinkSpeed, target != nullptr && record != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    LinkSpeedRequest request{};
    if (const HX_STATUS status = PutTarget(target, request.target); status != HXMGT_SUCCESS) {
        return status;
    }
    LinkSpeedRequest reply;
    const HX_STATUS status = Fetch(handle, transport::command::TargetLinkSpeed, request, reply);
    if (status == HXMGT_SUCCESS) {
        *record = reply.record;
    }
    return status;
}

HX_STATUS SetTargetLinkSpeed(uint32_t handle, const DESTINATIONADDRESS* target, uint16_t speed) {
    if (const HX_STATUS status = Check(handle, needs::kLinkSpeed, target != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    LinkSpeedRequest request{};
    if (const HX_STATUS status = PutTarget(target, request.target); status != HXMGT_SUCCESS) {
        return status;
    }
    if (!IsSpeed(speed)) {
        return HXMGT_INVALID_PARAMETER;
    }
    request.record.speed = speed;
    LinkSpeedRequest reply;
    return Fetch(handle, transport::command::SetTargetLinkSpeed, request, reply);
}

}  // namespace statistics
