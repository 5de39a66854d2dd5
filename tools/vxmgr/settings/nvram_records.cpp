#include "vxmgr/settings/nvram_records.h"

#include "common/text.h"

namespace vxmgr {
namespace {

using tools::kInteger;
using tools::kText;
using tools::Value;

constexpr size_t kNameBytes = 8;
constexpr char kMaskedNote[] = "null: a byte of a name, left out with --redact";

Value VariableValue(const NvramVariable& variable, uint32_t value) {
    return !variable.field || variable.masked
               ? Value()
               : Value::Number(value).Shown(ShownValue(variable, value));
}

struct SideNames {
    const char* key;
    const char* label;
    const char* column;
};

// Both sides of a change, under names that say what they are.
tools::Fields<NvramChange> SideFields(SideNames before, SideNames after) {
    using Change = NvramChange;
    return {
        {"number", "Number", "NUMBER", kInteger,
         [](const Change& change) { return change.variable->number; }},
        {"name", "Name", "NAME", kText, [](const Change& change) { return change.variable->name; }},
        {before.key, before.label, before.column, kInteger.OrNull(),
         [](const Change& change) { return VariableValue(*change.variable, change.before); },
         kMaskedNote},
        {after.key, after.label, after.column, kInteger.OrNull(),
         [](const Change& change) { return VariableValue(*change.variable, change.after); },
         kMaskedNote},
    };
}

tools::Fields<NvramDifference> DifferenceFields(const tools::Fields<NvramChange>& sides,
                                                const char* emptyText) {
    return {
        {"changes", "Changes", sides, &NvramDifference::changes, tools::ListLayout::Table,
         emptyText},
        {"other_bytes", "Other bytes that differ", kInteger, &NvramDifference::otherBytes,
         "bytes that differ outside all variables"},
    };
}

}  // namespace

std::string ShownValue(const NvramVariable& variable, uint32_t value) {
    if (variable.number != kSignatureVariable) {
        return std::to_string(value);
    }
    char text[sizeof value];
    for (size_t i = 0; i < sizeof text; ++i) {
        text[i] = static_cast<char>(value >> 8 * i);
    }
    return "\"" + tools::FieldText(text, sizeof text) + "\"";
}

const tools::Fields<VariableRow>& VariableFields() {
    using Row = VariableRow;
    static const tools::Fields<Row> kFields = {
        {"number", "Number", "NUMBER", kInteger,
         [](const Row& row) { return row.variable->number; }},
        {"name", "Name", "NAME", kText, [](const Row& row) { return row.variable->name; }},
        {"value", "Value", "VALUE", kInteger.OrNull(),
         [](const Row& row) { return VariableValue(*row.variable, row.value); }, kMaskedNote},
        {"highest", "Highest", "HIGHEST", kInteger,
         [](const Row& row) { return row.variable->Most(); }},
        {"read_only", "Read-only", "READ-ONLY", tools::kFlag,
         [](const Row& row) { return !row.variable->Settable(); }},
        {"description", "Description", "DESCRIPTION", kText,
         [](const Row& row) { return row.variable->description; }},
    };
    return kFields;
}

std::optional<tools::Wwn> NameInBlock(const NvramMap& map, Bytes block, const char* description) {
    tools::Wwn name{};
    size_t found = 0;
    for (const NvramVariable& variable : map.variables) {
        if (variable.field && variable.description.starts_with(description) && found < kNameBytes) {
            name.bytes[found++] = static_cast<uint8_t>(ValueOf(block, variable));
        }
    }
    return found == kNameBytes ? std::optional(name) : std::nullopt;
}

const tools::Fields<NvramDifference>& ChangeFields() {
    static const auto kSides =
        SideFields({"before", "Before", "BEFORE"}, {"after", "After", "AFTER"});
    static const auto kFields = DifferenceFields(kSides, "no variable changes");
    return kFields;
}

const tools::Fields<NvramDifference>& FileDiffFields() {
    static const auto kSides =
        SideFields({"adapter", "Adapter", "ADAPTER"}, {"file", "File", "FILE"});
    static const auto kFields = DifferenceFields(kSides, "no variable differs");
    return kFields;
}

}  // namespace vxmgr
