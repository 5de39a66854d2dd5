// Rates of links: codes, and what is the lower one.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"
#include "model/fabric/fabric.h"

namespace vxemu {

constexpr uint32_t GigabitsOf(uint16_t code) {
    constexpr struct {
        uint16_t code;
        uint32_t gigabits;
    } kRates[] = {
        {HX_SPEED_1GBIT, 1},   {HX_SPEED_2GBIT, 2},   {HX_SPEED_4GBIT, 4},   {HX_SPEED_8GBIT, 8},
        {HX_SPEED_10GBIT, 10}, {HX_SPEED_16GBIT, 16}, {HX_SPEED_32GBIT, 32}, {HX_SPEED_64GBIT, 64},
    };
    for (const auto& rate : kRates) {
        if (rate.code == code) {
            return rate.gigabits;
        }
    }
    return 0;
}

// The rate at which frames go to a device, unless management has set another.
inline uint8_t NegotiatedSpeed(const Port& port, const TargetProfile& device) {
    const uint8_t own = port.profile->currentSpeed;
    return GigabitsOf(device.highestSpeed) < GigabitsOf(own) ? device.highestSpeed : own;
}

inline uint16_t SpeedTo(const Port& port, const TargetProfile& device) {
    const uint16_t set = PeerOf(port, device).speed;
    return set != HX_SPEED_UNKNOWN ? set : NegotiatedSpeed(port, device);
}

}  // namespace vxemu
