// What the region updates have in common.
#pragma once

#include <cstdint>
#include <span>

#include "flash/layout.h"
#include "hxmgtapi.h"
#include "properties/chip_families.h"

namespace flash {

// Checks handle and image, and tells the chip.
HX_STATUS CheckUpdate(uint32_t handle, const void* image, uint32_t imageSize,
                      HX_CHIP_PROPERTY& chip);

// HXMGT_NO_FLASH_UPDATE_TOKEN when the region needs the update lock and it is not held.
HX_STATUS CheckUpdateToken(uint32_t handle, uint32_t regionCode);

// Loads the layout; HXMGT_INVALID_REQUEST when the region is missing or not as large as the image.
HX_STATUS LoadExactRegion(uint32_t handle, uint32_t regionCode, uint32_t imageSize,
                          RegionTable& table);

}  // namespace flash
