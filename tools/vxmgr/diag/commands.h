// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows DiagRunCommands();
tools::CommandRows DiagCommands();
tools::CommandRows RegisterCommands();
tools::CommandRows DumpCommands();

}  // namespace vxmgr
