// bind list|add|remove|swap|apply|export|import|stores|clean.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> BindListArguments();
tools::ExitCode BindList(tools::Invocation& invocation);
std::span<const tools::Argument> BindAddArguments();
tools::ExitCode BindAdd(tools::Invocation& invocation);
std::span<const tools::Argument> BindRemoveArguments();
tools::ExitCode BindRemove(tools::Invocation& invocation);
std::span<const tools::Argument> BindSwapArguments();
tools::ExitCode BindSwap(tools::Invocation& invocation);
std::span<const tools::Argument> BindApplyArguments();
tools::ExitCode BindApply(tools::Invocation& invocation);
std::span<const tools::Argument> BindExportArguments();
tools::ExitCode BindExport(tools::Invocation& invocation);
std::span<const tools::Argument> BindImportArguments();
tools::ExitCode BindImport(tools::Invocation& invocation);
tools::ExitCode BindStores(tools::Invocation& invocation);
std::span<const tools::Argument> BindCleanArguments();
tools::ExitCode BindClean(tools::Invocation& invocation);

}  // namespace vxmgr
