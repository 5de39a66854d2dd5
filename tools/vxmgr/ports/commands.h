// The rows of the command table, by the file that has the commands.
#pragma once

#include "common/command.h"

namespace vxmgr {

tools::CommandRows AdapterAndPortCommands();
tools::CommandRows LocateCommands();
tools::CommandRows StatsCommands();
tools::CommandRows DatabaseCommands();
tools::CommandRows LockdownCommands();
tools::CommandRows EventCommands();
tools::CommandRows SmartsanCommands();
tools::CommandRows DriverCommands();

}  // namespace vxmgr
