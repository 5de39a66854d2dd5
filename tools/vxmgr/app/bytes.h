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

std::string HexDigits(Bytes bytes);

// Sixteen bytes a row: offset, hexadecimal, text.
struct HexRow {
    size_t offset;
    std::vector<uint8_t> bytes;
};
const Fields<HexRow>& HexRowFields();
std::vector<HexRow> HexRowsOf(Bytes bytes);

void AddHexRows(Record& record, const std::string& key, const std::string& label, Bytes bytes);

// Hexadecimal digits in pairs, with blanks, ':' or '-' between the bytes; false for anything else.
bool ParseHex(const std::string& text, std::vector<uint8_t>* bytes);

}  // namespace vxmgr
