#include "schemas.h"

#include <algorithm>
#include <map>

#include "json_document.h"
#include "records/fields.h"

namespace tools {

std::string Schema::Text() const {
    return SchemaText(name.c_str(), title.c_str(), shape());
}

std::string Schema::Path() const {
    std::string path = name;
    std::replace(path.begin(), path.end(), '.', '/');
    return path + ".json";
}

std::vector<Schema> SchemasOf(const Tool& tool, std::vector<std::string>* missing) {
    // Several commands may have the same result.
    std::map<std::string, Schema> schemas;
    for (const Command& command : tool.commands) {
        if (command.hidden) {
            continue;
        }
        Schema& schema = schemas[SchemaName(tool, command)];
        schema.title +=
            (schema.title.empty() ? "Result of `" : ", `") + std::string(command.path) + "`";
        schema.shape = command.result;
    }
    for (const Document& document : tool.documents) {
        schemas[SchemaName(tool, document.schema)] = {"", document.title, document.shape};
    }
    std::vector<Schema> declared = {
        {"envelope", "The document that ends every command", EnvelopeShape}};
    for (auto& [name, schema] : schemas) {
        if (schema.shape == nullptr) {
            missing->push_back(name);
            continue;
        }
        schema.name = name;
        declared.push_back(std::move(schema));
    }
    return declared;
}

}  // namespace tools
