// Port types, states and speeds of the standard API by the driver's values: one table each. Free of
// platform headers.
#pragma once

#include <cstdint>

#include "hbaapi.h"

namespace hbaapi {

// The port's type; a port with no fabric around it has an identifier below 0x10000.
HBA_PORTTYPE PortTypeOf(uint16_t topology, uint32_t portFcId);
HBA_PORTSTATE PortStateOf(uint16_t state);

// All speeds of a supported-speed code. withoutLowest: the set's lowest speed is not supported.
HBA_PORTSPEED SupportedSpeedsOf(uint8_t code, bool withoutLowest);
HBA_PORTSPEED SpeedOf(uint8_t code);

HBA_FC4TYPES Fc4TypesOf(uint8_t flags);

constexpr uint32_t FcIdOf(const uint8_t (&portId)[3]) {
    return portId[0] * 0x10000u + portId[1] * 0x100u + portId[2];
}

}  // namespace hbaapi
