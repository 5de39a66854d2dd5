// fw show|inspect|check|activate.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

tools::ExitCode FirmwareShow(tools::Invocation& invocation);
std::span<const tools::Argument> FirmwareInspectArguments();
tools::ExitCode FirmwareInspect(tools::Invocation& invocation);
std::span<const tools::Argument> FirmwareCheckArguments();
tools::ExitCode FirmwareCheck(tools::Invocation& invocation);
std::span<const tools::Argument> FirmwareActivateArguments();
tools::ExitCode FirmwareActivate(tools::Invocation& invocation);

}  // namespace vxmgr
