// What the driver of a port counts for itself: requests, what became of them, how long they took.
#pragma once

#include "model/faults.h"
#include "model/port.h"

namespace vxemu {

// Takes note of a fault that a rule asks for.
void CountFault(Port& port, const FaultAction& fault);

// Takes note of the request that has just been answered.
void CountTime(Port& port);

}  // namespace vxemu
