// The regions of a flash, as the driver's layout table tells them.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "flash/flash_records.h"
#include "hxmgtapi.h"
#include "transport/requests.h"

namespace flash {

// A plain layout table for a look-up.
class RegionTable {
  public:
    HX_STATUS Load(uint32_t handle);

    std::span<const HX_FLASH_REGION> Reported() const;
    // All 255 positions; those beyond the reported ones are zero.
    std::span<const HX_FLASH_REGION> All() const { return layout_->regions; }

  private:
    std::unique_ptr<HX_FLASH_LAYOUT> layout_;
};

// Region codes stand in the low 16 bits of an entry.
constexpr bool IsRegion(const HX_FLASH_REGION& region, uint32_t code) {
    return (region.code & 0xFFFF) == code;
}

// Size of the first region with that code.
std::optional<uint32_t> SizeOfRegion(std::span<const HX_FLASH_REGION> regions, uint32_t code);

// Reads the extended table for the driver's sake: it wants it asked for before a secure update.
void AskExtendedLayout(uint32_t handle);

}  // namespace flash
