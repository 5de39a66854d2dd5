#include "fields.h"

#include <nlohmann/json.hpp>

namespace tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kTypeNames[] = {"string", "integer", "boolean", "object"};

Json ObjectOf(const Shape& shape);

Json SchemaOf(FieldType type) {
    Json schema = Json::object();
    if (type.array) {
        const Json name = type.nullable ? Json({"array", "null"}) : Json("array");
        type.array = type.nullable = false;
        return {{"type", name}, {"items", SchemaOf(type)}};
    }
    if (!type.choices.empty() || !type.numbers.empty()) {
        schema["enum"] = type.choices.empty() ? Json(type.numbers) : Json(type.choices);
        if (type.nullable) {
            schema["enum"].push_back(nullptr);
        }
        return schema;
    }
    const char* const name = kTypeNames[static_cast<size_t>(type.base)];
    schema["type"] = type.nullable ? Json({name, "null"}) : Json(name);
    return schema;
}

Json SchemaOf(const FieldShape& field) {
    Json schema;
    switch (field.kind) {
        case FieldKind::Value:
        case FieldKind::Raw:
            schema = SchemaOf(field.type);
            break;
        case FieldKind::Group:
            schema = ObjectOf(field.children);
            if (field.type.nullable) {
                schema["type"] = {"object", "null"};
            }
            break;
        case FieldKind::List:
            schema["type"] = "array";
            schema["items"] = ObjectOf(field.children);
            break;
    }
    if (*field.about != '\0') {
        schema["description"] = field.about;
    }
    return schema;
}

Json ObjectOf(const Shape& shape) {
    Json required = Json::array();
    Json properties = Json::object();
    for (const FieldShape& field : shape) {
        if (!field.type.optional) {
            required.push_back(field.key);
        }
        properties[field.key] = SchemaOf(field);
        if (field.type.large) {
            // Beside numbers that readers who keep them as doubles would lose digits of.
            properties[std::string(field.key) + "_s"] = {{"type", "string"}};
        }
    }
    return {{"type", "object"},
            {"required", std::move(required)},
            {"additionalProperties", false},
            {"properties", std::move(properties)}};
}

}  // namespace

Record PrototypeOf(const Shape& shape) {
    Record record;
    for (const FieldShape& field : shape) {
        switch (field.kind) {
            case FieldKind::Value:
            case FieldKind::Raw:
                record.Add(field.key, field.label, Value(), field.column, field.width);
                break;
            case FieldKind::Group:
                record.AddGroup(field.key, field.label, PrototypeOf(field.children));
                break;
            case FieldKind::List:
                AddListOf(field, {}, record);
                break;
        }
    }
    return record;
}

void AddListOf(const FieldShape& shape, std::vector<Record> records, Record& record) {
    Field& list = record.AddList(shape.key, shape.label, shape.layout, PrototypeOf(shape.children),
                                 shape.emptyText, std::move(records));
    list.spreadBy = shape.spreadBy;
    for (size_t place = 0; place < shape.children.size(); ++place) {
        if (list.spreadBy == shape.children[place].key) {
            list.prototype.clear();
            for (const char* const choice : shape.children[place].type.choices) {
                list.prototype.push_back(PrototypeOf(shape.children));
                list.prototype.back().Fields()[place].value = Value::Text(choice);
            }
        }
    }
}

FieldShape AnyFieldRow::WholeShape() const {
    FieldShape shape = shape_;
    if (shapeOfFields_ != nullptr) {
        shape.children = shapeOfFields_(fields_);
    }
    return shape;
}

void AnyFieldRow::AppendShape(Shape& shape) const {
    FieldShape whole = WholeShape();
    if (!spliced_) {
        shape.push_back(std::move(whole));
        return;
    }
    for (FieldShape& field : whole.children) {
        field.type.optional |= mayLack_;
        shape.push_back(std::move(field));
    }
}

void AnyFieldRow::AddValue(Value value, Record& record) const {
    const bool silent = value.IsNull() && shape_.type.quiet;
    if (!value.IsNull() || !shape_.type.optional) {
        record.Add(shape_.key, silent ? "" : shape_.label, std::move(value), shape_.column,
                   shape_.width);
    }
}

void AnyFieldRow::AddRawText(const std::string& text, Record& record) const {
    if (!text.empty() || !shape_.type.optional) {
        record.AddRaw(shape_.key, text);
    }
}

Shape AnyFields::ShapeOfAll() const {
    Shape shape;
    for (const AnyFieldRow& row : rows_) {
        row.AppendShape(shape);
    }
    return shape;
}

void AnyFields::AddAll(const void* source, Record& record) const {
    for (const AnyFieldRow& row : rows_) {
        row.Add(source, record);
    }
}

std::string SchemaText(const char* name, const char* title, const Shape& shape) {
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                   {"$id", std::string(name) + ".json"},
                   {"title", title}};
    schema.update(ObjectOf(shape));
    return schema.dump(2) + "\n";
}

}  // namespace tools
