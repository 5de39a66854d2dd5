// Commands that every tool has; a tool lists them as rows of its own table.
#pragma once

#include <span>

#include "command.h"

namespace tools {

ExitCode RunVersion(Invocation& invocation);

// "exit", "exit N", a status number or the name of a status.
std::span<const Argument> ExplainArguments();
ExitCode RunExplain(Invocation& invocation);

std::span<const Argument> CompletionArguments();
ExitCode RunCompletion(Invocation& invocation);

}  // namespace tools
