// The rows of the command table, by the file that has the commands.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

CommandRows DiagRunCommands();
CommandRows DiagCommands();
CommandRows RegisterCommands();
CommandRows DumpCommands();

}  // namespace vxmgr
