// The rows of the command table, by the file that has the commands.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

CommandRows NvramCommands();
CommandRows NvramChangeCommands();
CommandRows NvramActivateCommands();
CommandRows NvramTransferCommands();
CommandRows VpdCommands();

}  // namespace vxmgr
