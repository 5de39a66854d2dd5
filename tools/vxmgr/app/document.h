// Documents that are written and read again, such as exports of stored data: JSON, read strictly.
// Whatever is wrong throws DocumentError with the place in the document.
#pragma once

#include <memory>

#include "vxmgr/app/bytes.h"

namespace vxmgr {

struct DocumentError {
    std::string text;
};

// The adapter port that a document was made of.
struct DocumentPort {
    Wwn portName;
    Wwn nodeName;
    std::string serial;
};

// One object: every key that is asked for is checked, and Close finds the keys that nobody knows.
class DocumentObject {
  public:
    // The document itself. A key that stands twice in an object is an error.
    explicit DocumentObject(std::string_view text);

    uint64_t Number(const char* key, uint64_t most) const;
    std::string Text(const char* key) const;
    bool Flag(const char* key) const;  // false when the key is not there
    Wwn Name(const char* key) const;   // 16 hexadecimal digits
    uint64_t Hex(const char* key, uint64_t most) const;
    // As many bytes as the field has, or zeros when the key is not there.
    void Bytes(const char* key, std::span<uint8_t> field) const;
    bool Has(const char* key) const;
    DocumentObject Object(const char* key) const;
    std::vector<DocumentObject> Objects(const char* key) const;  // of a list

    void Close(const Shape& known) const;

    [[noreturn]] void Fail(const std::string& key, const std::string& text) const;

  private:
    struct Part;

    DocumentObject(const Part& part, std::string place);
    void CheckObject() const;
    Part Member(const char* key) const;

    std::shared_ptr<const Part> part_;
    std::string place_;
};

// The keys "document", "version" and "port", with which every document begins. kind: its one name.
using DocumentKind = std::span<const char* const, 1>;
Fields<DocumentPort> DocumentHeadFields(DocumentKind kind);
DocumentPort ReadDocumentHead(const DocumentObject& document, DocumentKind kind);

}  // namespace vxmgr
