// The LED that locates a port.
#include "statistics/health.h"
#include "statistics/health_records.h"
#include "statistics/query.h"

namespace statistics {
namespace {

// Sends a beacon to the driver, which answers with the one it has then.
HX_STATUS ExchangeBeacon(uint32_t handle, BeaconOperation operation, HX_BEACON& beacon) {
    BeaconRequest request{};
    request.mark = kBeaconMark;
    request.operation = static_cast<uint32_t>(operation);
    request.beacon.on = beacon.on;
    request.beacon.seconds = beacon.seconds;
    BeaconRequest reply;
    if (const HX_STATUS status = Fetch(handle, transport::command::NodeProperties, request, reply);
        status != HXMGT_SUCCESS) {
        return status;
    }
    if (reply.mark != kBeaconMark) {
        return HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER;  // these are its node properties alone
    }
    if (reply.beacon.supported == 0) {
        return HXMGT_NOT_SUPPORTED;
    }
    beacon = reply.beacon;
    beacon.supported = 1;
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetBeacon(uint32_t handle, HX_BEACON* beacon) {
    if (const HX_STATUS status = Check(handle, needs::kBeacon, beacon != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_BEACON read{};
    const HX_STATUS status = ExchangeBeacon(handle, BeaconOperation::Read, read);
    if (status == HXMGT_SUCCESS) {
        *beacon = read;
    }
    return status;
}

HX_STATUS SetBeacon(uint32_t handle, const HX_BEACON* beacon) {
    if (const HX_STATUS status = Check(handle, needs::kBeacon, beacon != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_BEACON set = *beacon;
    return set.on <= 1 && set.seconds <= HX_BEACON_MOST_SECONDS
               ? ExchangeBeacon(handle, BeaconOperation::Set, set)
               : HXMGT_INVALID_PARAMETER;
}

}  // namespace statistics
