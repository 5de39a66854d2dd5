// lunmask show|allow|deny|export|import.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> LunMaskShowArguments();
tools::ExitCode LunMaskShow(tools::Invocation& invocation);
std::span<const tools::Argument> LunMaskChangeArguments();
tools::ExitCode LunMaskAllow(tools::Invocation& invocation);
tools::ExitCode LunMaskDeny(tools::Invocation& invocation);
std::span<const tools::Argument> LunMaskExportArguments();
tools::ExitCode LunMaskExport(tools::Invocation& invocation);
std::span<const tools::Argument> LunMaskImportArguments();
tools::ExitCode LunMaskImport(tools::Invocation& invocation);

}  // namespace vxmgr
