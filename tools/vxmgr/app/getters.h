// Where the fields of rows come from, for what is not simply a member of the row.
#pragma once

#include <cstring>
#include <functional>
#include <type_traits>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// A number of a packed record, which may stand at any address.
template <auto member>
inline constexpr auto Packed = [](const auto& record) {
    std::remove_cvref_t<decltype(record.*member)> number;
    std::memcpy(&number, &(record.*member), sizeof number);
    return number;
};

// A text of such a record.
template <auto member>
inline constexpr auto TextOf = [](const auto& record) {
    const auto& field = record.*member;
    return FieldText(reinterpret_cast<const char*>(field), sizeof field);
};

// One bit of such a number.
template <auto member, unsigned bit>
inline constexpr auto Bit = [](const auto& record) { return (Packed<member>(record) & bit) != 0; };

// A name of such a record; nothing for one of zeros.
template <auto member>
inline constexpr auto WwnOf = [](const auto& record) {
    const Wwn name = Wwn::Of(record.*member);
    return name.IsZero() ? std::nullopt : std::optional(name);
};

// What get gives of a part, which is a pointer or an std::optional; nothing for a row without it.
template <class Part, class Get>
constexpr auto Of(Part part, Get get) {
    return [part, get](const auto& row) {
        const auto& given = std::invoke(part, row);
        return given ? std::optional(std::invoke(get, *given)) : std::nullopt;
    };
}

}  // namespace vxmgr
