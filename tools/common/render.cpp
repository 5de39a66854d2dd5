#include "render.h"

#include <algorithm>

#include "redaction.h"
#include "text.h"

namespace tools {
namespace {

constexpr const char* kNothing = "-";
constexpr std::string_view kGap = "  ";
constexpr const char* kReset = "\x1b[0m";
constexpr const char* kBold = "\x1b[1m";

const char* ColorOf(Tone tone) {
    constexpr const char* kColors[] = {"", "\x1b[32m", "\x1b[33m", "\x1b[31m"};
    return kColors[static_cast<int>(tone)];
}

std::string Painted(const std::string& text, const char* color, bool enabled) {
    return enabled && *color != '\0' ? color + text + kReset : text;
}

std::string Heading(const std::string& text, const RenderStyle& style) {
    return Painted(text, kBold, style.color);
}

struct Cell {
    std::string text;
    Tone tone = Tone::Plain;
    bool right = false;
};

struct Column {
    std::string path;
    std::string heading;
    size_t width;
};

std::vector<Column> ColumnsOf(const Record& prototype) {
    std::vector<Column> columns;
    for (const FlatField& flat : Flatten(prototype)) {
        if (!flat.field->column.empty()) {
            columns.push_back({flat.path, flat.field->column, flat.field->width});
        }
    }
    return columns;
}

// The record's cells in the columns' order; a row without such a field has an empty cell.
std::vector<Cell> CellsOf(const Record& row, const std::vector<Column>& columns,
                          Redactor& redactor) {
    const std::vector<FlatField> fields = Flatten(row);
    std::vector<Cell> cells;
    for (const Column& column : columns) {
        Cell& cell = cells.emplace_back();
        for (const FlatField& flat : fields) {
            if (flat.path == column.path) {
                const Value& value = flat.field->value;
                cell = {ShownText(value, redactor), value.ToneOf(), value.IsNumber()};
                break;
            }
        }
    }
    return cells;
}

std::string PadLeft(const std::string& text, size_t width) {
    const size_t length = DisplayWidth(text);
    return length < width ? std::string(width - length, ' ') + text : text;
}

std::string PadRight(const std::string& text, size_t width) {
    const size_t length = DisplayWidth(text);
    return length < width ? text + std::string(width - length, ' ') : text;
}

std::string TableLine(const std::vector<Cell>& cells, const std::vector<size_t>& widths,
                      const RenderStyle& style) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        const Cell& cell = cells[i];
        const bool last = i + 1 == cells.size();
        // Colour stays outside the padding, so that widths count what is seen.
        const std::string padded = cell.right ? PadLeft(cell.text, widths[i])
                                   : last     ? cell.text
                                              : PadRight(cell.text, widths[i]);
        line += Painted(padded, ColorOf(cell.tone), style.color);
        line += last ? "\n" : kGap;
    }
    return line;
}

std::vector<Cell> HeadingCells(const std::vector<Column>& columns) {
    std::vector<Cell> cells;
    for (const Column& column : columns) {
        cells.push_back({column.heading, Tone::Plain, false});
    }
    return cells;
}

std::string Rows(const std::vector<Column>& columns, const std::vector<Record>& records,
                 const RenderStyle& style) {
    std::vector<std::vector<Cell>> lines{HeadingCells(columns)};
    for (const Record& record : records) {
        lines.push_back(CellsOf(record, columns, *style.redactor));
    }
    std::vector<size_t> widths(columns.size(), 0);
    for (const std::vector<Cell>& cells : lines) {
        for (size_t i = 0; i < cells.size(); ++i) {
            widths[i] = std::max(widths[i], DisplayWidth(cells[i].text));
        }
    }
    // A heading stands over its numbers: to the right.
    for (size_t i = 0; lines.size() > 1 && i < columns.size(); ++i) {
        lines[0][i].right = std::any_of(lines.begin() + 1, lines.end(),
                                        [i](const auto& line) { return line[i].right; });
    }
    std::string text;
    for (const std::vector<Cell>& cells : lines) {
        std::string line = TableLine(cells, widths, style);
        if (&cells == &lines.front()) {
            line.pop_back();
            line = Heading(line, style) + "\n";
        }
        text += line;
    }
    return text;
}

size_t LabelWidth(const Record& record, size_t indent) {
    size_t width = 0;
    for (const Field& field : record.Fields()) {
        if (field.kind == FieldKind::Value) {
            width = std::max(width, indent + DisplayWidth(field.label));
        } else if (field.kind == FieldKind::Group) {
            width = std::max(width, LabelWidth(field.records.front(), indent + 2));
        }
    }
    return width;
}

std::string Indented(const std::string& text, size_t indent) {
    std::string result;
    size_t start = 0;
    while (start < text.size()) {
        const size_t end = std::min(text.find('\n', start), text.size() - 1);
        if (text[start] != '\n') {
            result.append(indent, ' ');
        }
        result += text.substr(start, end + 1 - start);
        start = end + 1;
    }
    return result;
}

std::string Sections(const Record& record, size_t indent, size_t width, const RenderStyle& style);

std::string ListText(const Field& field, const RenderStyle& style) {
    if (field.streamed) {
        return {};
    }
    if (field.records.empty()) {
        return field.emptyText.empty() ? std::string() : field.emptyText + "\n";
    }
    if (field.layout == ListLayout::Table) {
        return Rows(ColumnsOf(field.prototype.front()), field.records, style);
    }
    std::string text;
    for (const Record& record : field.records) {
        if (!text.empty()) {
            text += '\n';
        }
        if (!record.title.empty()) {
            text += Heading(style.redactor->Clean(record.title), style) + "\n";
        }
        text += Sections(record, 2, LabelWidth(record, 2), style);
    }
    return text;
}

// "Label  value" lines; a group is a heading with its lines below, a list inside follows them.
std::string Sections(const Record& record, size_t indent, size_t width, const RenderStyle& style) {
    std::string text;
    const std::string margin(indent, ' ');
    for (const Field& field : record.Fields()) {
        switch (field.kind) {
            case FieldKind::Value:
                if (field.label.empty()) {
                    break;
                }
                text += margin + PadRight(field.label, width - indent) + "  " +
                        Painted(ShownText(field.value, *style.redactor),
                                ColorOf(field.value.ToneOf()), style.color) +
                        "\n";
                break;
            case FieldKind::Group:
                text += (text.empty() && indent == 0 ? "" : "\n") + margin +
                        Heading(field.label, style) + "\n" +
                        Sections(field.records.front(), indent + 2, width, style);
                break;
            case FieldKind::List:
                text += (text.empty() ? "" : "\n") + Indented(ListText(field, style), indent);
                break;
            case FieldKind::Raw:
                text += std::get<std::string>(field.value.Content());
                break;
        }
    }
    return text;
}

std::string FieldsAsTable(const Record& record, const RenderStyle& style) {
    std::vector<Record> rows;
    Record prototype;
    prototype.Add("field", "", Value(), "FIELD").Add("value", "", Value(), "VALUE");
    for (const FlatField& flat : Flatten(record)) {
        Record& row = rows.emplace_back();
        row.Add("field", "", Value::Text(flat.path)).Add("value", "", flat.field->value);
    }
    return Rows(ColumnsOf(prototype), rows, style);
}

std::vector<Column> StreamColumns(const Record& prototype) {
    std::vector<Column> columns = ColumnsOf(prototype);
    for (Column& column : columns) {
        column.width = std::max(column.width, DisplayWidth(column.heading));
    }
    return columns;
}

std::string StreamCells(const std::vector<Cell>& cells, const std::vector<Column>& columns,
                        const RenderStyle& style) {
    std::vector<size_t> widths;
    for (const Column& column : columns) {
        widths.push_back(column.width);
    }
    return TableLine(cells, widths, style);
}

void FlattenInto(const Record& record, const std::string& prefix, std::vector<FlatField>& into) {
    for (const Field& field : record.Fields()) {
        if (field.kind == FieldKind::Value || field.kind == FieldKind::Raw) {
            into.push_back({prefix + field.key, &field});
        } else if (field.kind == FieldKind::Group) {
            FlattenInto(field.records.front(), prefix + field.key + "_", into);
        }
    }
}

std::string CsvText(const std::vector<std::string>& cells) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        line += (i == 0 ? "" : ",") + CsvCell(cells[i]);
    }
    return line + "\r\n";
}

}  // namespace

std::vector<FlatField> Flatten(const Record& record) {
    std::vector<FlatField> fields;
    FlattenInto(record, "", fields);
    return fields;
}

std::string ShownText(const Value& value, Redactor& redactor) {
    if (value.Shown().empty()) {
        return value.IsNull() ? kNothing : "";
    }
    return value.SecretOf() == Secret::None ? redactor.Clean(value.Shown())
                                            : redactor.Mask(value.SecretOf(), value.Shown());
}

std::string RenderText(const Record& result, const RenderStyle& style) {
    return Sections(result, 0, LabelWidth(result, 0), style);
}

std::string RenderTable(const Record& result, const RenderStyle& style) {
    if (const Field* list = result.MainList()) {
        return list->streamed ? std::string()
                              : Rows(ColumnsOf(list->prototype.front()), list->records, style);
    }
    return FieldsAsTable(result, style);
}

std::string RenderCsv(const Record& result, const RenderStyle& style) {
    const Field* list = result.MainList();
    if (list == nullptr) {
        return CsvHeader(result) + CsvLine(result, *style.redactor);
    }
    if (list->streamed) {
        return {};
    }
    std::string text = CsvHeader(list->prototype.front());
    for (const Record& record : list->records) {
        text += CsvLine(record, *style.redactor);
    }
    return text;
}

std::string CsvHeader(const Record& prototype) {
    std::vector<std::string> names;
    for (const FlatField& flat : Flatten(prototype)) {
        names.push_back(flat.path);
    }
    return CsvText(names);
}

std::string CsvLine(const Record& row, Redactor& redactor) {
    struct Plain {
        std::string operator()(std::monostate) const { return {}; }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(uint64_t number) const { return std::to_string(number); }
        std::string operator()(const std::string& text) const { return text; }
    };
    std::vector<std::string> cells;
    for (const FlatField& flat : Flatten(row)) {
        const Value& value = flat.field->value;
        const std::string plain = std::visit(Plain(), value.Content());
        cells.push_back(value.SecretOf() == Secret::None ? redactor.Clean(plain)
                                                         : redactor.Mask(value.SecretOf(), plain));
    }
    return CsvText(cells);
}

std::string CsvCell(const std::string& text) {
    const bool blankAtEdge = !text.empty() && (text.front() == ' ' || text.back() == ' ');
    if (!blankAtEdge && text.find_first_of("\",\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

std::string StreamHeader(const Record& prototype, const RenderStyle& style) {
    const std::vector<Column> columns = StreamColumns(prototype);
    std::string line = StreamCells(HeadingCells(columns), columns, style);
    line.pop_back();
    return Heading(line, style) + "\n";
}

std::string StreamLine(const Record& row, const RenderStyle& style) {
    const std::vector<Column> columns = StreamColumns(row);
    return StreamCells(CellsOf(row, columns, *style.redactor), columns, style);
}

}  // namespace tools
