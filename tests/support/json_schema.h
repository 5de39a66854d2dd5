// Checks documents against the JSON Schemas of docs/schemas. It knows the part of draft 2020-12
// that those use; a keyword beyond it is an error, so that nothing goes unchecked unnoticed.
#pragma once

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace support {

class JsonSchemas {
  public:
    using Json = nlohmann::json;

    // folder: where the schema files are, with its trailing separator.
    explicit JsonSchemas(std::string folder) : folder_(std::move(folder)) {}

    // Every way in which the document breaks the schema file, each with the place in the document.
    std::vector<std::string> Check(const Json& document, const std::string& file) {
        errors_.clear();
        CheckFile(document, file, "$");
        return errors_;
    }

    std::vector<std::string> CheckAgainst(const Json& document, const Json& schema) {
        errors_.clear();
        CheckValue(document, schema, "$");
        return errors_;
    }

    // An envelope and the result inside.
    std::vector<std::string> CheckEnvelope(const Json& document) {
        errors_.clear();
        CheckFile(document, "envelope.json", "$");
        if (errors_.empty() && !document["result"].is_null()) {
            CheckFile(document["result"], document["schema"].get<std::string>() + ".json",
                      "$.result");
        }
        return errors_;
    }

    // A row line of jsonl: an element of its schema's one array.
    std::vector<std::string> CheckRow(const Json& line) {
        errors_.clear();
        if (!line.is_object() || line.size() != 2 || !line.contains("schema") ||
            !line.contains("row")) {
            Fail("$", "is no row line");
            return errors_;
        }
        const Json& schema = File(line["schema"].get<std::string>() + ".json");
        const Json properties = schema.value("properties", Json::object());
        for (const auto& [name, property] : properties.items()) {
            if (property.is_object() && property.value("type", Json()) == "array") {
                CheckValue(line["row"], property["items"], "$.row");
                return errors_;
            }
        }
        Fail("$.schema", "has no rows");
        return errors_;
    }

  private:
    void Fail(const std::string& place, const std::string& text) {
        errors_.push_back(place + ": " + text);
    }

    const Json& File(const std::string& name) {
        const auto known = files_.find(name);
        if (known != files_.end()) {
            return known->second;
        }
        std::ifstream stream(folder_ + name);
        Json schema = Json::parse(stream, nullptr, false);
        if (!schema.is_object()) {
            Fail(name, "is missing, or no schema");
            schema = Json::object();
        }
        return files_[name] = std::move(schema);
    }

    void CheckFile(const Json& value, const std::string& file, const std::string& place) {
        CheckValue(value, File(file), place);
    }

    static bool IsOfType(const Json& value, const std::string& type) {
        return (type == "null" && value.is_null()) || (type == "boolean" && value.is_boolean()) ||
               (type == "string" && value.is_string()) ||
               (type == "integer" && value.is_number_integer()) ||
               (type == "number" && value.is_number()) || (type == "array" && value.is_array()) ||
               (type == "object" && value.is_object());
    }

    void CheckValue(const Json& value, const Json& schema, const std::string& place) {
        if (schema.is_boolean()) {
            if (!schema.get<bool>()) {
                Fail(place, "may not be there");
            }
            return;
        }
        for (const auto& [keyword, argument] : schema.items()) {
            const auto rule = Rules().find(keyword);
            if (rule == Rules().end()) {
                Fail(place, "the schema uses the unknown keyword " + keyword);
            } else if (rule->second != nullptr) {
                (this->*rule->second)(value, argument, schema, place);
            }
        }
    }

    using Rule = void (JsonSchemas::*)(const Json& value, const Json& argument, const Json& schema,
                                       const std::string& place);

    // The keywords that are known; those without a rule describe and demand nothing.
    static const std::map<std::string, Rule>& Rules() {
        static const std::map<std::string, Rule> kRules = {
            {"$schema", nullptr},
            {"$id", nullptr},
            {"$comment", nullptr},
            {"title", nullptr},
            {"description", nullptr},
            {"$ref", &JsonSchemas::CheckReference},
            {"type", &JsonSchemas::CheckType},
            {"const", &JsonSchemas::CheckConst},
            {"enum", &JsonSchemas::CheckEnum},
            {"required", &JsonSchemas::CheckRequired},
            {"properties", &JsonSchemas::CheckProperties},
            {"additionalProperties", &JsonSchemas::CheckAdditional},
            {"items", &JsonSchemas::CheckItems},
        };
        return kRules;
    }

    void CheckReference(const Json& value, const Json& argument, const Json&,
                        const std::string& place) {
        CheckFile(value, argument.get<std::string>(), place);
    }

    void CheckType(const Json& value, const Json& argument, const Json&, const std::string& place) {
        const Json types = argument.is_array() ? argument : Json::array({argument});
        for (const Json& type : types) {
            if (IsOfType(value, type.get<std::string>())) {
                return;
            }
        }
        Fail(place, "is " + value.dump() + ", not of type " + argument.dump());
    }

    void CheckConst(const Json& value, const Json& argument, const Json&,
                    const std::string& place) {
        if (value != argument) {
            Fail(place, "is " + value.dump() + ", not " + argument.dump());
        }
    }

    void CheckEnum(const Json& value, const Json& argument, const Json&, const std::string& place) {
        for (const Json& allowed : argument) {
            if (value == allowed) {
                return;
            }
        }
        Fail(place, "is " + value.dump() + ", none of " + argument.dump());
    }

    void CheckRequired(const Json& value, const Json& argument, const Json&,
                       const std::string& place) {
        for (const Json& name : argument) {
            if (value.is_object() && !value.contains(name.get<std::string>())) {
                Fail(place, "lacks " + name.get<std::string>());
            }
        }
    }

    void CheckProperties(const Json& value, const Json& argument, const Json&,
                         const std::string& place) {
        for (const auto& [name, property] : argument.items()) {
            if (value.is_object() && value.contains(name)) {
                CheckValue(value[name], property, place + "." + name);
            }
        }
    }

    void CheckAdditional(const Json& value, const Json& argument, const Json& schema,
                         const std::string& place) {
        if (!value.is_object()) {
            return;
        }
        const Json known = schema.value("properties", Json::object());
        for (const auto& [name, member] : value.items()) {
            if (!known.contains(name)) {
                CheckValue(member, argument, place + "." + name);
            }
        }
    }

    void CheckItems(const Json& value, const Json& argument, const Json&,
                    const std::string& place) {
        for (size_t i = 0; value.is_array() && i < value.size(); ++i) {
            CheckValue(value[i], argument, place + "[" + std::to_string(i) + "]");
        }
    }

    const std::string folder_;
    std::map<std::string, Json> files_;
    std::vector<std::string> errors_;
};

}  // namespace support
