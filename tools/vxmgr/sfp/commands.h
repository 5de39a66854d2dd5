// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows SfpCommands();
tools::CommandRows SfpSerdesCommands();
tools::CommandRows SfpWatchCommands();
tools::CommandRows SfpChangeCommands();

}  // namespace vxmgr
