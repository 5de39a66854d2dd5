// nvram show|get|set|activate|diff|export|import|verify.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> NvramShowArguments();
tools::ExitCode NvramShow(tools::Invocation& invocation);
std::span<const tools::Argument> NvramGetArguments();
tools::ExitCode NvramGet(tools::Invocation& invocation);
tools::ExitCode NvramVerify(tools::Invocation& invocation);

std::span<const tools::Argument> NvramSetArguments();
tools::ExitCode NvramSet(tools::Invocation& invocation);
std::span<const tools::Argument> NvramImportArguments();
tools::ExitCode NvramImport(tools::Invocation& invocation);

tools::ExitCode NvramActivate(tools::Invocation& invocation);

std::span<const tools::Argument> NvramDiffArguments();
tools::ExitCode NvramDiff(tools::Invocation& invocation);
std::span<const tools::Argument> NvramExportArguments();
tools::ExitCode NvramExport(tools::Invocation& invocation);

}  // namespace vxmgr
