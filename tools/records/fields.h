// Records declared once: a table of rows says for each field its key, its label, its column, what
// its values are and where they come from. Text, table, CSV and JSON are made from the record that
// the table makes, the JSON Schema and the columns of an empty list from the table itself.
//
//     const Fields<Port> kPortFields = {
//         {"index", "Port", "PORT", kInteger, &Port::index},
//         {"serial", "Adapter serial", "ADAPTER", kSerial.OrNull(), &Port::Serial},
//         {"state", "State", "STATE", Choice(kStates).OrNull(), StateValue},
//         {"link", "Link", kLinkFields},
//         {"luns", "LUNs", kLunFields, &Port::luns, "No LUNs."},
//     };
#pragma once

#include <cstring>
#include <functional>
#include <initializer_list>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "record.h"
#include "text.h"

namespace tools {

// What the values of a field are.
struct FieldType {
    enum class Base : uint8_t { Text, Integer, Flag, Object };

    Base base = Base::Text;
    bool nullable = false;  // null: not supported, or not known
    bool optional = false;  // where there is no value, the field is left out
    bool quiet = false;     // where there is no value, text mode has no line
    bool large = false;     // a number that may have more than 53 bits
    bool array = false;     // any number of such values
    Secret secret = Secret::None;
    uint8_t digits = 0;     // of a number that is written in hexadecimal, as a text
    const char* unit = "";  // of a number, for people
    std::span<const char* const> choices = {};  // of a text: all that it can be
    std::span<const int> numbers = {};          // of a number: the same

    constexpr FieldType OrNull() const {
        FieldType type = *this;
        type.nullable = true;
        return type;
    }
    constexpr FieldType OrAbsent() const {
        FieldType type = *this;
        type.optional = true;
        return type;
    }
    constexpr FieldType Quiet() const {
        FieldType type = *this;
        type.quiet = true;
        return type;
    }
};

inline constexpr FieldType kText{};
inline constexpr FieldType kInteger{FieldType::Base::Integer};
inline constexpr FieldType kCounter{.base = FieldType::Base::Integer, .large = true};
inline constexpr FieldType kFlag{FieldType::Base::Flag};
inline constexpr FieldType kGroup{FieldType::Base::Object};
inline constexpr FieldType kWwn{.secret = Secret::Wwn};
inline constexpr FieldType kSerial{.secret = Secret::Serial};

constexpr FieldType Integer(const char* unit) {
    return {.base = FieldType::Base::Integer, .unit = unit};
}
constexpr FieldType Hexadecimal(uint8_t digits) {
    return {.digits = digits};
}
constexpr FieldType Choice(std::span<const char* const> choices) {
    return {.choices = choices};
}
constexpr FieldType Choices(std::span<const char* const> choices) {
    return {.array = true, .choices = choices};
}

// A field without its source: what schemas and empty tables need.
struct FieldShape {
    const char* key = "";
    const char* label = "";
    const char* column = "";  // empty: not in tables
    const char* about = "";   // for the schema, where key and label do not tell
    FieldKind kind = FieldKind::Value;
    FieldType type = {};
    size_t width = 0;                    // least width where rows are printed as they come
    std::vector<FieldShape> children{};  // of a group, or of a list's elements
    ListLayout layout = ListLayout::Table;
    const char* emptyText = "";
    const char* spreadBy = "";  // of a list: as of a Field; the choices of that key tell how many
};
using Shape = std::vector<FieldShape>;

// A record with these columns and no values.
Record PrototypeOf(const Shape& shape);

// Adds the list that the shape describes.
void AddListOf(const FieldShape& shape, std::vector<Record> records, Record& record);

// The JSON Schema (draft 2020-12) of an object of this shape, as a document with a final newline.
std::string SchemaText(const char* name, const char* title, const Shape& shape);

// Whatever a getter gives, as a value of the type.
inline Value ToValue(const FieldType&, Value value) {
    return value;
}
inline Value ToValue(const FieldType&, const Wwn& wwn) {
    return Value::Name(wwn);
}
inline Value ToValue(const FieldType&, bool flag) {
    return Value::Flag(flag);
}
inline Value ToValue(const FieldType& type, std::string text) {
    if (type.secret == Secret::Serial) {
        return Value::Serial(std::move(text));
    }
    return type.nullable || type.optional ? Value::TextOrNull(std::move(text))
                                          : Value::Text(std::move(text));
}
inline Value ToValue(const FieldType&, std::vector<std::string> texts) {
    return Value::Texts(std::move(texts));
}
inline Value ToValue(const FieldType& type, const char* text) {
    return text != nullptr ? ToValue(type, std::string(text)) : Value();
}
template <class Number>
requires std::is_integral_v<Number> Value ToValue(const FieldType& type, Number number) {
    const auto wide = static_cast<uint64_t>(number);
    return type.digits != 0 ? Value::Text(Hex(wide, type.digits)) : Value::Number(wide, type.unit);
}
template <class T>
Value ToValue(const FieldType& type, const std::optional<T>& value) {
    return value ? ToValue(type, *value) : Value();
}

template <class T>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

// What a getter gives of a source.
template <class Get, class Source>
using Gotten = std::remove_cvref_t<std::invoke_result_t<Get, const Source&>>;

// Whether that is a part which may not be there.
template <class Get, class Source, class Part>
concept GivesMaybe = std::is_pointer_v<Gotten<Get, Source>> ||
    std::is_same_v<Gotten<Get, Source>, std::optional<Part>>;

template <class Source>
class Fields;

// A row without the type of its source, so that a row costs the compiler little: the getter is a
// few bytes, and one function knows what they are.
class AnyFieldRow {
  public:
    void AppendShape(Shape& shape) const;
    void Add(const void* source, Record& record) const { add_(*this, source, record); }

    // For the functions that add: the row's own shape, and that with its children.
    const FieldShape& OwnShape() const { return shape_; }
    FieldShape WholeShape() const;
    void AddValue(Value value, Record& record) const;
    void AddRawText(const std::string& text, Record& record) const;
    // What the getter gives of the source.
    template <class Source, class Get>
    decltype(auto) Of(const void* source) const {
        alignas(Get) unsigned char bytes[sizeof(Get)];
        std::memcpy(bytes, get_, sizeof bytes);
        return std::invoke(*std::launder(reinterpret_cast<const Get*>(bytes)),
                           *static_cast<const Source*>(source));
    }
    // The table of a group, a list or a splice.
    template <class Part>
    const Fields<Part>& Table() const {
        return *static_cast<const Fields<Part>*>(fields_);
    }

  protected:
    using AddFunction = void (*)(const AnyFieldRow& row, const void* source, Record& record);

    AnyFieldRow(FieldShape shape, AddFunction add) : shape_(std::move(shape)), add_(add) {}

    template <class Get>
    void Keep(Get get) {
        static_assert(std::is_trivially_copyable_v<Get> && sizeof get <= sizeof get_);
        std::memcpy(get_, &get, sizeof get);
    }

    // Nothing but the table's address: it may be a constant of another source, and not made yet.
    template <class Part>
    void KeepTable(const Fields<Part>& fields) {
        fields_ = &fields;
        shapeOfFields_ = [](const void* table) {
            return static_cast<const Fields<Part>*>(table)->ShapeOfAll();
        };
    }

    FieldShape shape_;
    bool spliced_ = false;
    bool mayLack_ = false;  // a spliced part that need not be there

  private:
    const void* fields_ = nullptr;
    Shape (*shapeOfFields_)(const void* table) = nullptr;
    AddFunction add_;
    unsigned char get_[32] = {};
};

// One row of a table.
template <class Source>
class FieldRow : public AnyFieldRow {
  public:
    // A value. get: a member, a member function or a function of the source.
    template <class Get>
    FieldRow(const char* key, const char* label, const char* column, FieldType type, Get get,
             const char* about = "", size_t width = 0)
        : AnyFieldRow({.key = key,
                       .label = label,
                       .column = column,
                       .about = about,
                       .type = type,
                       .width = width},
                      &AddOne<Get>) {
        Keep(get);
    }
    template <class Get>
    requires std::is_invocable_v<Get, const Source&> FieldRow(const char* key, const char* label,
                                                              FieldType type, Get get,
                                                              const char* about = "")
        : FieldRow(key, label, "", type, get, about) {}

    // A group of fields of the same source.
    FieldRow(const char* key, const char* label, const Fields<Source>& fields)
        : AnyFieldRow({.key = key, .label = label, .kind = FieldKind::Group}, &AddOwnGroup) {
        KeepTable(fields);
    }

    // A group of something that the source has, or may have: get gives a pointer or an
    // std::optional part. Without one the group is left out, or is null itself (kGroup.OrNull()).
    template <class Part, class Get>
    requires GivesMaybe<Get, Source, Part> FieldRow(const char* key, const char* label,
                                                    const Fields<Part>& fields, Get get,
                                                    const char* about = "",
                                                    FieldType type = kGroup.OrAbsent())
        : AnyFieldRow(
              {.key = key, .label = label, .about = about, .kind = FieldKind::Group, .type = type},
              &AddGroup<Part, Get>) {
        Keep(get);
        KeepTable(fields);
    }

    // The fields of a part, among the source's own. get gives the part, a pointer to it, or an
    // std::optional one, without which they are left out.
    template <class Part, class Get>
    FieldRow(const Fields<Part>& fields, Get get) : AnyFieldRow({}, &AddPart<Part, Get>) {
        Keep(get);
        KeepTable(fields);
        spliced_ = true;
        mayLack_ = kMayLack<Part, Get>;
    }

    // A text that text mode prints as it is.
    template <class Get>
    static FieldRow Raw(const char* key, FieldType type, Get get, const char* about = "") {
        return FieldRow(
            FieldShape{.key = key, .about = about, .kind = FieldKind::Raw, .type = type},
            &AddText<Get>, get);
    }

    // A list. get gives a range of elements, or of pointers to them; where it gives an
    // std::optional range, the list may be left out.
    template <class Element, class Get>
    requires(!GivesMaybe<Get, Source, Element>)
        FieldRow(const char* key, const char* label, const Fields<Element>& fields, Get get,
                 ListLayout layout = ListLayout::Table, const char* emptyText = "",
                 const char* about = "", const char* spreadBy = "")
        : AnyFieldRow({.key = key,
                       .label = label,
                       .about = about,
                       .kind = FieldKind::List,
                       .layout = layout,
                       .emptyText = emptyText,
                       .spreadBy = spreadBy},
                      &AddList<Element, Get>) {
        Keep(get);
        KeepTable(fields);
        shape_.type.optional = kIsOptional<Gotten<Get, Source>>;
    }

    // The same as a table, with what text mode says when it is empty.
    template <class Element, class Get>
    requires(!GivesMaybe<Get, Source, Element>)
        FieldRow(const char* key, const char* label, const Fields<Element>& fields, Get get,
                 const char* emptyText, const char* about = "", const char* spreadBy = "")
        : FieldRow(key, label, fields, get, ListLayout::Table, emptyText, about, spreadBy) {}

  private:
    template <class Get>
    FieldRow(FieldShape shape, AddFunction add, Get get) : AnyFieldRow(std::move(shape), add) {
        Keep(get);
    }

    // Whether a spliced part may be missing; an optional that is the part itself may not.
    template <class Part, class Get>
    static constexpr bool kMayLack =
        kIsOptional<Gotten<Get, Source>> && !std::is_same_v<Gotten<Get, Source>, Part>;

    template <class Get>
    static void AddOne(const AnyFieldRow& row, const void* source, Record& record) {
        row.AddValue(ToValue(row.OwnShape().type, row.Of<Source, Get>(source)), record);
    }

    template <class Get>
    static void AddText(const AnyFieldRow& row, const void* source, Record& record) {
        row.AddRawText(row.Of<Source, Get>(source), record);
    }

    static void AddOwnGroup(const AnyFieldRow& row, const void* source, Record& record) {
        record.AddGroup(row.OwnShape().key, row.OwnShape().label,
                        row.Table<Source>().Make(*static_cast<const Source*>(source)));
    }

    template <class Part, class Get>
    static void AddGroup(const AnyFieldRow& row, const void* source, Record& record) {
        if (const auto& part = row.Of<Source, Get>(source)) {
            record.AddGroup(row.OwnShape().key, row.OwnShape().label,
                            row.Table<Part>().Make(*part));
        } else if (row.OwnShape().type.nullable) {
            record.Add(row.OwnShape().key, "", Value());
            record.Fields().back().prototype = {PrototypeOf(row.WholeShape().children)};
        }
    }

    template <class Part, class Get>
    static void AddPart(const AnyFieldRow& row, const void* source, Record& record) {
        const Fields<Part>& fields = row.Table<Part>();
        decltype(auto) part = row.Of<Source, Get>(source);
        if constexpr (std::is_pointer_v<Gotten<Get, Source>>) {
            fields.AddTo(*part, record);
        } else if constexpr (kMayLack<Part, Get>) {
            if (part) {
                fields.AddTo(*part, record);
            }
        } else {
            fields.AddTo(part, record);
        }
    }

    template <class Element, class Get>
    static void AddList(const AnyFieldRow& row, const void* source, Record& record) {
        const auto& given = row.Of<Source, Get>(source);
        const auto* range = [&] {
            if constexpr (kIsOptional<Gotten<Get, Source>>) {
                return given ? &*given : nullptr;
            } else {
                return &given;
            }
        }();
        if (range == nullptr) {
            return;
        }
        std::vector<Record> records;
        for (const auto& element : *range) {
            if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(element)>>) {
                records.push_back(row.Table<Element>().Make(*element));
            } else {
                records.push_back(row.Table<Element>().Make(element));
            }
        }
        AddListOf(row.WholeShape(), std::move(records), record);
    }
};

// A table without the type of its source.
class AnyFields {
  public:
    Shape ShapeOfAll() const;
    Record Prototype() const { return PrototypeOf(ShapeOfAll()); }

  protected:
    template <class Rows>
    explicit AnyFields(const Rows& rows) : rows_(rows.begin(), rows.end()) {}

    void AddAll(const void* source, Record& record) const;

  private:
    std::vector<AnyFieldRow> rows_;
};

// A table. It stays where it is: others may refer to it.
template <class Source>
class Fields : public AnyFields {
  public:
    Fields(std::initializer_list<FieldRow<Source>> rows) : AnyFields(rows) {}
    Fields(std::vector<FieldRow<Source>> rows) : AnyFields(rows) {}

    // A record of everything with a heading of its own in text mode.
    Fields(std::string (*title)(const Source&), std::initializer_list<FieldRow<Source>> rows)
        : AnyFields(rows), title_(title) {}

    Record Make(const Source& source) const {
        Record record;
        if (title_ != nullptr) {
            record.title = title_(source);
        }
        AddAll(&source, record);
        return record;
    }
    void AddTo(const Source& source, Record& record) const { AddAll(&source, record); }

  private:
    std::string (*title_)(const Source&) = nullptr;
};

// The fields of a result that is one list: of the table's own elements, or of others that stand for
// them (pointers).
template <class Given, class Element>
using RowsOr = std::conditional_t<std::is_void_v<Given>, std::vector<Element>, Given>;

template <class Rows = void, class Element>
Fields<RowsOr<Rows, Element>> ListOf(const char* key, const char* label,
                                     const Fields<Element>& fields,
                                     ListLayout layout = ListLayout::Table,
                                     const char* emptyText = "", const char* about = "") {
    return {{key, label, fields, std::identity(), layout, emptyText, about}};
}
template <class Rows = void, class Element>
Fields<RowsOr<Rows, Element>> ListOf(const char* key, const char* label,
                                     const Fields<Element>& fields, const char* emptyText,
                                     const char* about = "") {
    return {{key, label, fields, std::identity(), emptyText, about}};
}

// The shape of a table, or of one that a function gives, for a row of the command table:
// .result = ShapeOf<kPortFields>.
template <auto& fields>
Shape ShapeOf() {
    if constexpr (std::is_invocable_v<decltype(fields)>) {
        return fields().ShapeOfAll();
    } else {
        return fields.ShapeOfAll();
    }
}

// A source that fills step by step. What it holds when it goes becomes the result, so that a
// command that ends with an error reports what it has found out until then.
template <class Source>
class GrowingResult : public Source {
  public:
    GrowingResult(Record& into, const Fields<Source>& fields, Source begin = {})
        : Source(std::move(begin)), into_(into), fields_(fields) {}
    ~GrowingResult() { into_ = fields_.Make(*this); }
    GrowingResult(const GrowingResult&) = delete;
    GrowingResult& operator=(const GrowingResult&) = delete;

  private:
    Record& into_;
    const Fields<Source>& fields_;
};

}  // namespace tools
