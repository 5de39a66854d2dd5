// scsi inquiry|capacity|luns|raw.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> ScsiInquiryArguments();
tools::ExitCode ScsiInquiry(tools::Invocation& invocation);
std::span<const tools::Argument> ScsiUnitArguments();
tools::ExitCode ScsiCapacity(tools::Invocation& invocation);
std::span<const tools::Argument> ScsiTargetArguments();
tools::ExitCode ScsiLuns(tools::Invocation& invocation);
std::span<const tools::Argument> ScsiRawArguments();
tools::ExitCode ScsiRaw(tools::Invocation& invocation);

}  // namespace vxmgr
