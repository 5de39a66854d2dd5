#include "unicode.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace tools {
namespace {

struct CharacterRange {
    char32_t first, last;
};

// Marks that stand on the letter before.
constexpr CharacterRange kMarks[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A}, {0x064B, 0x065F},
    {0x0670, 0x0670}, {0x06D6, 0x06DC}, {0x0900, 0x0902}, {0x093C, 0x093C}, {0x0941, 0x0948},
    {0x094D, 0x094D}, {0x0E31, 0x0E31}, {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},
    {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF},
};

// East Asian wide and full-width letters, and pictures.
constexpr CharacterRange kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6},   {0x17000, 0x18CFF}, {0x1B000, 0x1B2FF}, {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF}, {0x1F900, 0x1FAFF}, {0x20000, 0x3FFFD},
};

// C0, DEL, C1; soft hyphen and Arabic letter mark; invisible and turning characters; line ends;
// the byte order mark and its company; tags.
constexpr CharacterRange kUnprintable[] = {
    {0x0000, 0x001F},   {0x007F, 0x009F},         {0x00AD, 0x00AD}, {0x061C, 0x061C},
    {0x180E, 0x180E},   {0x200B, 0x200F},         {0x2028, 0x202E}, {0x2060, 0x206F},
    {0xFEFF, 0xFEFF},   {0xFFF0, 0xFFFB},         {0xFFFE, 0xFFFF}, {0xD800, 0xDFFF},
    {0xE0000, 0xE007F}, {0x110000, kNoCharacter},
};

template <size_t ranges>
bool IsIn(const CharacterRange (&table)[ranges], char32_t character) {
    return std::any_of(std::begin(table), std::end(table), [character](CharacterRange range) {
        return character >= range.first && character <= range.last;
    });
}

}  // namespace

char32_t TakeCharacter(std::string_view& text) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t lead = byte(0);
    const size_t length = lead < 0x80                    ? 1
                          : lead >= 0xC2 && lead <= 0xDF ? 2
                          : lead >= 0xE0 && lead <= 0xEF ? 3
                          : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                         : 0;
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};  // of a sequence of this length
    constexpr uint8_t kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = lead & kLeadBits[length];
    bool valid = length != 0 && length <= text.size();
    for (size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xC0) == 0x80;
        character = character << 6 | (byte(i) & 0x3F);
    }
    valid = valid && character >= kLeast[length] && character <= 0x10FFFF &&
            (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(valid ? length : 1);
    return valid ? character : kNoCharacter;
}

size_t CellsOf(char32_t character) {
    return IsIn(kMarks, character) ? 0 : IsIn(kWide, character) ? 2 : 1;
}

bool IsPrintable(char32_t character) {
    return !IsIn(kUnprintable, character);
}

}  // namespace tools
