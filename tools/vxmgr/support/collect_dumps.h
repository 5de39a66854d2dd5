// The firmware dumps that wait in adapters.
#pragma once

#include "vxmgr/app/inventory.h"

namespace vxmgr {

struct CollectedDump {
    const Port* port;
    const char* kind;
    HX_STATUS status;
    std::vector<uint8_t> bytes;
};

// Fetches those that there are, the ports side by side.
std::vector<CollectedDump> FetchDumps(Invocation& invocation, const std::vector<Port*>& ports);

}  // namespace vxmgr
