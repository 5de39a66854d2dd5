// Firmware versions as dotted numbers. Free of platform headers.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace flash {

// True for a version of at least the wanted numbers. A number that is needed and missing counts as
// older.
bool IsAtLeast(std::string_view version, std::span<const uint32_t> wanted);

}  // namespace flash
