// map target|volume|disk.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> MapTargetArguments();
tools::ExitCode MapTarget(tools::Invocation& invocation);
std::span<const tools::Argument> MapVolumeArguments();
tools::ExitCode MapVolume(tools::Invocation& invocation);
std::span<const tools::Argument> MapDiskArguments();
tools::ExitCode MapDisk(tools::Invocation& invocation);

}  // namespace vxmgr
