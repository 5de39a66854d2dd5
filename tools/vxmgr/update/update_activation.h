// Starting what was written.
#pragma once

#include <cstdint>
#include <string>

#include "vxmgr/update/update_adapter.h"

namespace vxmgr {

// Has the firmware of all open ports of the adapter start what the flash holds. limitSeconds: what
// a port may take (0: any time); beyond it the ports that follow are left as they are.
HX_STATUS ActivateOnline(const AdapterSession& session, uint32_t limitSeconds);

// Has every open port read its settings anew; the first failure ends it.
HX_STATUS ReloadSettings(const AdapterSession& session);

// Reads versions until all ports report the one that is expected. False when the time is over.
bool WaitForFirmware(tools::Invocation& invocation, AdapterSession& session,
                     const std::string& version);

}  // namespace vxmgr
