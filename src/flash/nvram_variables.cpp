#include "flash/nvram_variables.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace flash {
namespace {

// Families by the value of kFamilyVariable; higher values count as the last.
constexpr uint16_t kFamilies[] = {0, kFamily1, kFamily2, 0, 0, 0, 0, 0, 0, kFamily9};
constexpr uint32_t kLastFamily = 9;
static_assert(sizeof kFamilies / sizeof kFamilies[0] == kLastFamily + 1);

// Where a field stands: bytes of the word that holds it, and the bits within.
struct Field {
    size_t offset;
    size_t wordBytes;
    uint8_t shift;
    uint32_t mask;
};

// Nothing for a variable without a place in the block.
std::optional<Field> FieldOf(BlockKind kind, uint32_t index) {
    if (index >= kVariables) {
        return std::nullopt;
    }
    const Variable& variable = kVariableTable[index];
    if (kind == BlockKind::Extended) {
        return variable.extendedOffset != kNotThere
                   ? std::optional<Field>({variable.extendedOffset, sizeof(uint32_t),
                                           variable.extendedShift, MaskOf(variable.extendedWidth)})
                   : std::nullopt;
    }
    if (variable.width == 0) {
        return std::nullopt;
    }
    const size_t wordBytes = variable.width > 16 ? sizeof(uint32_t) : sizeof(uint16_t);
    return Field{variable.word * sizeof(uint16_t), wordBytes, variable.shift,
                 MaskOf(variable.width)};
}

uint32_t WordAt(std::span<const uint8_t> block, const Field& field) {
    uint32_t word = 0;
    std::memcpy(&word, block.data() + field.offset, field.wordBytes);
    return word;
}

}  // namespace

uint32_t GetVariable(std::span<const uint8_t> block, BlockKind kind, uint32_t index) {
    const std::optional<Field> field = FieldOf(kind, index);
    return field ? (WordAt(block, *field) >> field->shift) & field->mask : 0;
}

bool SetVariable(std::span<uint8_t> block, BlockKind kind, uint32_t index, uint32_t value) {
    const std::optional<Field> field = FieldOf(kind, index);
    // The value is compared as given, not as it will be stored: intended.
    if (!field || GetVariable(block, kind, index) == value) {
        return false;
    }
    const uint32_t cleared = WordAt(block, *field) & ~(field->mask << field->shift);
    const uint32_t word = cleared | ((value & field->mask) << field->shift);
    std::memcpy(block.data() + field->offset, &word, field->wordBytes);
    return true;
}

BitPlace PlaceOf(BlockKind kind, uint32_t index) {
    const std::optional<Field> field = FieldOf(kind, index);
    return field ? BitPlace{static_cast<uint16_t>(field->offset * 8 + field->shift),
                            static_cast<uint16_t>(std::bit_width(field->mask))}
                 : BitPlace{};
}

bool IsReadOnly(std::span<const uint8_t> classicBlock, uint32_t index) {
    if (index >= kVariables) {
        return false;
    }
    const uint32_t family =
        std::min(GetVariable(classicBlock, BlockKind::Classic, kFamilyVariable), kLastFamily);
    return (kVariableTable[index].readOnlyFamilies & kFamilies[family]) != 0;
}

}  // namespace flash
