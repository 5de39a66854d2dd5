// sfp show|dump|watch|write|load.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

tools::ExitCode SfpShow(tools::Invocation& invocation);
std::span<const tools::Argument> SfpDumpArguments();
tools::ExitCode SfpDump(tools::Invocation& invocation);
std::span<const tools::Argument> SfpWatchArguments();
tools::ExitCode SfpWatch(tools::Invocation& invocation);
std::span<const tools::Argument> SfpWriteArguments();
tools::ExitCode SfpWrite(tools::Invocation& invocation);
std::span<const tools::Argument> SfpLoadArguments();
tools::ExitCode SfpLoad(tools::Invocation& invocation);

}  // namespace vxmgr
