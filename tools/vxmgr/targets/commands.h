// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows TargetCommands();
tools::CommandRows TargetSpeedCommands();
tools::CommandRows QosCommands();
tools::CommandRows MapCommands();

}  // namespace vxmgr
