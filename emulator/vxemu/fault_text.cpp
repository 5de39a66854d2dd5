#include "fault_text.h"

#include "transport/ext_ioctl.h"
#include "vocabulary.h"

namespace vxemu {
namespace {

using transport::DriverStatus;

struct KindRow {
    FaultKind kind;
    const char* name;
    const char* value;  // what its number means; null: it takes none
    uint32_t least;
    uint32_t most;
};
constexpr KindRow kKinds[] = {
    {FaultKind::Busy, "busy", nullptr, 0, 0},
    {FaultKind::Hang, "hang", "MS", 1, kMaxHangMilliseconds},
    {FaultKind::Status, "status", "S", 0, 0xFFFFFFFF},
    {FaultKind::Detail, "detail", "D", 0, 0xFFFFFFFF},
    {FaultKind::Short, "short", "N", 1, 0xFFFFFFFF},
    {FaultKind::Long, "long", "N", 1, 0xFFFFFFFF},
    {FaultKind::LieLength, "lie-length", nullptr, 0, 0},
    {FaultKind::Corrupt, "corrupt", nullptr, 0, 0},
    {FaultKind::Forget, "forget", nullptr, 0, 0},
    {FaultKind::CorruptByte, "corrupt-byte", "AT", 0, 0xFFFFFFFF},
    {FaultKind::BadSignature, "bad-signature", nullptr, 0, 0},
    {FaultKind::OldVersion, "old-version", nullptr, 0, 0},
    {FaultKind::WrongBank, "wrong-bank", nullptr, 0, 0},
    {FaultKind::NoReturn, "no-return", nullptr, 0, 0},
};

constexpr uint32_t kHighestScsiStatus = 0xFF;

// Takes "11:" or "15:" off the front of a detail.
std::optional<uint32_t> TakeDetailStatus(std::string_view& value) {
    const size_t colon = value.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const auto status = ParseNumber(value.substr(0, colon));
    value.remove_prefix(colon + 1);
    return status && *status <= 0xFFFFFFFF ? static_cast<uint32_t>(*status) : 0;
}

}  // namespace

bool ParseFaultAction(std::string_view kind, std::string_view value, FaultRule* rule,
                      std::string* error) {
    for (const KindRow& row : kKinds) {
        if (kind != row.name) {
            continue;
        }
        rule->kind = row.kind;
        rule->value = 0;
        rule->status = 0;
        if (const BoundFault* bound = FindBound(row.kind)) {
            if (rule->code == kAnyCode) {
                rule->code = bound->command.code;
                rule->subCode = bound->command.subCode;
            } else if (rule->code != bound->command.code) {
                FaultRule request = *rule;
                request.code = bound->command.code;
                request.subCode = bound->command.subCode;
                *error = std::string(kind) + " is a fault of " + FormatFaultCode(request);
                return false;
            }
        }
        if (row.value == nullptr) {
            *error = std::string(kind) + " takes no value";
            return value.empty();
        }
        std::optional<uint32_t> status;
        if (row.kind == FaultKind::Detail) {
            status = TakeDetailStatus(value);
        }
        const auto number = ParseNumber(value);
        if (!number || *number < row.least || *number > row.most) {
            *error = std::string(kind) + " needs a number from " + std::to_string(row.least) +
                     " to " + std::to_string(row.most);
            return false;
        }
        rule->value = static_cast<uint32_t>(*number);
        if (row.kind == FaultKind::Detail) {
            const DriverStatus usual = rule->value <= kHighestScsiStatus
                                           ? DriverStatus::ScsiStatus
                                           : DriverStatus::MailboxFailed;
            rule->status = status.value_or(static_cast<uint32_t>(usual));
            *error = "a detail goes with driver status 11 or 15";
        }
        return FaultRuleValid(*rule);
    }
    *error = "\"" + std::string(kind) + "\" is not one of " + FaultKindList();
    return false;
}

std::string FormatFaultAction(const FaultRule& rule) {
    for (const KindRow& row : kKinds) {
        if (row.kind != rule.kind) {
            continue;
        }
        std::string text = row.name;
        if (row.kind == FaultKind::Detail) {
            text += " " + std::to_string(rule.status) + ":" + Hex(rule.value, 1);
        } else if (row.value != nullptr) {
            text += " " + std::to_string(rule.value);
        }
        return text;
    }
    return "none";
}

bool ParseFaultCode(std::string_view text, FaultRule* rule) {
    if (const auto number = ParseNumber(text)) {
        rule->code = static_cast<uint32_t>(*number);
        return *number <= 0xFFFFFFFF;
    }
    for (const transport::ExtendedCommandRow& row : transport::kExtendedCommands) {
        if (EqualIgnoringCase(text, row.name)) {
            rule->code = row.code;
            rule->subCode = row.kind == transport::SubCode::Fixed ? row.subCode : kAnySubCode;
            return true;
        }
    }
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        if (EqualIgnoringCase(text, row.name)) {
            rule->code = row.code;
            return true;
        }
    }
    return false;
}

std::string FormatFaultCode(const FaultRule& rule) {
    const char* name = nullptr;
    uint32_t matches = 0;
    for (const transport::ExtendedCommandRow& row : transport::kExtendedCommands) {
        const bool subCode = rule.subCode == kAnySubCode ||
                             (row.kind == transport::SubCode::Fixed && row.subCode == rule.subCode);
        if (row.code == rule.code && subCode) {
            name = row.name;
            ++matches;
        }
    }
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        if (row.code == rule.code) {
            name = row.name;
            ++matches;
        }
    }
    if (matches == 1) {
        return name;
    }
    return rule.code == kAnyCode ? "any" : Hex(rule.code, 8);
}

std::string FaultRequestNames() {
    std::string names;
    const auto add = [&names](const auto& table) {
        for (const auto& row : table) {
            names += (names.empty() ? "" : ", ") + std::string(row.name);
        }
    };
    add(transport::kExtendedCommands);
    names += "; of the legacy driver: ";
    std::string extended = std::move(names);
    names.clear();
    add(transport::kPlainCommands);
    return "Requests that --code knows by name: " + extended + names + ".";
}

std::string FaultKindList() {
    std::string list;
    for (const KindRow& row : kKinds) {
        list += (list.empty() ? "" : "|") + std::string(row.name);
        if (row.value != nullptr) {
            list += std::string(" ") + row.value;
        }
    }
    return list;
}

}  // namespace vxemu
