// Names of keys and values in the store: world wide names as text. Free of platform headers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace persist {

using Wwn = std::array<uint8_t, 8>;

inline constexpr size_t kWwnTextLength = 23;  // "21-00-00-24-ff-00-00-01"

// True for a name with '-' at each place where that of a port has one, whatever else it holds.
bool HasWwnForm(std::string_view name);

// The port of a name of that form; nothing when a field is no hexadecimal number of one or two
// characters. What follows the last field is not looked at.
std::optional<Wwn> ParseWwn(const char* name);

}  // namespace persist
