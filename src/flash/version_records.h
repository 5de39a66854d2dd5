// The version records that an adapter keeps of its boot code and firmware.
#pragma once

#include <cstdint>
#include <span>

#include "hxmgtapi.h"

namespace flash {

// Records what an image that was written to a region brought. Every record is tried; the first
// failure is returned.
HX_STATUS RecordVersions(uint32_t handle, uint32_t regionCode, std::span<const uint8_t> image);

}  // namespace flash
