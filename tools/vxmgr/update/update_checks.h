// What has to be known of an adapter before anything in its flash is changed.
#pragma once

#include "vxmgr/app/port_session.h"
#include "vxmgr/update/update_adapter.h"

namespace vxmgr {

struct UpdateOutlook {
    bool activatesOnline = false;       // new firmware can be started without a restart of the host
    std::optional<bool> bootsFromSan;   // empty: the driver cannot tell
    std::vector<std::string> warnings;  // told already; for the question as well
};

// Looks at one port, and wakes the library's rule that updates need the lock. Ends the command when
// the adapter is locked down, or when it cannot be told which of its banks are in use; warns of a
// disabled port and of a port that the host boots from.
UpdateOutlook LookBeforeUpdate(Invocation& invocation, const Port& port, uint32_t handle);

inline UpdateOutlook LookBeforeUpdate(Invocation& invocation, const PortSession& session) {
    return LookBeforeUpdate(invocation, session.port, session.Handle());
}

// The same for all ports of an adapter, in their order.
std::vector<UpdateOutlook> LookBeforeUpdate(Invocation& invocation, const AdapterSession& session);

// Asks whether to change something behind one port. lines: more to weigh, before the warnings.
void ConfirmUpdate(Invocation& invocation, const PortSession& session, const UpdateOutlook& outlook,
                   const std::string& action, const std::string& consequence,
                   const std::vector<std::string>& lines = {});

// Whether the second bank of settings is in use, where the chip has two.
HX_STATUS AskSecondBank(uint32_t handle, bool* second);
}  // namespace vxmgr
