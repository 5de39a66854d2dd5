// Lists inside the elements of a list, and so on down, as a tree.
#pragma once

#include <string>

#include "record.h"
#include "render.h"

namespace tools {

// A line for each element, below that of the element whose list it is in. It has the values with a
// label, as far as they are known: a number without a unit behind its label, anything else alone.
std::string TreeText(const Field& tree, const RenderStyle& style);

// For tables: a row for each element that has no others below it, with what the elements above it
// have. Of a key that several levels have, a row has the value of the innermost that knows it.
Field LeavesOf(const Field& tree);

}  // namespace tools
