#include "vxmgr/settings/nvram_records.h"

namespace vxmgr {
namespace {

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
Fields<NvramChange> SideFields(SideNames before, SideNames after) {
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

Fields<NvramDifference> DifferenceFields(const Fields<NvramChange>& sides, const char* emptyText) {
    return {
        {"changes", "Changes", sides, &NvramDifference::changes, emptyText},
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
    return "\"" + FieldText(text, sizeof text) + "\"";
}

const Fields<VariableRow> kVariableFields = {
    {"number", "Number", "NUMBER", kInteger,
     [](const VariableRow& row) { return row.variable->number; }},
    {"name", "Name", "NAME", kText, [](const VariableRow& row) { return row.variable->name; }},
    {"value", "Value", "VALUE", kInteger.OrNull(),
     [](const VariableRow& row) { return VariableValue(*row.variable, row.value); }, kMaskedNote},
    {"highest", "Highest", "HIGHEST", kInteger,
     [](const VariableRow& row) { return row.variable->Most(); }},
    {"read_only", "Read-only", "READ-ONLY", kFlag,
     [](const VariableRow& row) { return !row.variable->Settable(); }},
    {"description", "Description", "DESCRIPTION", kText,
     [](const VariableRow& row) { return row.variable->description; }},
};

std::optional<Wwn> NameInBlock(const NvramMap& map, Bytes block, const char* description) {
    Wwn name{};
    size_t found = 0;
    for (const NvramVariable& variable : map.variables) {
        if (variable.field && variable.description.starts_with(description) && found < kNameBytes) {
            name.bytes[found++] = static_cast<uint8_t>(ValueOf(block, variable));
        }
    }
    return found == kNameBytes ? std::optional(name) : std::nullopt;
}

const auto kChangeSides = SideFields({"before", "Before", "BEFORE"}, {"after", "After", "AFTER"});
const Fields<NvramDifference> kChangeFields = DifferenceFields(kChangeSides, "no variable changes");

const auto kFileSides = SideFields({"adapter", "Adapter", "ADAPTER"}, {"file", "File", "FILE"});
const Fields<NvramDifference> kFileDiffFields = DifferenceFields(kFileSides, "no variable differs");

}  // namespace vxmgr
