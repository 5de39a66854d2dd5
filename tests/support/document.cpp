#include "support/document.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>

namespace support {
namespace {

using Json = nlohmann::json;

const Json& JsonIn(const std::shared_ptr<const void>& value) {
    return *static_cast<const Json*>(value.get());
}

std::shared_ptr<const void> Whole(Json json) {
    return std::make_shared<const Json>(std::move(json));
}

// The value as this type, when it is one.
template <typename Value>
Value As(const Json& json, bool is, const char* kind) {
    if (!is) {
        ADD_FAILURE() << "is no " << kind << ": " << json;
        return {};
    }
    return json.get<Value>();
}

}  // namespace

Document::Document() : value_(Whole(nullptr)) {}
Document::Document(bool value) : value_(Whole(value)) {}
Document::Document(const char* value) : value_(Whole(value)) {}

Document Document::Signed(int64_t value) {
    return Document(Whole(value));
}

Document Document::Unsigned(uint64_t value) {
    return Document(Whole(value));
}

Document Document::Parse(const std::string& text) {
    Json json = Json::parse(text, nullptr, false);
    return Document(Whole(json.is_discarded() ? Json() : std::move(json)));
}

Document Document::operator[](const std::string& key) const {
    const Json& json = JsonIn(value_);
    return contains(key) ? Document(std::shared_ptr<const void>(value_, &json[key])) : Document();
}

Document Document::Element(size_t index) const {
    const Json& json = JsonIn(value_);
    if (!json.is_structured() || index >= json.size()) {
        return {};
    }
    return Document(std::shared_ptr<const void>(
        value_, &*std::next(json.begin(), static_cast<std::ptrdiff_t>(index))));
}

Document Document::at(const std::string& pointer) const {
    const Json::json_pointer place(pointer);
    const Json& json = JsonIn(value_);
    return json.contains(place) ? Document(std::shared_ptr<const void>(value_, &json.at(place)))
                                : Document();
}

bool Document::contains(const std::string& key) const {
    return JsonIn(value_).contains(key);
}

size_t Document::size() const {
    return JsonIn(value_).size();
}

bool Document::is_null() const {
    return JsonIn(value_).is_null();
}
bool Document::is_object() const {
    return JsonIn(value_).is_object();
}
bool Document::is_array() const {
    return JsonIn(value_).is_array();
}
bool Document::is_string() const {
    return JsonIn(value_).is_string();
}
bool Document::is_number() const {
    return JsonIn(value_).is_number();
}

std::string Document::text() const {
    return As<std::string>(JsonIn(value_), is_string(), "text");
}

int64_t Document::number() const {
    return As<int64_t>(JsonIn(value_), JsonIn(value_).is_number_integer(), "whole number");
}

bool Document::flag() const {
    return As<bool>(JsonIn(value_), JsonIn(value_).is_boolean(), "flag");
}

std::string Document::dump() const {
    return JsonIn(value_).dump();
}

Document Document::With(const std::string& pointer, const char* json) const {
    Json changed = JsonIn(value_);
    const Json::json_pointer place(pointer);
    if (json != nullptr) {
        changed[place] = Json::parse(json);
    } else {
        changed.at(place.parent_pointer()).erase(place.back());
    }
    return Document(Whole(std::move(changed)));
}

bool operator==(const Document& a, const Document& b) {
    return JsonIn(a.value_) == JsonIn(b.value_);
}

std::ostream& operator<<(std::ostream& stream, const Document& document) {
    return stream << document.dump();
}

}  // namespace support
