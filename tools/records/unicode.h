// Characters beyond ASCII, as far as tools that print names of others have to know them.
#pragma once

#include <cstddef>
#include <string_view>

namespace tools {

inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

// Takes the first character off UTF-8 text that is not empty. A byte that begins no valid sequence
// goes alone, as kNoCharacter.
char32_t TakeCharacter(std::string_view& text);

// Cells of a console's line: 0 for marks on the letter before, 2 for wide letters.
size_t CellsOf(char32_t character);

// Whether it shows itself and nothing else: no control character, nothing that turns the direction
// of the text or has no shape.
bool IsPrintable(char32_t character);

}  // namespace tools
