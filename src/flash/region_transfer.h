// Moving the bytes of one region, 64 KiB at a time.
#pragma once

#include <cstdint>
#include <span>

#include "flash/flash_records.h"
#include "hxmgtapi.h"

namespace flash {

inline constexpr uint32_t WholeKib(uint32_t bytes) {
    return bytes / 1024 + (bytes % 1024 != 0 ? 1 : 0);
}

// Reads a region of size bytes into buffer, which has at least as many. Of a region above 64 KiB
// the last piece comes in whole KiB, as far as the buffer holds them.
HX_STATUS ReadRegion(uint32_t handle, uint32_t regionCode, uint32_t size,
                     std::span<uint8_t> buffer);

// Writes image as the region's contents; beyond 64 KiB the last piece is filled up to a whole KiB
// with zeros.
HX_STATUS WriteRegion(uint32_t handle, uint32_t regionCode, std::span<const uint8_t> image);

}  // namespace flash
