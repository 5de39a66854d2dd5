// Fields in request and reply bytes.
#pragma once

#include "machine/scripted_port.h"

namespace support {

// A reply in which every byte counts; the value is of another period than any record's size.
inline Bytes Patterned(uint32_t length) {
    Bytes bytes(length);
    for (uint32_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<uint8_t>(1 + i % 251);
    }
    return bytes;
}

inline Bytes Part(const Bytes& bytes, size_t from, size_t count) {
    return Bytes(bytes.begin() + static_cast<ptrdiff_t>(from),
                 bytes.begin() + static_cast<ptrdiff_t>(from + count));
}

inline uint32_t Word32(const Bytes& bytes, size_t offset) {
    uint32_t value;
    memcpy(&value, &bytes[offset], sizeof value);
    return value;
}

inline void Put16(Bytes& bytes, size_t offset, uint16_t value) {
    memcpy(&bytes[offset], &value, sizeof value);
}

inline void Put32(Bytes& bytes, size_t offset, uint32_t value) {
    memcpy(&bytes[offset], &value, sizeof value);
}

}  // namespace support
