// The variables of an NVRAM block: where they stand, what they are called, and how blocks differ.
// Free of platform headers.
#pragma once

#include <span>

#include "vxmgr/settings/nvram_block.h"

namespace vxmgr {

// Bits of a block, the first bit of its first byte being 0.
struct BitField {
    uint32_t first = 0;
    uint32_t width = 0;
};

enum class NvramRole : uint8_t {
    Plain,
    Fixed,     // signature and checksum: made, never set
    Identity,  // whose block it is: names and board
};

inline constexpr uint32_t kSignatureVariable = 0;  // the number of the one that holds a text

struct NvramVariable {
    uint32_t number = 0;
    std::string description;  // the library's
    std::string name;         // the description in lower case, joined with '_'
    NvramRole role = NvramRole::Plain;
    bool readOnly = false;          // on the chip family of the block at hand
    bool masked = false;            // a byte of a name, which --redact keeps back
    std::optional<BitField> field;  // empty: this chip has no such variable

    bool Settable() const { return field && !readOnly && role != NvramRole::Fixed; }
    uint32_t Most() const;  // highest value
};

// The variable of a number and the library's text for it; nothing for one without a meaning.
std::optional<NvramVariable> DescribedVariable(uint32_t number, const char* description);

struct NvramMap {
    NvramKind kind = NvramKind::Classic;
    std::vector<NvramVariable> variables;  // those with a meaning, by number

    const NvramVariable* WithNumber(uint64_t number) const;
};

// What a text names: a number, a name, a description, or the start of exactly one of these. Null
// with a sentence in *error otherwise.
const NvramVariable* FindVariable(const NvramMap& map, std::string_view text, std::string* error);

// 0 when the chip has no such variable.
uint32_t ValueOf(Bytes block, const NvramVariable& variable);
void SetValue(std::span<uint8_t> block, const NvramVariable& variable, uint32_t value);

// "NAME=VALUE".
struct NvramSetting {
    const NvramVariable* variable = nullptr;
    uint32_t value = 0;
};
enum class SettingFault : uint8_t { None, Usage, NotSupported, Refused };
SettingFault ParseSetting(const NvramMap& map, std::string_view text, NvramSetting* setting,
                          std::string* error);

struct NvramChange {
    const NvramVariable* variable = nullptr;
    uint32_t before = 0;
    uint32_t after = 0;
};
struct NvramDifference {
    std::vector<NvramChange> changes;  // without the checksum
    size_t otherBytes = 0;             // that differ outside all variables

    bool Equal() const { return changes.empty() && otherBytes == 0; }
};
NvramDifference DifferenceOf(const NvramMap& map, Bytes before, Bytes after);

}  // namespace vxmgr
