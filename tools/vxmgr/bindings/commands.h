// The rows of the command table, by the file that has the commands.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

CommandRows BindListCommands();
CommandRows BindChangeCommands();
CommandRows BindTransferCommands();
CommandRows BindStoreCommands();
CommandRows LunmaskCommands();
CommandRows LunmaskTransferCommands();

}  // namespace vxmgr
