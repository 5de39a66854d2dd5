// Codes of protocols and their words.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

struct CodeText {
    uint32_t code;
    const char* text;
};

template <size_t rows>
std::string TextOfCode(const CodeText (&table)[rows], uint32_t code, const std::string& otherwise) {
    for (const CodeText& row : table) {
        if (row.code == code) {
            return row.text;
        }
    }
    return otherwise;
}

// The text, or what the code is and its number: "reason 0x42".
template <size_t rows>
std::string TextOrNumber(const CodeText (&table)[rows], uint32_t code, const char* what) {
    return TextOfCode(table, code, std::string(what) + " " + Hex(code, 2));
}

// The name of a small number; null for one that has none.
template <size_t names>
constexpr const char* NameAt(const char* const (&table)[names], size_t number, size_t first = 0) {
    return number >= first && number - first < names ? table[number - first] : nullptr;
}

}  // namespace vxmgr
