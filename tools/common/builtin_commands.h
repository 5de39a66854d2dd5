// The commands that every tool has, for RunTool to put behind those of the tool.
#pragma once

#include <span>

#include "command.h"

namespace tools {

std::span<const Command> BuiltinCommands();

}  // namespace tools
