// What an update of boot code carries over from the adapter. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace flash {

// Carries the adapter's subsystem vendor ID and NVRAM block over from its current flash into a
// whole flash image. An image that was changed gets its checksum; false when it cannot have one.
bool CarryOverIdentity(std::span<uint8_t> image, std::span<const uint8_t> current);

// The same for boot code: for the first BIOS image of the chain, and for the image behind it when
// that has a place for both. Chains without a BIOS image are left as they are.
bool CarryOverBootIdentity(std::span<uint8_t> image, std::span<const uint8_t> current,
                           size_t nvramBytes);

}  // namespace flash
