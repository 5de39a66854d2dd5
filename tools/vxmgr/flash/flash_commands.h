// flash layout|read|write, flash lock show|release.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

tools::ExitCode FlashLayoutShow(tools::Invocation& invocation);
std::span<const tools::Argument> FlashReadArguments();
tools::ExitCode FlashRead(tools::Invocation& invocation);
std::span<const tools::Argument> FlashWriteArguments();
tools::ExitCode FlashWrite(tools::Invocation& invocation);

tools::ExitCode FlashLockShow(tools::Invocation& invocation);
std::span<const tools::Argument> FlashLockReleaseArguments();
tools::ExitCode FlashLockRelease(tools::Invocation& invocation);
// What `flash lock release` starts as a process of its own.
tools::ExitCode FlashLockEnd(tools::Invocation& invocation);

}  // namespace vxmgr
