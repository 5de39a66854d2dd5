// schema: the JSON Schemas of the tool's documents.
#pragma once

#include <span>

#include "command.h"

namespace tools {

std::span<const Argument> SchemaArguments();
Shape SchemaShape();
ExitCode RunSchema(Invocation& invocation);

}  // namespace tools
