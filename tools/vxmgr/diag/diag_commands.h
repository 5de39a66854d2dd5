// diag run|loopback|dport|mailbox.
#pragma once

#include <span>

#include "common/command.h"

namespace vxmgr {

std::span<const tools::Argument> DiagRunArguments();
tools::ExitCode DiagRun(tools::Invocation& invocation);
std::span<const tools::Argument> DiagLoopbackArguments();
tools::ExitCode DiagLoopback(tools::Invocation& invocation);
tools::ExitCode DiagDport(tools::Invocation& invocation);
std::span<const tools::Argument> DiagMailboxArguments();
tools::ExitCode DiagMailbox(tools::Invocation& invocation);

}  // namespace vxmgr
