// Reading what came over the wire: nothing is read beyond what is there.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "common/record.h"

namespace vxmgr {

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

template <size_t size>
uint64_t BigEndian(const uint8_t (&bytes)[size]) {
    static_assert(size <= 8);
    uint64_t value = 0;
    for (const uint8_t byte : bytes) {
        value = value << 8 | byte;
    }
    return value;
}

template <size_t size>
void PutBigEndian(uint64_t value, uint8_t (&bytes)[size]) {
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(value >> 8 * (size - 1 - i));
    }
}

template <typename Layout>
Bytes BytesOf(const Layout& layout) {
    return {reinterpret_cast<const uint8_t*>(&layout), sizeof layout};
}

std::string HexDigits(Bytes bytes);

// Sixteen bytes a row: offset, hexadecimal, text.
void AddHexRows(tools::Record& record, const std::string& key, const std::string& label,
                Bytes bytes);

// Hexadecimal digits in pairs, with blanks, ':' or '-' between the bytes; false for anything else.
bool ParseHex(const std::string& text, std::vector<uint8_t>* bytes);

}  // namespace vxmgr
