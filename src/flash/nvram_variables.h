// NVRAM blocks and their variables. The positions are those of the adapter's NVRAM; names and
// descriptions are what people see. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "formats/nvram_block.h"

namespace flash {

using formats::BlockBytes;
using formats::BlockKind;
using formats::kClassicBlock;
using formats::kExtendedBlock;
using formats::kNvramSignature;

inline constexpr size_t kVariables = 188;

inline constexpr uint32_t kSignatureVariable = 0;
inline constexpr uint32_t kFamilyVariable = 128;  // chip family of a classic block

// Chip families as read-only sets.
inline constexpr uint16_t kFamily1 = 0x001;
inline constexpr uint16_t kFamily2 = 0x010;
inline constexpr uint16_t kFamily9 = 0x100;

inline constexpr uint32_t kNotThere = 0xDEADDEAD;  // no place in the extended block

struct Variable {
    const char* name;  // key in text files; null: none
    const char* description;
    uint16_t word;  // classic block
    uint8_t shift;
    uint8_t width;  // bits; 0: no place
    uint16_t readOnlyFamilies;
    uint32_t extendedOffset;  // byte offset of a 32-bit word, or kNotThere
    uint8_t extendedShift;
    uint8_t extendedWidth;
};
extern const Variable (&kVariableTable)[kVariables];

// Mask of a field of 0 to 32 bits.
constexpr uint32_t MaskOf(uint8_t width) {
    return static_cast<uint32_t>((uint64_t{1} << width) - 1);
}

// Value of a variable; 0 when there is none at that index. The block has BlockBytes(kind) bytes.
uint32_t GetVariable(std::span<const uint8_t> block, BlockKind kind, uint32_t index);

// Stores a value, cut to the variable's width; false when it was there already.
bool SetVariable(std::span<uint8_t> block, BlockKind kind, uint32_t index, uint32_t value);

// Where a variable stands in a block, bit 0 being the lowest of its first byte. Width 0: nowhere.
struct BitPlace {
    uint16_t first;
    uint16_t width;
};
BitPlace PlaceOf(BlockKind kind, uint32_t index);

// True when a variable may not be changed on the family of a classic block.
bool IsReadOnly(std::span<const uint8_t> classicBlock, uint32_t index);

}  // namespace flash
