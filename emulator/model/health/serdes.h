// The registers between the chip and the cage: SerDes lanes and the retimer.
#pragma once

#include "model/port.h"

namespace vxemu {

// As they are after a power cycle.
void StartSignals(Port& port);

}  // namespace vxemu
