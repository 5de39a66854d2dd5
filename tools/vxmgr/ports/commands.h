// The rows of the command table, by the file that has the commands.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

CommandRows AdapterAndPortCommands();
CommandRows LocateCommands();
CommandRows StatsCommands();
CommandRows DatabaseCommands();
CommandRows LockdownCommands();
CommandRows EventCommands();
CommandRows SmartsanCommands();
CommandRows DriverCommands();

}  // namespace vxmgr
