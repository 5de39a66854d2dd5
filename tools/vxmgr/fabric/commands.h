// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows ScsiCommands();
tools::CommandRows FcCommands();
tools::CommandRows NpivCommands();
tools::CommandRows NvmeCommands();

}  // namespace vxmgr
