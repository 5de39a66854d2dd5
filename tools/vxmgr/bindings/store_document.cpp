#include "vxmgr/bindings/store_document.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "common/text.h"

namespace vxmgr {
namespace {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

}  // namespace

DocumentJson ParseDocument(std::string_view text) {
    std::vector<std::set<std::string>> keys;
    std::string twice;
    const auto watch = [&](int, DocumentJson::parse_event_t event, DocumentJson& parsed) {
        if (event == DocumentJson::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == DocumentJson::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == DocumentJson::parse_event_t::key &&
                   !keys.back().insert(parsed.get<std::string>()).second && twice.empty()) {
            twice = parsed.get<std::string>();
        }
        return true;
    };
    try {
        DocumentJson document = DocumentJson::parse(text.begin(), text.end(), watch);
        if (!twice.empty()) {
            throw DocumentError{"the key " + Quoted(twice) + " stands twice in an object"};
        }
        return document;
    } catch (const DocumentJson::exception& error) {
        // The name of the error in brackets comes first.
        const std::string what = error.what();
        const size_t bracket = what.find("] ");
        throw DocumentError{"no JSON: " +
                            (bracket == std::string::npos ? what : what.substr(bracket + 2))};
    }
}

DocumentObject::DocumentObject(const DocumentJson& json, std::string place)
    : json_(json), place_(std::move(place)) {
    if (!json.is_object()) {
        throw DocumentError{place_ + " is no object"};
    }
}

void DocumentObject::Fail(const std::string& key, const std::string& text) const {
    throw DocumentError{place_ + ": " + key + " " + text};
}

const DocumentJson& DocumentObject::Member(const char* key) const {
    const auto found = json_.find(key);
    if (found == json_.end()) {
        Fail(key, "is missing");
    }
    return *found;
}

uint64_t DocumentObject::Number(const char* key, uint64_t most) const {
    const DocumentJson& member = Member(key);
    if (!member.is_number_unsigned() || member.get<uint64_t>() > most) {
        Fail(key, "is no number from 0 to " + std::to_string(most));
    }
    return member.get<uint64_t>();
}

std::string DocumentObject::Text(const char* key) const {
    const DocumentJson& member = Member(key);
    if (!member.is_string()) {
        Fail(key, "is no text");
    }
    return member.get<std::string>();
}

bool DocumentObject::Flag(const char* key) const {
    if (!Has(key)) {
        return false;
    }
    if (!Member(key).is_boolean()) {
        Fail(key, "is neither true nor false");
    }
    return Member(key).get<bool>();
}

tools::Wwn DocumentObject::Name(const char* key) const {
    const std::string text = Text(key);
    const auto name = tools::Wwn::Parse(text);
    if (!name || text.size() != 2 * sizeof name->bytes) {
        Fail(key, Quoted(text) + " is no name of 16 hexadecimal digits");
    }
    return *name;
}

uint64_t DocumentObject::Hex(const char* key, uint64_t most) const {
    const std::string text = Text(key);
    const auto number = tools::ParseNumber(text);
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

const DocumentJson& DocumentObject::Array(const char* key) const {
    const DocumentJson& member = Member(key);
    if (!member.is_array()) {
        Fail(key, "is no list");
    }
    return member;
}

DocumentObject DocumentObject::Object(const char* key) const {
    return DocumentObject(Member(key), place_ + "." + key);
}

void DocumentObject::Close(std::initializer_list<std::string_view> known) const {
    for (const auto& [key, value] : json_.items()) {
        if (std::find(known.begin(), known.end(), key) == known.end()) {
            Fail(Quoted(key), "is no key of it");
        }
    }
}

DocumentJson DocumentHead(const char* kind, const DocumentPort& port) {
    DocumentJson document;
    document["document"] = kind;
    document["version"] = kDocumentVersion;
    document["port"] = {{"port_wwn", port.portName.Digits()},
                        {"node_wwn", port.nodeName.Digits()},
                        {"serial", port.serial}};
    return document;
}

DocumentPort CheckDocumentHead(const DocumentObject& document, const char* kind) {
    if (const std::string found = document.Text("document"); found != kind) {
        document.Fail("document", Quoted(found) + " is not " + Quoted(kind));
    }
    if (const uint64_t version = document.Number("version", UINT32_MAX);
        version != kDocumentVersion) {
        document.Fail("version", std::to_string(version) + " is not known; 1 is");
    }
    const DocumentObject port = document.Object("port");
    port.Close({"port_wwn", "node_wwn", "serial"});
    return {port.Name("port_wwn"), port.Name("node_wwn"), port.Text("serial")};
}

void PutBytes(DocumentJson& object, const char* key, Bytes bytes) {
    if (std::any_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte != 0; })) {
        object[key] = HexDigits(bytes);
    }
}

std::string DocumentText(const DocumentJson& document) {
    return document.dump(2, ' ', false, DocumentJson::error_handler_t::replace) + "\n";
}

}  // namespace vxmgr
