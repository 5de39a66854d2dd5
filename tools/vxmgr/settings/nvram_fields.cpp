#include "vxmgr/settings/nvram_fields.h"

#include <algorithm>

namespace vxmgr {
namespace {

constexpr std::string_view kReserved = "Reserved";
constexpr size_t kNamesInError = 5;

// Variables that are more than a setting, by how their description begins.
struct RoleRow {
    std::string_view begin;
    NvramRole role;
};
constexpr RoleRow kRoles[] = {
    {"Checksum", NvramRole::Fixed},
    {"Port Name Byte", NvramRole::Identity},
    {"Node Name Byte", NvramRole::Identity},
    {"Subsystem", NvramRole::Identity},
    {"Second Subsystem", NvramRole::Identity},
    {"Adapter Family", NvramRole::Identity},
};

NvramRole RoleOf(uint32_t number, std::string_view description) {
    if (number == kSignatureVariable) {
        return NvramRole::Fixed;
    }
    for (const RoleRow& row : kRoles) {
        if (description.starts_with(row.begin)) {
            return row.role;
        }
    }
    return NvramRole::Plain;
}

std::string NameFrom(std::string_view description) {
    std::string name;
    for (const char letter : Lowercase(description)) {
        const bool plain = (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
        if (plain) {
            name += letter;
        } else if (!name.empty() && name.back() != '_') {
            name += '_';
        }
    }
    while (name.ends_with('_')) {
        name.pop_back();
    }
    return name;
}

bool BitAt(Bytes block, size_t bit) {
    return bit / 8 < block.size() && (block[bit / 8] >> bit % 8 & 1) != 0;
}

void ClearBit(std::span<uint8_t> block, size_t bit) {
    if (bit / 8 < block.size()) {
        block[bit / 8] = static_cast<uint8_t>(block[bit / 8] & ~(1u << bit % 8));
    }
}

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

}  // namespace

uint32_t NvramVariable::Most() const {
    return field ? static_cast<uint32_t>((uint64_t{1} << field->width) - 1) : 0;
}

std::optional<NvramVariable> DescribedVariable(uint32_t number, const char* description) {
    if (description == nullptr || *description == '\0' || description == kReserved) {
        return std::nullopt;
    }
    NvramVariable variable;
    variable.number = number;
    variable.description = description;
    variable.name = NameFrom(variable.description);
    variable.role = RoleOf(number, variable.description);
    return variable;
}

const NvramVariable* NvramMap::WithNumber(uint64_t number) const {
    const auto found =
        std::find_if(variables.begin(), variables.end(),
                     [&](const NvramVariable& variable) { return variable.number == number; });
    return found != variables.end() ? &*found : nullptr;
}

const NvramVariable* FindVariable(const NvramMap& map, std::string_view text, std::string* error) {
    if (const auto number = ParseNumber(text)) {
        const NvramVariable* variable = map.WithNumber(*number);
        if (variable == nullptr) {
            *error = "there is no variable " + std::string(text);
        }
        return variable;
    }
    const std::string wanted = NameFrom(text);
    std::vector<const NvramVariable*> found;
    for (const NvramVariable& variable : map.variables) {
        if (variable.name == wanted) {
            return &variable;
        }
        if (!wanted.empty() && variable.name.starts_with(wanted)) {
            found.push_back(&variable);
        }
    }
    if (found.size() == 1) {
        return found.front();
    }
    *error = "there is no variable " + Quoted(text);
    if (!found.empty()) {
        *error = Quoted(text) + " begins " + std::to_string(found.size()) + " names:";
        for (size_t i = 0; i < found.size() && i < kNamesInError; ++i) {
            *error += (i == 0 ? " " : ", ") + found[i]->name;
        }
        *error += found.size() > kNamesInError ? ", ..." : "";
    }
    return nullptr;
}

uint32_t ValueOf(Bytes block, const NvramVariable& variable) {
    uint32_t value = 0;
    for (uint32_t i = 0; variable.field && i < variable.field->width; ++i) {
        value |= static_cast<uint32_t>(BitAt(block, variable.field->first + i)) << i;
    }
    return value;
}

void SetValue(std::span<uint8_t> block, const NvramVariable& variable, uint32_t value) {
    for (uint32_t i = 0; variable.field && i < variable.field->width; ++i) {
        const size_t bit = variable.field->first + i;
        ClearBit(block, bit);
        if ((value >> i & 1) != 0 && bit / 8 < block.size()) {
            block[bit / 8] = static_cast<uint8_t>(block[bit / 8] | 1u << bit % 8);
        }
    }
}

SettingFault ParseSetting(const NvramMap& map, std::string_view text, NvramSetting* setting,
                          std::string* error) {
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        *error = Quoted(text) + " is not NAME=VALUE";
        return SettingFault::Usage;
    }
    const NvramVariable* variable = FindVariable(map, text.substr(0, equals), error);
    if (variable == nullptr) {
        return SettingFault::Usage;
    }
    if (!variable->field) {
        *error = "this chip has no variable " + variable->name;
        return SettingFault::NotSupported;
    }
    if (!variable->Settable()) {
        *error = variable->name + (variable->role == NvramRole::Fixed
                                       ? " belongs to the block and is not set by hand"
                                       : " is read-only on this chip family");
        return SettingFault::Refused;
    }
    const std::string_view given = text.substr(equals + 1);
    const auto value = ParseNumber(given);
    if (!value || *value > variable->Most()) {
        *error = variable->name + ": " + Quoted(given) + " is no number from 0 to " +
                 std::to_string(variable->Most());
        return SettingFault::Usage;
    }
    *setting = {variable, static_cast<uint32_t>(*value)};
    return SettingFault::None;
}

NvramDifference DifferenceOf(const NvramMap& map, Bytes before, Bytes after) {
    NvramDifference difference;
    const size_t length = std::max(before.size(), after.size());
    std::vector<uint8_t> unlike(length);
    for (size_t i = 0; i < length; ++i) {
        const auto at = [&](Bytes block) { return i < block.size() ? block[i] : uint8_t{0}; };
        unlike[i] = static_cast<uint8_t>(at(before) ^ at(after));
    }
    for (const NvramVariable& variable : map.variables) {
        for (uint32_t i = 0; variable.field && i < variable.field->width; ++i) {
            ClearBit(unlike, variable.field->first + i);
        }
        const uint32_t old = ValueOf(before, variable);
        const uint32_t now = ValueOf(after, variable);
        const bool checksum =
            variable.role == NvramRole::Fixed && variable.number != kSignatureVariable;
        if (old != now && !checksum) {
            difference.changes.push_back({&variable, old, now});
        }
    }
    difference.otherBytes = static_cast<size_t>(
        std::count_if(unlike.begin(), unlike.end(), [](uint8_t byte) { return byte != 0; }));
    return difference;
}

}  // namespace vxmgr
