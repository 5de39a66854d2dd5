// Having a port's firmware use the settings that were written.
#pragma once

#include <vector>

#include "nvram_block.h"
#include "port_session.h"

namespace vxmgr {

// Restarts the port's firmware and looks whether it uses the block. Reports what went wrong.
tools::ExitCode ActivateNvram(tools::Invocation& invocation, const PortSession& session,
                              NvramKind kind, const std::vector<uint8_t>& block);

}  // namespace vxmgr
