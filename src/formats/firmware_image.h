// The firmware image of a large-ROM chip: two segments of big-endian words. Free of platform
// headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace flash {

// Words of a segment that are not code; the words of a segment add up to 0.
inline constexpr uint32_t kSegmentLengthWord = 3;  // length of the segment in words
inline constexpr uint32_t kVersionWord = 4;        // first segment: major, minor, sub-minor

enum class FirmwareCheck { Good, BadSegments, BadChecksum };

// Segments must lie within the region and the image.
FirmwareCheck CheckFirmware(std::span<const uint8_t> image, size_t regionBytes);

// Big-endian word of an image; 0 beyond its end.
uint32_t FirmwareWord(std::span<const uint8_t> image, size_t index);

}  // namespace flash
