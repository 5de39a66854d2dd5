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

// Reads a region of size bytes. A region above 64 KiB fills buffer up to a whole KiB.
HX_STATUS ReadRegion(uint32_t handle, uint32_t regionCode, uint32_t size, uint8_t* buffer);

// The same into no more than buffer, which has at least size bytes: what a whole last KiB holds
// beyond it is dropped.
HX_STATUS ReadRegionWithin(uint32_t handle, uint32_t regionCode, uint32_t size,
                           std::span<uint8_t> buffer);

// Writes image as the region's contents; beyond 64 KiB the last piece is filled up to a whole KiB
// with zeros.
HX_STATUS WriteRegion(uint32_t handle, uint32_t regionCode, std::span<const uint8_t> image);

}  // namespace flash
