// The sums that blocks and images are checked with.
#pragma once

#include "formats/bytes.h"

namespace formats {

inline uint8_t ByteSum(Bytes bytes) {
    uint8_t sum = 0;
    for (const uint8_t byte : bytes) {
        sum = static_cast<uint8_t>(sum + byte);
    }
    return sum;
}

// Of the whole 32-bit words.
inline uint32_t LittleEndianWordSum(Bytes bytes) {
    uint32_t sum = 0;
    for (size_t i = 0; i < bytes.size() / sizeof sum * sizeof sum; ++i) {
        sum += static_cast<uint32_t>(bytes[i]) << 8 * (i % sizeof sum);
    }
    return sum;
}

inline uint32_t BigEndianWordSum(Bytes bytes) {
    uint32_t sum = 0;
    for (size_t i = 0; i < bytes.size() / sizeof sum * sizeof sum; ++i) {
        sum += static_cast<uint32_t>(bytes[i]) << 8 * (3 - i % sizeof sum);
    }
    return sum;
}

}  // namespace formats
