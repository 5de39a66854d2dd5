// Bytes that came over the wire, and their hexadecimal digits.
#pragma once

#include "formats/bytes.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

using formats::BigEndian;
using formats::Bytes;
using formats::BytesOf;
using formats::Holds;
using formats::Padded;
using formats::Part;
using formats::PutBigEndian;

// A port identifier: three bytes of a record, and the number that people write.
inline uint32_t PortIdOf(const uint8_t (&bytes)[3]) {
    return static_cast<uint32_t>(BigEndian(bytes));
}
inline void SetPortId(uint32_t id, uint8_t (&bytes)[3]) {
    PutBigEndian(id, bytes);
}

std::string HexDigits(Bytes bytes);

// Sixteen bytes a row: offset, hexadecimal, text.
struct HexRow {
    size_t offset;
    std::vector<uint8_t> bytes;
};
extern const Fields<HexRow> kHexRowFields;
std::vector<HexRow> HexRowsOf(Bytes bytes);

// Hexadecimal digits in pairs, with blanks, ':' or '-' between the bytes; false for anything else.
bool ParseHex(const std::string& text, std::vector<uint8_t>* bytes);

}  // namespace vxmgr
