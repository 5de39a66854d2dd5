// Small helpers over bytes and texts of fixed fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vxemu {

// Copies a text into a field of size bytes: cut so that a terminator fits, the rest zero.
void CopyText(char* field, size_t size, const char* text);

template <size_t size>
void CopyText(char (&field)[size], const char* text) {
    CopyText(field, size, text);
}

// Copies a text into a field that need not hold a terminator; the rest zero.
template <size_t size>
void CopyOpenText(char (&field)[size], const char* text) {
    size_t length = std::strlen(text);
    std::memset(field, 0, size);
    std::memcpy(field, text, length < size ? length : size);
}

// The same, the rest blank.
template <size_t size>
void CopyPadded(char (&field)[size], const char* text) {
    const size_t length = std::strlen(text);
    std::memset(field, ' ', size);
    std::memcpy(field, text, length < size ? length : size);
}

// Whether a field of size bytes holds a terminated text of printable ASCII characters.
bool IsText(const char* field, size_t size);

// Takes one element out; those behind it move up.
template <typename Record>
void CloseGap(Record* records, uint32_t& count, uint32_t index) {
    --count;
    std::memmove(static_cast<void*>(records + index), records + index + 1,
                 (count - index) * sizeof *records);
    std::memset(static_cast<void*>(records + count), 0, sizeof *records);
}

bool SameText(const char* left, const char* right);
bool StartsWith(const char* text, const char* prefix);
bool Contains(const char* text, const char* part);

}  // namespace vxemu
