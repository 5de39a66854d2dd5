// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows FwShowCommands();
tools::CommandRows FwInspectCommands();
tools::CommandRows FwActivateCommands();
tools::CommandRows FwUpdateCommands();
tools::CommandRows FwRestoreCommands();

}  // namespace vxmgr
