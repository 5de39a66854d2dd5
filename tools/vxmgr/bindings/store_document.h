// The documents that stored data is exported to and imported from: JSON, read strictly. Whatever is
// wrong throws DocumentError with the place in the document.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "common/wwn.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

using DocumentJson = nlohmann::ordered_json;

struct DocumentError {
    std::string text;
};

inline constexpr uint64_t kDocumentVersion = 1;

// The adapter port that a document was made of.
struct DocumentPort {
    tools::Wwn portName;
    tools::Wwn nodeName;
    std::string serial;
};

// The text as JSON; a key that stands twice in an object is an error.
DocumentJson ParseDocument(std::string_view text);

// One object: every key that is asked for is checked, and Close finds the keys that nobody knows.
class DocumentObject {
  public:
    DocumentObject(const DocumentJson& json, std::string place);

    uint64_t Number(const char* key, uint64_t most) const;
    std::string Text(const char* key) const;
    bool Flag(const char* key) const;        // false when the key is not there
    tools::Wwn Name(const char* key) const;  // 16 hexadecimal digits
    uint64_t Hex(const char* key, uint64_t most) const;
    // As many bytes as the field has, or zeros when the key is not there.
    void Bytes(const char* key, std::span<uint8_t> field) const;
    const DocumentJson& Array(const char* key) const;
    bool Has(const char* key) const { return json_.contains(key); }
    DocumentObject Object(const char* key) const;

    void Close(std::initializer_list<std::string_view> known) const;

    [[noreturn]] void Fail(const std::string& key, const std::string& text) const;

  private:
    const DocumentJson& Member(const char* key) const;

    const DocumentJson& json_;
    std::string place_;
};

// Head of every document, its keys "document", "version" and "port".
DocumentJson DocumentHead(const char* kind, const DocumentPort& port);
DocumentPort CheckDocumentHead(const DocumentObject& document, const char* kind);

// Reserved bytes: the key is left out when they are all zero.
void PutBytes(DocumentJson& object, const char* key, Bytes bytes);

std::string DocumentText(const DocumentJson& document);

}  // namespace vxmgr
