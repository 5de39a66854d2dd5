#include "model/health/beacon.h"

#include "model/fabric/fabric.h"
#include "statistics/health_records.h"

namespace vxemu {
namespace {

using statistics::BeaconOperation;
using transport::DriverStatus;

constexpr uint64_t kHalfSecond = 500;
constexpr uint32_t kBeaconAt = offsetof(statistics::BeaconRequest, mark);

void Set(Port& port, const HX_BEACON& wanted) {
    const uint64_t now = port.fabric->host.Now();
    port.beacon.on = wanted.on != 0;
    port.beacon.until = wanted.seconds != 0 ? now + uint64_t{wanted.seconds} * 1000 : 0;
}

HX_BEACON Describe(Port& port) {
    const uint64_t now = port.fabric->host.Now();
    Beacon& state = port.beacon;
    state.on = state.on && (state.until == 0 || now < state.until);
    HX_BEACON beacon = {};
    beacon.supported = port.profile->beaconSupported;
    beacon.on = state.on ? 1 : 0;
    if (state.on) {
        beacon.seconds =
            state.until != 0 ? static_cast<uint32_t>((state.until - now + 999) / 1000) : 0;
        beacon.leds = now / kHalfSecond % 2 == 0 ? HX_BEACON_AMBER : HX_BEACON_GREEN;
    } else {
        beacon.leds = port.LinkUp() ? HX_BEACON_GREEN : HX_BEACON_AMBER;
    }
    return beacon;
}

}  // namespace

static_assert(sizeof(BeaconPart) == offsetof(statistics::BeaconRequest, reserved692) - kBeaconAt);

bool ReadBeacon(const Exchange& exchange, BeaconPart& part) {
    if (exchange.InputLength() < sizeof(statistics::BeaconRequest)) {
        return false;
    }
    std::memcpy(&part, exchange.Bytes() + kBeaconAt, sizeof part);
    return part.mark == statistics::kBeaconMark;
}

DriverStatus AnswerBeacon(Port& port, BeaconPart& part) {
    const bool set = part.operation == static_cast<uint32_t>(BeaconOperation::Set);
    if (!set && part.operation != static_cast<uint32_t>(BeaconOperation::Read)) {
        return DriverStatus::InvalidParameter;
    }
    if (set && (part.beacon.on > 1 || part.beacon.seconds > HX_BEACON_MOST_SECONDS)) {
        return DriverStatus::InvalidParameter;
    }
    if (set && port.profile->beaconSupported != 0) {
        Set(port, part.beacon);
    }
    part.beacon = Describe(port);
    return DriverStatus::Success;
}

void PutBeacon(Exchange& exchange, const BeaconPart& part) {
    exchange.Put(kBeaconAt, &part, sizeof part);
}

}  // namespace vxemu
