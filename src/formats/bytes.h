// Reading and writing records in bytes that came from elsewhere: nothing is read beyond what is
// there.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace formats {

using Bytes = std::span<const uint8_t>;

// As much of the part as there is.
inline Bytes Part(Bytes bytes, size_t offset, size_t length = SIZE_MAX) {
    const size_t start = std::min(offset, bytes.size());
    return bytes.subspan(start, std::min(length, bytes.size() - start));
}

// The record at the start of the bytes; what is not there is zero.
template <typename Layout>
Layout Padded(Bytes bytes) {
    Layout layout{};
    const size_t size = std::min(sizeof layout, bytes.size());
    if (size != 0) {
        std::memcpy(&layout, bytes.data(), size);
    }
    return layout;
}

// Whether a whole record stands at an offset.
template <typename Layout>
bool Holds(Bytes bytes, size_t offset) {
    return offset <= bytes.size() && bytes.size() - offset >= sizeof(Layout);
}

template <typename Layout>
Bytes BytesOf(const Layout& layout) {
    return {reinterpret_cast<const uint8_t*>(&layout), sizeof layout};
}

// A big-endian number of up to eight bytes.
inline uint64_t BigEndian(const uint8_t* bytes, size_t size) {
    uint64_t value = 0;
    for (size_t at = 0; at < size; ++at) {
        value = value << 8 | bytes[at];
    }
    return value;
}

template <size_t size>
uint64_t BigEndian(const uint8_t (&bytes)[size]) {
    static_assert(size <= 8);
    return BigEndian(bytes, size);
}

template <size_t size>
void PutBigEndian(uint64_t value, uint8_t (&bytes)[size]) {
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(value >> 8 * (size - 1 - i));
    }
}

}  // namespace formats
