// A region of the flash as a place to be written: how, and what to say when it goes wrong.
#pragma once

#include <string>
#include <vector>

#include "vxmgr/flash/flash_layout.h"
#include "vxmgr/update/update_adapter.h"
#include "vxmgr/update/update_write.h"

namespace vxmgr {

// before: what the region holds; empty: not known. The layout has to live until it is written.
PlaceWrite RegionWrite(const AdapterSession& session, const FlashLayout& layout,
                       const FlashRegion& region, std::vector<uint8_t> image,
                       std::vector<uint8_t> before);

// Whether the adapter looks at a whole image of the region before it takes effect, where it demands
// that.
inline bool IsStaged(const FlashRegion& region) {
    return (region.flags & HX_REGION_FLAG_SECURE) != 0;
}
// What a power cut in the middle of its write leaves.
std::string HarmOfPowerCut(const FlashRegion& region);

}  // namespace vxmgr
