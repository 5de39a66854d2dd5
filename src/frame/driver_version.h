// Driver versions as one number. Free of platform headers.
#pragma once

#include <cstdint>
#include <span>

namespace frame {

// major x 10000 + minor x 100 + patch of the first 31 characters of a text that need not end: the
// first three tokens between blanks, dots, newlines and tabs; a missing one counts 0.
uint32_t ParseDriverVersion(std::span<const char> text);

}  // namespace frame
