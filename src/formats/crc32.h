// CRC-32 as Ethernet has it (IEEE 802.3), which images are announced with. Free of platform
// headers.
#pragma once

#include <cstdint>
#include <span>

namespace flash {

constexpr uint32_t Crc32(std::span<const uint8_t> bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        }
    }
    return ~crc;
}

}  // namespace flash
