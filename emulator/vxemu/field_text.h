// The values of a profile as text, for JSON files and the command line. Free of platform headers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/profile/profile_fields.h"

namespace vxemu {

// "9.12.01", "50", "0x7740", "link-down", "true", "21:00:02:45:4d:00:01:00".
std::string FormatField(const Field& field, const uint8_t* bytes);

// Writes field.size bytes; false with what the value should be in *wanted.
bool ParseField(const Field& field, std::string_view text, uint8_t* bytes, std::string* wanted);

}  // namespace vxemu
