// Having a port's firmware use the settings that were written.
#pragma once

#include <vector>

#include "vxmgr/app/port_session.h"
#include "vxmgr/settings/nvram_block.h"

namespace vxmgr {

// Restarts the port's firmware and looks whether it uses the block. Reports what went wrong.
tools::ExitCode ActivateNvram(tools::Invocation& invocation, const PortSession& session,
                              NvramKind kind, const std::vector<uint8_t>& block);

}  // namespace vxmgr
