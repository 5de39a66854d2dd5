// What has to be known of an adapter before anything in its flash is changed.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vxmgr/app/port_session.h"

namespace vxmgr {

struct UpdateOutlook {
    bool activatesOnline = false;       // new firmware can be started without a restart of the host
    std::optional<bool> bootsFromSan;   // empty: the driver cannot tell
    std::optional<bool> secondBank;     // the second bank of settings is in use; empty: no banks
    std::vector<std::string> warnings;  // told already; for the question as well
};

// Looks at one port, and wakes the library's rule that updates need the lock. Ends the command when
// the adapter is locked down, or when it cannot be told which of its banks are in use; warns of a
// disabled port and of a port that the host boots from.
UpdateOutlook LookBeforeUpdate(tools::Invocation& invocation, const Port& port, uint32_t handle);

inline UpdateOutlook LookBeforeUpdate(tools::Invocation& invocation, const PortSession& session) {
    return LookBeforeUpdate(invocation, session.port, session.Handle());
}

// Asks whether the host boots through the port; empty when the driver cannot tell.
std::optional<bool> BootsFromSan(uint32_t handle);

}  // namespace vxmgr
