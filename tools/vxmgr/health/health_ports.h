// The health of the selected ports.
#pragma once

#include "vxmgr/app/inventory.h"
#include "vxmgr/health/health_checks.h"

namespace vxmgr {

struct PortHealth {
    const Port* port = nullptr;
    HealthReading reading;
    std::vector<HealthFinding> findings;
};

struct HealthPlan {
    uint64_t sample = 0;  // seconds in which is counted what else counts from the reset on; 0: none
    bool code = true;     // the code in the flash is read, too
};

// Asks the ports side by side and judges what they say. A port that does not answer is in the list
// as such.
std::vector<PortHealth> ReadHealth(Invocation& invocation, std::vector<Port>& ports,
                                   const HealthPlan& plan);

}  // namespace vxmgr
