#include "selector.h"

#include <algorithm>

#include "records/text.h"

namespace tools {
namespace {

struct Prefix {
    std::string_view text;
    SelectorKind kind;
};

constexpr Prefix kPrefixes[] = {
    {"serial:", SelectorKind::Serial},
    {"wwn:", SelectorKind::Wwn},
    {"index:", SelectorKind::Index},
    {"scsi:", SelectorKind::Scsi},
};

bool Fill(SelectorKind kind, std::string_view value, Selector* selector, std::string* error) {
    selector->kind = kind;
    if (kind == SelectorKind::Serial) {
        selector->text = value;
        *error = "serial: needs a serial number";
        return !value.empty();
    }
    if (kind == SelectorKind::Wwn) {
        const auto wwn = Wwn::Parse(value);
        *error =
            "a world wide name is 16 hexadecimal digits, with ':' or '-' between the bytes "
            "or without";
        selector->wwn = wwn.value_or(Wwn());
        return wwn.has_value();
    }
    // "0x10" is a number elsewhere; ports and adapters are counted in decimal.
    const bool digits = value.find_first_not_of("0123456789") == value.npos;
    const uint64_t number = ParseNumber(digits ? value : "").value_or(UINT64_MAX);
    *error = "\"" + std::string(value) + "\" is not a number";
    selector->number = static_cast<uint32_t>(number);
    return number <= UINT32_MAX;
}

}  // namespace

bool ParseSelector(std::string_view text, Selector* selector, std::string* error) {
    *selector = Selector();
    if (EqualIgnoringCase(text, "all")) {
        return true;
    }
    for (const Prefix& prefix : kPrefixes) {
        if (EqualIgnoringCase(text.substr(0, prefix.text.size()), prefix.text)) {
            return Fill(prefix.kind, text.substr(prefix.text.size()), selector, error);
        }
    }
    if (text.empty()) {
        *error = "an empty selection";
        return false;
    }
    // Sixteen digits are a world wide name, which no index is as long as.
    if (const auto wwn = Wwn::Parse(text)) {
        selector->kind = SelectorKind::Bare;
        selector->text = text;
        selector->wwn = *wwn;
        return true;
    }
    if (text.find_first_not_of("0123456789") == text.npos) {
        selector->bareNumber = true;
        return Fill(SelectorKind::Index, text, selector, error);
    }
    selector->kind = SelectorKind::Bare;
    selector->text = text;
    return true;
}

bool Matches(const Selector& selector, const Identity& identity) {
    const auto hasName = [&] {
        return !selector.wwn.IsZero() && std::find(identity.names.begin(), identity.names.end(),
                                                   selector.wwn) != identity.names.end();
    };
    const auto hasSerial = [&] {
        return !identity.serial.empty() && EqualIgnoringCase(selector.text, identity.serial);
    };
    switch (selector.kind) {
        case SelectorKind::All:
            return true;
        case SelectorKind::Index:
            return identity.index == selector.number;
        case SelectorKind::Scsi:
            return std::find(identity.scsiPorts.begin(), identity.scsiPorts.end(),
                             selector.number) != identity.scsiPorts.end();
        case SelectorKind::Serial:
            return hasSerial();
        case SelectorKind::Wwn:
            return hasName();
        case SelectorKind::Bare:
            return hasSerial() || hasName();
    }
    return false;
}

std::vector<size_t> Select(const Selector& selector, std::span<const Identity> identities) {
    std::vector<size_t> positions;
    for (size_t i = 0; i < identities.size(); ++i) {
        if (Matches(selector, identities[i])) {
            positions.push_back(i);
        }
    }
    return positions;
}

}  // namespace tools
