// The firmware image of a large-ROM chip: two segments of big-endian words, each of which adds up
// to 0.
#pragma once

#include "formats/bytes.h"
#include "formats/version_numbers.h"

namespace formats {

#pragma pack(push, 1)

// The words that a firmware image begins with, big-endian. The second segment has such a head, too,
// of which the length alone counts.
struct FirmwareHead {
    uint8_t code0[12];
    uint8_t length[4];  // of the segment, in words
    uint8_t version[3][4];
    uint8_t build[4];
    uint8_t deviceId[4];  // of the chip, where the image tells it
    uint8_t attributes[4];
};
static_assert(sizeof(FirmwareHead) == 40);
static_assert(offsetof(FirmwareHead, length) == 12);
static_assert(offsetof(FirmwareHead, version) == 16);
static_assert(offsetof(FirmwareHead, build) == 28);
static_assert(offsetof(FirmwareHead, deviceId) == 32);
static_assert(offsetof(FirmwareHead, attributes) == 36);

#pragma pack(pop)

// The same places as indexes of words.
inline constexpr uint32_t kSegmentLengthWord = offsetof(FirmwareHead, length) / 4;
inline constexpr uint32_t kVersionWord = offsetof(FirmwareHead, version) / 4;
inline constexpr uint32_t kBuildWord = offsetof(FirmwareHead, build) / 4;
inline constexpr uint32_t kDeviceWord = offsetof(FirmwareHead, deviceId) / 4;
inline constexpr uint32_t kAttributesWord = offsetof(FirmwareHead, attributes) / 4;

enum class FirmwareCheck { Good, BadSegments, BadChecksum };

// Segments must lie within the region and the image.
FirmwareCheck CheckFirmware(Bytes image, size_t regionBytes);

// Big-endian word of an image; 0 beyond its end.
uint32_t FirmwareWord(Bytes image, size_t index);

// Version and build, whatever numbers stand there.
VersionNumbers FirmwareVersion(Bytes image);

}  // namespace formats
