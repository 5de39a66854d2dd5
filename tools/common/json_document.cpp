#include "json_document.h"

#include <nlohmann/json.hpp>

#include "records/redaction.h"
#include "records/text.h"
#include "status_codes.h"

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
    Json operator()(const JsonText& json) const { return Json::parse(json.text, nullptr, false); }
    Json operator()(const std::vector<std::string>& texts) const {
        Json array = Json::array();
        for (const std::string& text : texts) {
            array.push_back(redactor.Clean(text));
        }
        return array;
    }
    Json operator()(const std::string& text) const {
        return value.SecretOf() == Secret::None ? redactor.Clean(text)
                                                : redactor.Mask(value.SecretOf(), text);
    }
};

Json JsonOf(const Record& record, Redactor& redactor);

void AddTo(Json& object, const Field& field, Redactor& redactor) {
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

Json JsonOf(const Record& record, Redactor& redactor) {
    Json object = Json::object();
    for (const Field& field : record.Fields()) {
        AddTo(object, field, redactor);
    }
    return object;
}

// What a result holds beside the list whose elements are the rows.
Json HeaderOf(const Record& result, bool withLists, Redactor& redactor) {
    Json object = Json::object();
    for (const Field& field : result.Fields()) {
        if (&field != result.MainList() && (withLists || field.kind != FieldKind::List)) {
            AddTo(object, field, redactor);
        }
    }
    return object;
}

constexpr const char* kSeverities[] = {NameOf(Severity::Info), NameOf(Severity::Warning),
                                       NameOf(Severity::Error)};
const Fields<Message> kMessageFields = {
    {"severity", "", Choice(kSeverities), [](const Message& m) { return NameOf(m.severity); }},
    {"status", "", kText.OrNull(),
     [](const Message& m) { return m.status ? StatusText(*m.status) : std::string(); },
     "of the library, or of Windows"},
    {"name", "", kText.OrNull(),
     [](const Message& m) { return m.status ? StatusName(*m.status) : std::string(); },
     "of the status"},
    {"text", "", kText, &Message::text},
    {"hint", "", kText.OrNull(), &Message::hint, "what to do"},
    {"object", "", kText.OrNull(), &Message::object, "what the message is about"},
};

const Fields<Pending> kPendingFields = {
    {"object", "", kText, &Pending::object},
    {"action", "", kText, &Pending::action},
    {"text", "", kText, &Pending::text},
};

template <class Element>
Json ArrayOf(const Fields<Element>& fields, const std::vector<Element>& elements,
             Redactor& redactor) {
    Json array = Json::array();
    for (const Element& element : elements) {
        array.push_back(JsonOf(fields.Make(element), redactor));
    }
    return array;
}

Json JsonOf(const Envelope& envelope, bool withResult, Redactor& redactor) {
    Json object;
    object["schema"] = envelope.schema;
    object["schema_version"] = {kSchemaMajor, kSchemaMinor};
    object["tool"] = envelope.tool;
    object["library"] = envelope.library.empty() ? Json(nullptr) : Json(envelope.library);
    // The result comes first: it teaches the redactor the serial numbers that argv may hold.
    Json result = withResult && envelope.result != nullptr ? JsonOf(*envelope.result, redactor)
                                                           : Json(nullptr);
    object["argv"] = Json::array();
    for (const std::string& argument : envelope.argv) {
        object["argv"].push_back(redactor.Clean(argument));
    }
    object["result"] = std::move(result);
    object["messages"] = ArrayOf(kMessageFields, envelope.messages, redactor);
    object["changed"] = envelope.changed;
    object["pending"] = ArrayOf(kPendingFields, envelope.pending, redactor);
    object["exit"] = Number(envelope.exit);
    return object;
}

// Text from outside may not be UTF-8: it is replaced, never a reason to give no document.
std::string Dump(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

Shape EnvelopeShape() {
    static const std::vector<int> kExits = [] {
        std::vector<int> numbers;
        for (const ExitCodeRow& row : ExitCodes()) {
            numbers.push_back(Number(row.code));
        }
        return numbers;
    }();
    const FieldType texts{.array = true};
    const FieldType numbers{.base = FieldType::Base::Integer, .array = true};
    const FieldType exits{.base = FieldType::Base::Integer, .numbers = kExits};
    return {
        {.key = "schema"},
        {.key = "schema_version", .type = numbers},
        {.key = "tool"},
        {.key = "library", .type = kText.OrNull()},
        {.key = "argv", .type = texts},
        {.key = "result",
         .about = "described by the schema named in `schema`; null when there is none",
         .type = kGroup.OrNull()},
        {.key = "messages", .kind = FieldKind::List, .children = kMessageFields.ShapeOfAll()},
        {.key = "changed", .type = kFlag},
        {.key = "pending",
         .about = "what was changed and takes effect only after the action",
         .kind = FieldKind::List,
         .children = kPendingFields.ShapeOfAll()},
        {.key = "exit", .type = exits},
        {.key = "rows",
         .about = "jsonl alone: row lines before this one",
         .type = kInteger.OrAbsent()},
        {.key = "header",
         .about = "jsonl alone: what the result has beside the list that went out as rows",
         .type = kGroup.OrAbsent()},
    };
}

std::string RecordDocument(const Record& record) {
    Redactor nothing(false);
    return Dump(JsonOf(record, nothing), 2);
}

std::string EnvelopeDocument(const Envelope& envelope, Redactor& redactor) {
    return Dump(JsonOf(envelope, true, redactor), 2);
}

std::string EnvelopeLine(const Envelope& envelope, Redactor& redactor) {
    return Dump(JsonOf(envelope, true, redactor), -1);
}

std::string EnvelopeLine(const Envelope& envelope, size_t rows, Redactor& redactor) {
    const bool listWentOut = envelope.result != nullptr && envelope.result->MainList() != nullptr;
    Json object = JsonOf(envelope, !listWentOut, redactor);
    object["rows"] = rows;
    if (listWentOut) {
        if (Json header = HeaderOf(*envelope.result, true, redactor); !header.empty()) {
            object["header"] = std::move(header);
        }
    }
    return Dump(object, -1);
}

std::string RowLine(const std::string& schema, const Record& row, const Record& result,
                    Redactor& redactor) {
    Json object;
    object["schema"] = schema;
    object["row"] = JsonOf(row, redactor);
    if (Json header = HeaderOf(result, false, redactor); !header.empty()) {
        object["header"] = std::move(header);
    }
    return Dump(object, -1);
}

}  // namespace tools
