// The driver parameter string: name=value tokens between blanks and semicolons. Free of platform
// headers.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace frame {

// Value of the first token named so (letter case does not count), or nothing where the parameter is
// absent or has an empty value.
std::optional<std::string_view> FindParameter(std::string_view text, std::string_view name);

// True for texts that survive a round trip: a name without separators, '=' and NUL that is not
// empty; a value without separators and NUL that is not empty.
bool IsParameterName(std::string_view name);
bool IsParameterValue(std::string_view value);

// Writes the text with the first token of that name replaced, or appended; without a value the
// token is taken away. The other tokens keep their order, joined with ';'. Returns the length, or
// nothing when out is too small (it then holds part of the result). Room for text, name and value
// and two more characters is always enough.
std::optional<size_t> EditParameters(std::string_view text, std::string_view name,
                                     std::optional<std::string_view> value, std::span<char> out);

}  // namespace frame
