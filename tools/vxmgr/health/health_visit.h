// Asking a port, in one visit, for everything that its health and its metrics are made of.
#pragma once

#include "vxmgr/app/port_walk.h"
#include "vxmgr/health/health_reading.h"

namespace vxmgr {

// What is asked of a port.
struct HealthVisit {
    bool countersAlone = false;  // what a sample counts
    bool adapter = false;        // also what its ports share
    bool code = false;           // with the code in the flash, which takes the longest
};

// A question that fails leaves its status; only a port that cannot be asked at all fails.
AskPort<HealthReading> AskHealth(const HealthVisit& what);

// What the inventory knows of the port already.
void AddInventory(const Port& port, HealthReading* reading);

}  // namespace vxmgr
