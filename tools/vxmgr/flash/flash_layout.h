// The flash of an adapter: its regions, and moving the bytes of one.
#pragma once

#include "vxmgr/app/inventory.h"
#include "vxmgr/flash/flash_regions.h"

namespace vxmgr {

struct FlashRegion {
    uint32_t code = 0;
    uint8_t flags = 0;
    uint32_t size = 0;
    std::optional<uint32_t> start{};  // empty: the driver does not tell

    std::string Key() const { return RegionKey(code); }
    std::string Name() const { return RegionName(code); }
};

struct FlashLayout {
    std::vector<FlashRegion> regions;
    bool whole = false;  // a chip without regions: the one here stands for all of its flash

    const FlashRegion* Find(uint32_t code) const;  // the first one; null when there is none
};

HX_STATUS QueryFlashLayout(uint32_t handle, FlashLayout* layout);

// Ends the command when the adapter does not tell.
FlashLayout ReadFlashLayout(Invocation& invocation, const Port& port, uint32_t handle);

// The region that a text of the command line means; ends the command when there is none.
const FlashRegion& GivenRegion(Invocation& invocation, const FlashLayout& layout,
                               const std::string& text);

HX_STATUS ReadRegion(uint32_t handle, const FlashLayout& layout, const FlashRegion& region,
                     std::vector<uint8_t>* bytes);

// Writes a region. The library may change the image: boot code gets the adapter's own identity.
HX_STATUS WriteRegion(uint32_t handle, const FlashLayout& layout, const FlashRegion& region,
                      std::vector<uint8_t>& image);

}  // namespace vxmgr
