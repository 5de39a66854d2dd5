// fc names|rnid|rls|echo|ct|els.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

tools::ExitCode FabricNames(tools::Invocation& invocation);
std::span<const tools::Argument> FabricNodeArguments();
tools::ExitCode FabricNode(tools::Invocation& invocation);
std::span<const tools::Argument> FabricLinkErrorsArguments();
tools::ExitCode FabricLinkErrors(tools::Invocation& invocation);
std::span<const tools::Argument> FabricEchoArguments();
tools::ExitCode FabricEcho(tools::Invocation& invocation);
std::span<const tools::Argument> FabricCtArguments();
tools::ExitCode FabricCt(tools::Invocation& invocation);
std::span<const tools::Argument> FabricElsArguments();
tools::ExitCode FabricEls(tools::Invocation& invocation);

}  // namespace vxmgr
