#include "vxmgr/app/bytes.h"

#include "common/text.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Value;

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

Record HexRow(size_t offset, Bytes bytes) {
    Record row;
    row.Add("offset", "Offset", Value::Text(tools::Hex(offset, 4)), "OFFSET");
    row.Add("hex", "Bytes", Value::Text(PairsOf(bytes)), "BYTES", 3 * kRowBytes - 1);
    row.Add("text", "Text", Value::Text(Printable(bytes)), "TEXT");
    return row;
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

void AddHexRows(Record& record, const std::string& key, const std::string& label, Bytes bytes) {
    std::vector<Record> rows;
    for (size_t offset = 0; offset < bytes.size(); offset += kRowBytes) {
        rows.push_back(HexRow(offset, Part(bytes, offset, kRowBytes)));
    }
    record.AddList(key, label, tools::ListLayout::Table, HexRow(0, {}), "no data", std::move(rows));
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
