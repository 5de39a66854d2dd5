// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows NvramCommands();
tools::CommandRows NvramChangeCommands();
tools::CommandRows NvramActivateCommands();
tools::CommandRows NvramTransferCommands();
tools::CommandRows VpdCommands();

}  // namespace vxmgr
