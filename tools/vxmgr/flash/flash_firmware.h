// A firmware image: two segments of big-endian words, each of which adds up to 0.
#pragma once

#include "formats/firmware_image.h"
#include "vxmgr/app/bytes.h"
#include "vxmgr/flash/flash_rom.h"

namespace vxmgr {

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
