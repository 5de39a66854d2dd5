// dump take|save|list.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

tools::ExitCode DumpTake(tools::Invocation& invocation);
std::span<const tools::Argument> DumpSaveArguments();
tools::ExitCode DumpSave(tools::Invocation& invocation);
tools::ExitCode DumpList(tools::Invocation& invocation);

}  // namespace vxmgr
