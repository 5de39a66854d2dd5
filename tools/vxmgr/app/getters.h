// Where the fields of rows come from, for what is not simply a member of the row.
#pragma once

#include <cstring>
#include <functional>
#include <optional>
#include <string>

#include "common/text.h"

namespace vxmgr {

// A number of a packed record, which may stand at any address; nothing without the record.
template <class Source, class Number>
std::optional<Number> NumberIn(const std::optional<Source>& record, Number Source::*member) {
    if (!record) {
        return std::nullopt;
    }
    Number number;
    std::memcpy(&number, &((*record).*member), sizeof number);
    return number;
}

// A text of such a record; empty without one.
template <class Source, size_t size>
std::string TextIn(const std::optional<Source>& record, const char (Source::*member)[size]) {
    return record ? tools::FieldText((*record).*member, size) : std::string();
}

// For a field that only some rows have a value of: what get gives for those that hold.
template <class Holds, class Get>
auto When(Holds holds, Get get) {
    return [holds, get](const auto& row) {
        return std::invoke(holds, row) ? std::optional(std::invoke(get, row)) : std::nullopt;
    };
}

}  // namespace vxmgr
