// The regions of a flash by code: how they are called and what they hold. One table.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

enum class RegionKind : uint8_t { Data, BootCode, Firmware, Nvram, Vpd };

struct RegionRow {
    uint16_t code;
    const char* key;   // as the command line and documents have it
    const char* name;  // in words
    RegionKind kind;
    bool restarts = false;  // the library restarts the firmware of all ports behind an update
};

// Stands for the whole flash of a chip that has no regions.
inline constexpr uint32_t kWholeFlash = 255;

// A code without a row is a region of plain data, "region-158".
RegionKind RegionKindOf(uint32_t code);
std::string RegionKey(uint32_t code);
std::string RegionName(uint32_t code);
bool RestartsPorts(uint32_t code);

// Whether a text of the command line means the region: its key in any letter case, or its code.
bool MeansRegion(std::string_view text, uint32_t code);

}  // namespace vxmgr
