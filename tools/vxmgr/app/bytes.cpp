#include "vxmgr/app/bytes.h"

namespace vxmgr {
namespace {

constexpr size_t kRowBytes = 16;

std::string PairsOf(Bytes bytes) {
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        text += (i == 0 ? "" : " ") + HexDigits(Part(bytes, i, 1));
    }
    return text;
}

std::string Printable(Bytes bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        text += byte >= ' ' && byte <= '~' ? static_cast<char>(byte) : '.';
    }
    return text;
}

int DigitOf(char letter) {
    const size_t digit = std::string("0123456789abcdefABCDEF").find(letter);
    if (digit == std::string::npos) {
        return -1;
    }
    return static_cast<int>(digit < 16 ? digit : digit - 6);
}

}  // namespace

std::string HexDigits(Bytes bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

const Fields<HexRow> kHexRowFields = {
    {"offset", "Offset", "OFFSET", Hexadecimal(4), &HexRow::offset},
    {"hex", "Bytes", "BYTES", kText, [](const HexRow& row) { return PairsOf(row.bytes); }, "",
     3 * kRowBytes - 1},
    {"text", "Text", "TEXT", kText, [](const HexRow& row) { return Printable(row.bytes); }},
};

std::vector<HexRow> HexRowsOf(Bytes bytes) {
    std::vector<HexRow> rows;
    for (size_t offset = 0; offset < bytes.size(); offset += kRowBytes) {
        const Bytes part = Part(bytes, offset, kRowBytes);
        rows.push_back({offset, {part.begin(), part.end()}});
    }
    return rows;
}

bool ParseHex(const std::string& text, std::vector<uint8_t>* bytes) {
    bytes->clear();
    int high = -1;
    for (const char letter : text) {
        const int digit = DigitOf(letter);
        if (digit >= 0) {
            if (high >= 0) {
                bytes->push_back(static_cast<uint8_t>(high << 4 | digit));
            }
            high = high >= 0 ? -1 : digit;
        } else if (high >= 0 || (letter != ' ' && letter != ':' && letter != '-')) {
            return false;
        }
    }
    return high < 0 && !bytes->empty();
}

}  // namespace vxmgr
