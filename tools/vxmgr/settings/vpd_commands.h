// vpd show|read|write.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> PciVpdShowArguments();
tools::ExitCode PciVpdShow(tools::Invocation& invocation);
std::span<const tools::Argument> PciVpdReadArguments();
tools::ExitCode PciVpdRead(tools::Invocation& invocation);
std::span<const tools::Argument> PciVpdWriteArguments();
tools::ExitCode PciVpdWrite(tools::Invocation& invocation);

}  // namespace vxmgr
