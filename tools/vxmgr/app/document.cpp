#include "vxmgr/app/document.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace vxmgr {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kVersions[] = {1};

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

Json ParseOnce(std::string_view text) {
    std::vector<std::set<std::string>> keys;
    std::string twice;
    const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == Json::parse_event_t::key &&
                   !keys.back().insert(parsed.get<std::string>()).second && twice.empty()) {
            twice = parsed.get<std::string>();
        }
        return true;
    };
    try {
        Json document = Json::parse(text.begin(), text.end(), watch);
        if (!twice.empty()) {
            throw DocumentError{"the key " + Quoted(twice) + " stands twice in an object"};
        }
        return document;
    } catch (const Json::exception& error) {
        // The name of the error in brackets comes first.
        const std::string what = error.what();
        const size_t bracket = what.find("] ");
        throw DocumentError{"no JSON: " +
                            (bracket == std::string::npos ? what : what.substr(bracket + 2))};
    }
}

const Fields<DocumentPort> kDocumentPortFields = {
    {"port_wwn", "", kText, [](const DocumentPort& p) { return p.portName.Digits(); }},
    {"node_wwn", "", kText, [](const DocumentPort& p) { return p.nodeName.Digits(); }},
    {"serial", "", kText, &DocumentPort::serial},
};

}  // namespace

struct DocumentObject::Part {
    std::shared_ptr<const Json> whole;  // what is inside a document keeps the whole of it
    const Json& json;
};

DocumentObject::DocumentObject(std::string_view text) : place_("the document") {
    const auto whole = std::make_shared<const Json>(ParseOnce(text));
    part_ = std::make_shared<const Part>(Part{whole, *whole});
    CheckObject();
}

DocumentObject::DocumentObject(const Part& part, std::string place)
    : part_(std::make_shared<const Part>(part)), place_(std::move(place)) {
    CheckObject();
}

void DocumentObject::CheckObject() const {
    if (!part_->json.is_object()) {
        throw DocumentError{place_ + " is no object"};
    }
}

void DocumentObject::Fail(const std::string& key, const std::string& text) const {
    throw DocumentError{place_ + ": " + key + " " + text};
}

bool DocumentObject::Has(const char* key) const {
    return part_->json.contains(key);
}

DocumentObject::Part DocumentObject::Member(const char* key) const {
    const auto found = part_->json.find(key);
    if (found == part_->json.end()) {
        Fail(key, "is missing");
    }
    return {part_->whole, *found};
}

uint64_t DocumentObject::Number(const char* key, uint64_t most) const {
    const Json& member = Member(key).json;
    if (!member.is_number_unsigned() || member.get<uint64_t>() > most) {
        Fail(key, "is no number from 0 to " + std::to_string(most));
    }
    return member.get<uint64_t>();
}

std::string DocumentObject::Text(const char* key) const {
    const Json& member = Member(key).json;
    if (!member.is_string()) {
        Fail(key, "is no text");
    }
    return member.get<std::string>();
}

bool DocumentObject::Flag(const char* key) const {
    if (!Has(key)) {
        return false;
    }
    const Json& member = Member(key).json;
    if (!member.is_boolean()) {
        Fail(key, "is neither true nor false");
    }
    return member.get<bool>();
}

Wwn DocumentObject::Name(const char* key) const {
    const std::string text = Text(key);
    const auto name = Wwn::Parse(text);
    if (!name || text.size() != 2 * sizeof name->bytes) {
        Fail(key, Quoted(text) + " is no name of 16 hexadecimal digits");
    }
    return *name;
}

uint64_t DocumentObject::Hex(const char* key, uint64_t most) const {
    const std::string text = Text(key);
    const auto number = ParseNumber(text);
    if (!text.starts_with("0x") || !number || *number > most) {
        Fail(key, Quoted(text) + " is no number from 0x0 to " + tools::Hex(most, 1));
    }
    return *number;
}

void DocumentObject::Bytes(const char* key, std::span<uint8_t> field) const {
    std::vector<uint8_t> bytes(field.size());
    if (Has(key) && (!ParseHex(Text(key), &bytes) || bytes.size() != field.size())) {
        Fail(key, "is not " + std::to_string(field.size()) + " bytes in hexadecimal digits");
    }
    std::copy(bytes.begin(), bytes.end(), field.begin());
}

DocumentObject DocumentObject::Object(const char* key) const {
    return DocumentObject(Member(key), place_ + "." + key);
}

std::vector<DocumentObject> DocumentObject::Objects(const char* key) const {
    const Part list = Member(key);
    if (!list.json.is_array()) {
        Fail(key, "is no list");
    }
    std::vector<DocumentObject> objects;
    for (const Json& json : list.json) {
        const std::string place = std::string(key) + "[" + std::to_string(objects.size()) + "]";
        objects.push_back(DocumentObject({list.whole, json}, place));
    }
    return objects;
}

void DocumentObject::Close(const Shape& known) const {
    for (const auto& [key, value] : part_->json.items()) {
        const auto isIt = [&name = key](const FieldShape& field) { return name == field.key; };
        if (std::none_of(known.begin(), known.end(), isIt)) {
            Fail(Quoted(key), "is no key of it");
        }
    }
}

Fields<DocumentPort> DocumentHeadFields(DocumentKind kind) {
    const FieldType version{.base = FieldType::Base::Integer, .numbers = kVersions};
    return {
        {"document", "", Choice(kind), [kind](const DocumentPort&) { return kind.front(); }},
        {"version", "", version, [](const DocumentPort&) { return kVersions[0]; }},
        {"port", "", kDocumentPortFields, [](const DocumentPort& port) { return &port; },
         "the adapter port that the data was stored for", kGroup},
    };
}

DocumentPort ReadDocumentHead(const DocumentObject& document, DocumentKind kind) {
    if (const std::string found = document.Text("document"); found != kind.front()) {
        document.Fail("document", Quoted(found) + " is not " + Quoted(kind.front()));
    }
    if (const uint64_t version = document.Number("version", UINT32_MAX); version != kVersions[0]) {
        document.Fail("version", std::to_string(version) + " is not known; 1 is");
    }
    const DocumentObject port = document.Object("port");
    port.Close(kDocumentPortFields.ShapeOfAll());
    return {port.Name("port_wwn"), port.Name("node_wwn"), port.Text("serial")};
}

}  // namespace vxmgr
