// Checks documents against the JSON Schemas of docs/schemas.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/document.h"

namespace support {

class JsonSchemas {
  public:
    using Errors = std::vector<std::string>;

    // folder: where the schema files are, with its trailing separator.
    explicit JsonSchemas(std::string folder);
    ~JsonSchemas();

    // Every way in which the document breaks the schema file, each with the place in the document.
    Errors Check(const Document& document, const std::string& file);

    static Errors CheckAgainst(const Document& document, const Document& schema);

    // An envelope and the result inside.
    Errors CheckEnvelope(const Document& document);

    // A row line of jsonl: an element of its schema's one array.
    Errors CheckRow(const Document& line);

  private:
    class Compiled;

    // The values of a `header`: members of the result that the schema file describes.
    Errors CheckHeader(const Document& line, const std::string& file);

    // A schema file, or one member of it, compiled when first asked for; null: there is none.
    const Compiled* Find(const std::string& file, const std::string& member = {});

    const std::string folder_;
    std::map<std::string, std::unique_ptr<Compiled>> compiled_;
};

}  // namespace support
