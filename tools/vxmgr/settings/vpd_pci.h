// Vital product data as PCI Local Bus 2.2 has it: resource tags, and keywords within them. Free of
// platform headers.
#pragma once

#include "vxmgr/app/bytes.h"

namespace vxmgr {

enum class VpdSection : uint8_t { Identifier, ReadOnly, Writable };
inline constexpr const char* kVpdSections[] = {"identifier", "read_only", "writable"};

struct VpdItem {
    VpdSection section = VpdSection::Identifier;
    std::string keyword;  // two characters; empty for the identifier
    size_t offset = 0;    // of the data
    Bytes data;

    bool IsText() const;
    std::string Shown() const;  // the text without trailing blanks, or hexadecimal digits
};
std::string VpdKeywordText(std::string_view keyword);  // "serial number"

// data of the items points into the bytes that were decoded.
struct PciVpd {
    std::vector<VpdItem> items;
    std::vector<std::string> faults;    // what is wrong with structure or checksum; empty: sound
    size_t used = 0;                    // bytes up to the end tag, with it
    std::optional<bool> checksumHolds;  // empty: there is none

    // The text under a keyword of the read-only section; empty when there is none.
    std::string Text(std::string_view keyword) const;
    std::string Identifier() const;
};

PciVpd DecodeVpd(Bytes bytes);

}  // namespace vxmgr
