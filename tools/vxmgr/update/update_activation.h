// Starting what an adapter's flash holds, while the host runs.
#pragma once

#include <functional>

#include "vxmgr/update/update_adapter.h"

namespace vxmgr {

inline constexpr uint32_t kActivationSeconds = 60;  // what a port may take, usually

// Has the firmware of all open ports of the adapter start what the flash holds. limitSeconds: what
// a port may take (0: any time); beyond it the ports that follow are left as they are.
HX_STATUS NoteAndActivate(const AdapterSession& session, uint32_t limitSeconds);

struct Restarted {
    HX_STATUS status;  // of the request
    bool runs;         // all ports report the version
};

// Restarts the firmware of the adapter under its update lock; a stop waits for the end. version:
// what has to run afterwards; empty: any. The session is read anew.
Restarted RestartUnderLock(Invocation& invocation, AdapterSession& session,
                           const std::string& version, const std::function<HX_STATUS()>& start);

}  // namespace vxmgr
