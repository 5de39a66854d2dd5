// The temperature of an adapter's board.
#pragma once

#include <cstdint>

#include "model/port.h"

namespace vxemu {

// In 1/256 degree Celsius.
int32_t TemperatureOf(const Port& port);

}  // namespace vxemu
