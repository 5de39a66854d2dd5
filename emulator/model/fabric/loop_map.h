// Who is where on an arbitrated loop.
#pragma once

#include "hxfabric.h"
#include "model/port.h"

namespace vxemu {

bool IsOnLoop(const Port& port);

// The port first, then the devices that it sees in the order of their physical addresses; empty
// outside a loop.
HX_POSITIONAL_MAP LoopMapOf(const Port& port);

}  // namespace vxemu
