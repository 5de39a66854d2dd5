// hbaapi list|show|register|unregister.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::ExitCode HbaList(tools::Invocation& invocation);
tools::ExitCode HbaShow(tools::Invocation& invocation);
tools::ExitCode HbaRegister(tools::Invocation& invocation);
tools::ExitCode HbaUnregister(tools::Invocation& invocation);

}  // namespace vxmgr
