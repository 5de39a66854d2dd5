// CRC-32 as Ethernet has it (IEEE 802.3), which images are announced with.
#pragma once

#include <array>

#include "formats/bytes.h"

namespace formats {

inline constexpr std::array<uint32_t, 256> kCrc32Table = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t i = 0; i < table.size(); ++i) {
        uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320u : 0);
        }
        table[i] = value;
    }
    return table;
}();

// The remainder after more bytes, neither inverted before nor after.
constexpr uint32_t Crc32Remainder(uint32_t remainder, Bytes bytes) {
    for (const uint8_t byte : bytes) {
        remainder = kCrc32Table[(remainder ^ byte) & 0xFF] ^ (remainder >> 8);
    }
    return remainder;
}

constexpr uint32_t Crc32(Bytes bytes) {
    return ~Crc32Remainder(0xFFFFFFFF, bytes);
}

}  // namespace formats
