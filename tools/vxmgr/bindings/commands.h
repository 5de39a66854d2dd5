// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows BindListCommands();
tools::CommandRows BindChangeCommands();
tools::CommandRows BindTransferCommands();
tools::CommandRows BindStoreCommands();
tools::CommandRows LunmaskCommands();
tools::CommandRows LunmaskTransferCommands();

}  // namespace vxmgr
