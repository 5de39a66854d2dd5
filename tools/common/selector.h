// What -a and -p take: "serial:TEXT", "wwn:...", "index:N", "scsi:N", "all", a bare number (an
// index) or bare text that is exactly one world wide name or serial number.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "records/wwn.h"

namespace tools {

enum class SelectorKind : uint8_t { All, Index, Scsi, Serial, Wwn, Bare };

struct Selector {
    SelectorKind kind = SelectorKind::All;
    uint32_t number = 0;      // Index, Scsi
    bool bareNumber = false;  // an index without "index:": too easily mistyped for risk 3
    std::string text;         // Serial, Bare
    Wwn wwn;
};

// What an object is known by.
struct Identity {
    uint32_t index = 0;
    std::vector<uint32_t> scsiPorts;
    std::string serial;  // empty: none, or not known
    std::vector<Wwn> names;
};

// False with a sentence in *error when the text is no selector.
bool ParseSelector(std::string_view text, Selector* selector, std::string* error);

bool Matches(const Selector& selector, const Identity& identity);

// The positions of the identities that match, in order.
std::vector<size_t> Select(const Selector& selector, std::span<const Identity> identities);

}  // namespace tools
