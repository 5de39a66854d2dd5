#include "support/json_schema.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace support {
namespace {

using Json = nlohmann::json;
using Adapter = valijson::adapters::NlohmannJsonAdapter;

Json Of(const Document& document) {
    return Json::parse(document.dump());
}

// The schema file with those that it refers to in the place of the references: the validator does
// not follow references between files that name themselves.
Json Load(const std::string& folder, const std::string& file);

// "vxmgr.port.list.json" is vxmgr/port/list.json.
std::string PathOf(const std::string& folder, std::string file) {
    const size_t end = file.rfind(".json");
    std::replace(file.begin(), file.begin() + static_cast<ptrdiff_t>(std::min(end, file.size())),
                 '.', '/');
    return folder + file;
}

void Resolve(Json& schema, const std::string& folder) {
    if (schema.is_object() && schema.contains("$ref")) {
        schema = Load(folder, schema["$ref"].get<std::string>());
        if (!schema.is_object()) {
            throw std::runtime_error("refers to a file that is missing, or no schema");
        }
    } else if (schema.is_structured()) {
        for (Json& member : schema) {
            Resolve(member, folder);
        }
    }
}

Json Load(const std::string& folder, const std::string& file) {
    std::ifstream stream(PathOf(folder, file));
    Json schema = Json::parse(stream, nullptr, false);
    if (schema.is_object()) {
        schema.erase("$id");
    }
    Resolve(schema, folder);
    return schema;
}

}  // namespace

class JsonSchemas::Compiled {
  public:
    explicit Compiled(const Json& schema) {
        valijson::SchemaParser().populateSchema(Adapter(schema), schema_);
    }

    Errors Check(const Json& document) const {
        valijson::ValidationResults results;
        valijson::Validator(valijson::Validator::kStrongTypes)
            .validate(schema_, Adapter(document), &results);
        Errors errors;
        for (valijson::ValidationResults::Error error; results.popError(error);) {
            std::string place;
            for (const std::string& step : error.context) {
                place += step;
            }
            errors.push_back(place + ": " + error.description);
        }
        return errors;
    }

  private:
    valijson::Schema schema_;
};

JsonSchemas::JsonSchemas(std::string folder) : folder_(std::move(folder)) {}
JsonSchemas::~JsonSchemas() = default;

const JsonSchemas::Compiled* JsonSchemas::Find(const std::string& file, const std::string& member) {
    std::unique_ptr<Compiled>& found = compiled_[file + member];
    if (found == nullptr) {
        const Json schema = Load(folder_, file);
        const Json::json_pointer place(member);
        if (!schema.is_object() || !schema.contains(place)) {
            return nullptr;
        }
        found = std::make_unique<Compiled>(schema.at(place));
    }
    return found.get();
}

JsonSchemas::Errors JsonSchemas::Check(const Document& document, const std::string& file) {
    const Compiled* const schema = Find(file);
    return schema != nullptr ? schema->Check(Of(document))
                             : Errors{file + ": is missing, or no schema"};
}

JsonSchemas::Errors JsonSchemas::CheckAgainst(const Document& document, const Document& schema) {
    try {
        Json whole = Of(schema);
        Resolve(whole, {});
        return Compiled(whole).Check(Of(document));
    } catch (const std::runtime_error& error) {
        return {error.what()};
    }
}

JsonSchemas::Errors JsonSchemas::CheckEnvelope(const Document& document) {
    Errors errors = Check(document, "envelope.json");
    if (errors.empty()) {
        const std::string file = document["schema"].text() + ".json";
        errors = document["result"].is_null() ? CheckHeader(document, file)
                                              : Check(document["result"], file);
    }
    return errors;
}

JsonSchemas::Errors JsonSchemas::CheckRow(const Document& line) {
    if (!line.is_object() || !line.contains("schema") || !line.contains("row") ||
        line.size() != (line.contains("header") ? 3u : 2u)) {
        return {"$: is no row line"};
    }
    const std::string file = line["schema"].text() + ".json";
    Errors errors = CheckHeader(line, file);
    const Json properties = Load(folder_, file).value("properties", Json::object());
    for (const auto& [name, property] : properties.items()) {
        if (property.is_object() && property.value("type", Json()) == "array") {
            const Errors more =
                Find(file, "/properties/" + name + "/items")->Check(Of(line["row"]));
            errors.insert(errors.end(), more.begin(), more.end());
            return errors;
        }
    }
    return {"$.schema: has no rows"};
}

JsonSchemas::Errors JsonSchemas::CheckHeader(const Document& line, const std::string& file) {
    Errors errors;
    const Json header = Of(line["header"]);
    for (const auto& [name, value] : header.items()) {
        const Compiled* const schema = Find(file, "/properties/" + name);
        const Errors more = schema == nullptr
                                ? Errors{"$.header." + name + ": is not in the result"}
                                : schema->Check(value);
        errors.insert(errors.end(), more.begin(), more.end());
    }
    return errors;
}

}  // namespace support
