// target list|show|luns.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> TargetSelectArguments();
tools::ExitCode TargetList(tools::Invocation& invocation);
tools::ExitCode TargetShow(tools::Invocation& invocation);
tools::ExitCode TargetLuns(tools::Invocation& invocation);

}  // namespace vxmgr
