#include "record.h"

#include <utility>

#include "text.h"

namespace tools {

Value Value::Text(std::string text) {
    Value value;
    value.shown_ = text;
    value.data_ = std::move(text);
    return value;
}

Value Value::TextOrNull(std::string text) {
    return text.empty() ? Value() : Text(std::move(text));
}

Value Value::Number(uint64_t number, std::string_view unit) {
    Value value;
    value.data_ = number;
    value.shown_ = std::to_string(number);
    if (!unit.empty()) {
        value.shown_ += ' ';
        value.shown_ += unit;
    }
    return value;
}

Value Value::Flag(bool flag) {
    Value value;
    value.data_ = flag;
    value.shown_ = flag ? "yes" : "no";
    return value;
}

Value Value::Texts(std::vector<std::string> texts) {
    Value value;
    value.shown_ = texts.empty() ? "-" : TextsJoined(texts, ",");
    value.data_ = std::move(texts);
    return value;
}

Value Value::Name(const tools::Wwn& wwn) {
    Value value;
    value.data_ = wwn.Digits();
    value.shown_ = wwn.Colons();
    value.secret_ = Secret::Wwn;
    return value;
}

Value Value::Serial(std::string serial) {
    Value value = TextOrNull(std::move(serial));
    value.secret_ = Secret::Serial;
    return value;
}

Value Value::Document(std::string json) {
    Value value;
    value.data_ = JsonText{std::move(json)};
    return value;
}

Value&& Value::Shown(std::string text) && {
    shown_ = std::move(text);
    return std::move(*this);
}

Value&& Value::In(Tone tone) && {
    tone_ = tone;
    return std::move(*this);
}

Record& Record::Add(std::string key, std::string label, Value value, std::string column,
                    size_t width) {
    Field& field = fields_.emplace_back();
    field.key = std::move(key);
    field.label = std::move(label);
    field.column = std::move(column);
    field.value = std::move(value);
    field.width = width;
    return *this;
}

void Record::AddGroup(std::string key, std::string label, Record group) {
    Field& field = fields_.emplace_back();
    field.kind = FieldKind::Group;
    field.key = std::move(key);
    field.label = std::move(label);
    field.records.push_back(std::move(group));
}

Field& Record::AddList(std::string key, std::string label, ListLayout layout, Record prototype,
                       std::string emptyText, std::vector<Record> records) {
    Field& field = fields_.emplace_back();
    field.kind = FieldKind::List;
    field.key = std::move(key);
    field.label = std::move(label);
    field.layout = layout;
    field.prototype.push_back(std::move(prototype));
    field.emptyText = std::move(emptyText);
    field.records = std::move(records);
    return field;
}

void Record::AddRaw(std::string key, std::string text) {
    Field& field = fields_.emplace_back();
    field.kind = FieldKind::Raw;
    field.key = std::move(key);
    field.value = Value::Text(std::move(text));
}

std::vector<const Field*> Record::Lists() const {
    std::vector<const Field*> lists;
    for (const Field& field : fields_) {
        if (field.kind == FieldKind::List) {
            lists.push_back(&field);
        } else if (field.kind == FieldKind::Group) {
            const std::vector<const Field*> inner = field.records.front().Lists();
            lists.insert(lists.end(), inner.begin(), inner.end());
        }
    }
    return lists;
}

const Field* Record::MainList() const {
    for (const Field& field : fields_) {
        if (field.kind == FieldKind::List) {
            return &field;
        }
    }
    return nullptr;
}

Field* Record::MainList() {
    return const_cast<Field*>(static_cast<const Record*>(this)->MainList());
}

}  // namespace tools
