// A firmware image: two segments of big-endian words, each of which adds up to 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "vxmgr/app/bytes.h"
#include "vxmgr/flash/flash_rom.h"

namespace vxmgr {

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
static_assert(offsetof(FirmwareHead, deviceId) == 32);

#pragma pack(pop)

struct FirmwareSegment {
    size_t offset = 0;
    size_t length = 0;
    Sum checksum = Sum::Bad;
};

struct FirmwareImage {
    std::string version;               // "9.12.01", or "9.12.01.20"
    std::optional<uint16_t> deviceId;  // empty: the image does not tell
    FirmwareSegment segments[2];
    std::string problem;  // why it is no whole image; empty: it is one
};

// Whether the bytes begin as firmware does: with a plausible length and version.
bool BeginsFirmware(Bytes bytes);
FirmwareImage DecodeFirmware(Bytes bytes);

}  // namespace vxmgr
