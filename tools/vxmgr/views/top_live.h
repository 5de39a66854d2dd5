// The live screen of the ports.
#pragma once

#include "common/screen.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

// Shows the ports until the user, --for or --count ends it, and puts the console back. The exit
// code: what became of the ports.
ExitCode ShowTopScreen(Invocation& invocation, std::unique_ptr<Screen> screen,
                       const std::vector<Port*>& ports, std::chrono::seconds interval);

}  // namespace vxmgr
