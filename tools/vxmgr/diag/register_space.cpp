#include "vxmgr/diag/register_space.h"

#include "hxhealth.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {
namespace {

// A word alone is the kind's usual unit.
struct SpaceRow {
    const char* word;
    RegisterKind alone;
    RegisterKind withUnit;
    uint16_t usualUnit;
    uint16_t mostUnit;
};
constexpr SpaceRow kSpaces[] = {
    {"serdes", RegisterKind::SerDes, RegisterKind::SerDesLane, 0, UINT16_MAX},
    {"retimer", RegisterKind::Retimer, RegisterKind::Retimer, HX_RETIMER_DEVICE, 0x7F},
};

// By RegisterKind.
struct KindRow {
    uint32_t mostAddress;
    uint32_t mostValue;
    int valueDigits;
};
constexpr KindRow kKinds[] = {
    {UINT16_MAX, UINT16_MAX, 4},
    {UINT32_MAX, UINT32_MAX, 8},
    {UINT16_MAX, UINT8_MAX, 2},
};

const KindRow& RowOf(RegisterKind kind) {
    return kKinds[static_cast<size_t>(kind)];
}

bool ParseWithin(std::string_view text, const char* what, uint32_t most, uint32_t* number,
                 std::string* error) {
    const auto given = ParseNumber(text);
    if (!given || *given > most) {
        *error = "\"" + std::string(text) + "\" is no " + what + " from 0 to " + Hex(most, 2);
        return false;
    }
    *number = static_cast<uint32_t>(*given);
    return true;
}

}  // namespace

std::string RegisterSpace::Text() const {
    switch (kind) {
        case RegisterKind::SerDes:
            break;
        case RegisterKind::SerDesLane:
            return "serdes:" + std::to_string(unit);
        case RegisterKind::Retimer:
            return "retimer:" + Hex(unit, 2);
    }
    return "serdes";
}

int RegisterSpace::ValueDigits() const {
    return RowOf(kind).valueDigits;
}

bool ParseRegisterSpace(std::string_view text, RegisterSpace* space, std::string* error) {
    const size_t colon = text.find(':');
    for (const SpaceRow& row : kSpaces) {
        if (text.substr(0, colon) != row.word) {
            continue;
        }
        uint32_t unit = row.usualUnit;
        if (colon != text.npos &&
            !ParseWithin(text.substr(colon + 1), row.alone == row.withUnit ? "device" : "lane",
                         row.mostUnit, &unit, error)) {
            return false;
        }
        *space = {colon == text.npos ? row.alone : row.withUnit, static_cast<uint16_t>(unit)};
        return true;
    }
    *error = "neither serdes, serdes:LANE, retimer nor retimer:DEVICE";
    return false;
}

bool ParseRegister(std::string_view text, const RegisterSpace& space, bool withValue,
                   RegisterChoice* choice, std::string* error) {
    const KindRow& limits = RowOf(space.kind);
    const size_t sign = text.find('=');
    *choice = {};
    if ((sign != text.npos) != withValue) {
        *error = withValue ? "no value is given" : "a value is for a write";
        return false;
    }
    uint32_t value = 0;
    if (!ParseWithin(text.substr(0, sign), "address", limits.mostAddress, &choice->address,
                     error) ||
        (withValue &&
         !ParseWithin(text.substr(sign + 1), "value", limits.mostValue, &value, error))) {
        return false;
    }
    if (withValue) {
        choice->value = value;
    }
    return true;
}

}  // namespace vxmgr
