// The rows of the command table, by the file that has the commands.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

CommandRows SfpCommands();
CommandRows SfpSerdesCommands();
CommandRows SfpWatchCommands();
CommandRows SfpChangeCommands();

}  // namespace vxmgr
