// What a command reports, built once and printed by output mode: a record is an ordered list of
// fields; a field is a value, a group (a record of its own) or a list of records.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "wwn.h"

namespace tools {

enum class Tone : uint8_t { Plain, Good, Warning, Bad };

// What --redact masks.
enum class Secret : uint8_t { None, Wwn, Serial, Nqn, Host };

// A whole document that stands in another one: nothing in it is masked once more.
struct JsonText {
    std::string text;
};

class Value {
  public:
    Value() = default;  // null: not supported, or not known

    static Value Text(std::string text);
    static Value TextOrNull(std::string text);  // null when empty
    static Value Number(uint64_t number, std::string_view unit = {});
    static Value Flag(bool flag);
    static Value Texts(std::vector<std::string> texts);
    static Value Name(const tools::Wwn& wwn);
    static Value Serial(std::string serial);
    static Value Document(std::string json);

    // What people read instead of the plain form.
    Value&& Shown(std::string text) &&;
    Value&& In(Tone tone) &&;

    using Data = std::variant<std::monostate, bool, uint64_t, std::string, std::vector<std::string>,
                              JsonText>;
    const Data& Content() const { return data_; }
    bool IsNull() const { return std::holds_alternative<std::monostate>(data_); }
    bool IsNumber() const { return std::holds_alternative<uint64_t>(data_); }
    const std::string& Shown() const { return shown_; }  // empty: nothing special
    Tone ToneOf() const { return tone_; }
    Secret SecretOf() const { return secret_; }

  private:
    Data data_;
    std::string shown_;
    Tone tone_ = Tone::Plain;
    Secret secret_ = Secret::None;
};

class Record;

enum class FieldKind : uint8_t { Value, Group, List, Raw };

// How a list appears in text mode. Inner: as a table of the first lists inside its elements, each
// row behind what its element has; an element whose list is empty has a row of its own. Tree: as
// tree.h says.
enum class ListLayout : uint8_t { Table, Sections, Inner, Tree };

struct Field {
    FieldKind kind = FieldKind::Value;
    std::string key;              // JSON key and CSV column, snake_case
    std::string label;            // for people
    std::string column;           // heading in tables; empty keeps the field out of them
    Value value;                  // Value and Raw (a text that text mode prints as it is)
    std::vector<Record> records;  // Group: one; List: any number
    // List: one record that has the columns, its values unused. A null Value: the group that it
    // stands for, where tables have columns for that.
    std::vector<Record> prototype;
    // List: a key that tells its elements apart. In CSV they stand beside each other then, as
    // "readings_voltage_value"; the prototypes are one record for each that there can be.
    std::string spreadBy;
    std::string emptyText;  // List: what text mode says when it is empty
    ListLayout layout = ListLayout::Table;
    bool streamed = false;  // List: its rows were printed as they came
    size_t width = 0;       // least width of the column where rows are printed as they come
};

class Record {
  public:
    // Names the record in text mode ("Port 3"): the heading above its fields.
    std::string title;

    Record& Add(std::string key, std::string label, Value value, std::string column = {},
                size_t width = 0);
    void AddGroup(std::string key, std::string label, Record group);
    Field& AddList(std::string key, std::string label, ListLayout layout, Record prototype,
                   std::string emptyText, std::vector<Record> records);
    void AddRaw(std::string key, std::string text);

    const std::vector<Field>& Fields() const { return fields_; }
    std::vector<Field>& Fields() { return fields_; }
    bool Empty() const { return fields_.empty(); }

    // All lists, those of groups too.
    std::vector<const Field*> Lists() const;

    // The first list: its records are the rows of table, CSV and JSON lines. Null without one.
    const Field* MainList() const;
    Field* MainList();

  private:
    std::vector<Field> fields_;
};

}  // namespace tools
