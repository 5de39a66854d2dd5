#include "json_document.h"

#include <nlohmann/json.hpp>

#include "redaction.h"
#include "status_codes.h"
#include "text.h"

namespace tools {
namespace {

using Json = nlohmann::ordered_json;

// Above this a reader that keeps numbers as doubles loses digits.
constexpr uint64_t kLargestExact = uint64_t{1} << 53;

struct ToJson {
    const Value& value;
    Redactor& redactor;

    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(bool flag) const { return flag; }
    Json operator()(uint64_t number) const { return number; }
    Json operator()(const std::string& text) const {
        return value.SecretOf() == Secret::None ? redactor.Clean(text)
                                                : redactor.Mask(value.SecretOf(), text);
    }
};

Json JsonOf(const Record& record, Redactor& redactor) {
    Json object = Json::object();
    for (const Field& field : record.Fields()) {
        Json& member = object[field.key];
        switch (field.kind) {
            case FieldKind::Value:
            case FieldKind::Raw: {
                const Value::Data& data = field.value.Content();
                member = std::visit(ToJson{field.value, redactor}, data);
                const auto* number = std::get_if<uint64_t>(&data);
                if (number != nullptr && *number > kLargestExact) {
                    object[field.key + "_s"] = std::to_string(*number);
                }
                break;
            }
            case FieldKind::Group:
                member = JsonOf(field.records.front(), redactor);
                break;
            case FieldKind::List:
                member = Json::array();
                for (const Record& element : field.records) {
                    member.push_back(JsonOf(element, redactor));
                }
                break;
        }
    }
    return object;
}

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json JsonOf(const Message& message, Redactor& redactor) {
    Json object;
    object["severity"] = NameOf(message.severity);
    object["status"] = message.status ? Json(StatusText(*message.status)) : Json(nullptr);
    object["name"] = message.status ? Json(StatusName(*message.status)) : Json(nullptr);
    object["text"] = redactor.Clean(message.text);
    object["hint"] = TextOrNull(redactor.Clean(message.hint));
    object["object"] = TextOrNull(redactor.Clean(message.object));
    return object;
}

Json JsonOf(const Envelope& envelope, bool withResult, Redactor& redactor) {
    Json object;
    object["schema"] = envelope.schema;
    object["schema_version"] = {kSchemaMajor, kSchemaMinor};
    object["tool"] = envelope.tool;
    object["library"] = TextOrNull(envelope.library);
    // The result comes first: it teaches the redactor the serial numbers that argv may hold.
    Json result = withResult && envelope.result != nullptr ? JsonOf(*envelope.result, redactor)
                                                           : Json(nullptr);
    object["argv"] = Json::array();
    for (const std::string& argument : envelope.argv) {
        object["argv"].push_back(redactor.Clean(argument));
    }
    object["result"] = std::move(result);
    object["messages"] = Json::array();
    for (const Message& message : envelope.messages) {
        object["messages"].push_back(JsonOf(message, redactor));
    }
    object["changed"] = envelope.changed;
    object["pending"] = Json::array();
    for (const Pending& pending : envelope.pending) {
        object["pending"].push_back({{"object", redactor.Clean(pending.object)},
                                     {"action", pending.action},
                                     {"text", redactor.Clean(pending.text)}});
    }
    object["exit"] = Number(envelope.exit);
    return object;
}

// Text from outside may not be UTF-8: it is replaced, never a reason to give no document.
std::string Dump(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string EnvelopeDocument(const Envelope& envelope, Redactor& redactor) {
    return Dump(JsonOf(envelope, true, redactor), 2);
}

std::string EnvelopeLine(const Envelope& envelope, size_t rows, Redactor& redactor) {
    const bool listWentOut = envelope.result != nullptr && envelope.result->MainList() != nullptr;
    Json object = JsonOf(envelope, !listWentOut, redactor);
    object["rows"] = rows;
    return Dump(object, -1);
}

std::string RowLine(const std::string& schema, const Record& row, Redactor& redactor) {
    Json object;
    object["schema"] = schema;
    object["row"] = JsonOf(row, redactor);
    return Dump(object, -1);
}

}  // namespace tools
