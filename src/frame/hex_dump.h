// Rows of a hex dump. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace frame {

inline constexpr size_t kDumpRowBytes = 16;
inline constexpr size_t kDumpLimit = 256;  // bytes that a dump shows at most

// One row with its terminator.
inline constexpr size_t kDumpRowText = 96;
using DumpRowText = char[kDumpRowText];

// Formats the row that begins at offset; data is all that the dump shows.
void FormatDumpRow(std::span<const uint8_t> data, size_t offset, DumpRowText& text);

}  // namespace frame
