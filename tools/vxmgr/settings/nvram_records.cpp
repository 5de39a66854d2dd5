#include "vxmgr/settings/nvram_records.h"

#include "common/text.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Value;

constexpr uint32_t kSignatureVariable = 0;
constexpr size_t kNameBytes = 8;

bool IsNameByte(const NvramVariable& variable) {
    return variable.description.find("Name Byte") != std::string::npos;
}

Record ChangeRow(tools::Invocation& invocation, const NvramChange& change,
                 const DifferenceHeadings& headings) {
    const NvramVariable& variable = *change.variable;
    Record row;
    row.Add("number", "Number", Value::Number(variable.number), "NUMBER");
    row.Add("name", "Name", Value::Text(variable.name), "NAME");
    row.Add(headings.beforeKey, headings.before, VariableValue(invocation, variable, change.before),
            tools::Uppercase(headings.before));
    row.Add(headings.afterKey, headings.after, VariableValue(invocation, variable, change.after),
            tools::Uppercase(headings.after));
    return row;
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

Value VariableValue(tools::Invocation& invocation, const NvramVariable& variable, uint32_t value) {
    if (!variable.field || (invocation.Names().Enabled() && IsNameByte(variable))) {
        return {};
    }
    return Value::Number(value).Shown(ShownValue(variable, value));
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

void AddDifference(tools::Invocation& invocation, const NvramDifference& difference,
                   const DifferenceHeadings& headings, const char* emptyText) {
    static const NvramVariable kNone;
    std::vector<Record> rows;
    for (const NvramChange& change : difference.changes) {
        rows.push_back(ChangeRow(invocation, change, headings));
    }
    Record& result = invocation.Result();
    result.AddList("changes", "Changes", tools::ListLayout::Table,
                   ChangeRow(invocation, {&kNone, 0, 0}, headings), emptyText, std::move(rows));
    result.Add("other_bytes", "Other bytes that differ", Value::Number(difference.otherBytes));
}

}  // namespace vxmgr
