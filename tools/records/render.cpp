#include "render.h"

#include <algorithm>

#include "flatten.h"
#include "redaction.h"
#include "table.h"
#include "text.h"
#include "tree.h"

namespace tools {
namespace {

constexpr const char* kNothing = "-";
constexpr const char* kReset = "\x1b[0m";
constexpr const char* kBold = "\x1b[1m";

const char* ColorOf(Tone tone) {
    constexpr const char* kColors[] = {"", "\x1b[32m", "\x1b[33m", "\x1b[31m"};
    return kColors[static_cast<int>(tone)];
}

std::string Colored(const std::string& text, const char* color, bool enabled) {
    return enabled && *color != '\0' ? color + text + kReset : text;
}

struct Column {
    std::string path;
    std::string heading;
    size_t width;
};

std::vector<Column> ColumnsOf(const Record& prototype) {
    std::vector<Column> columns;
    for (const FlatField& flat : FlattenBesideLists(prototype)) {
        if (!flat.field->column.empty()) {
            columns.push_back({flat.path, flat.field->column, flat.field->width});
        }
    }
    return columns;
}

// The record's cells in the columns' order; a row without such a field has an empty cell.
std::vector<TableCell> CellsOf(const Record& row, const std::vector<Column>& columns,
                               Redactor& redactor) {
    const std::vector<FlatField> fields = FlattenBesideLists(row);
    std::vector<TableCell> cells;
    for (const Column& column : columns) {
        TableCell& cell = cells.emplace_back();
        for (const FlatField& flat : fields) {
            if (flat.path == column.path) {
                const Value& value = flat.field->value;
                cell = {ShownText(value, redactor), value.ToneOf(), value.IsNumber(),
                        value.IsNumber() || value.SecretOf() == Secret::Wwn};
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

std::string TableLine(const std::vector<TableCell>& cells, const TableLayout& layout,
                      const RenderStyle& style) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        const TableCell& cell = cells[i];
        const bool last = i + 1 == cells.size();
        const size_t width = layout.widths[i];
        const std::string text =
            style.width == 0 || cell.whole ? cell.text : Shortened(cell.text, width);
        // Colour stays outside the padding, so that widths count what is seen.
        const std::string padded = cell.right ? PadLeft(text, width)
                                   : last     ? text
                                              : PadRight(text, width);
        line += Painted(padded, cell.tone, style);
        line += last ? "\n" : std::string(layout.gap, ' ');
    }
    return line;
}

std::vector<TableCell> HeadingCells(const std::vector<Column>& columns) {
    std::vector<TableCell> cells;
    for (const Column& column : columns) {
        cells.push_back({column.heading, Tone::Plain, false});
    }
    return cells;
}

std::string Rows(const std::vector<Column>& columns, const std::vector<Record>& records,
                 const RenderStyle& style) {
    std::vector<std::vector<TableCell>> lines{HeadingCells(columns)};
    for (const Record& record : records) {
        lines.push_back(CellsOf(record, columns, *style.redactor));
    }
    const TableLayout layout = LayOut(lines, style.width);
    // A heading stands over its numbers: to the right.
    for (size_t i = 0; lines.size() > 1 && i < columns.size(); ++i) {
        lines[0][i].right = std::any_of(lines.begin() + 1, lines.end(),
                                        [i](const auto& line) { return line[i].right; });
    }
    std::string text;
    for (const std::vector<TableCell>& cells : lines) {
        std::string line = TableLine(cells, layout, style);
        if (&cells == &lines.front()) {
            line.pop_back();
            line = Heading(line, style) + "\n";
        }
        text += line;
    }
    return text;
}

// The lists of this key inside the elements as one table, each row behind these columns of its
// element. all: an element without any has a row, too. Empty without rows.
std::string InnerRows(const Field& list, const Field& inner, std::vector<Column> columns, bool all,
                      const RenderStyle& style) {
    const size_t own = columns.size();
    for (Column& column : ColumnsOf(inner.prototype.front())) {
        column.path = inner.key + "_" + column.path;
        columns.push_back(std::move(column));
    }
    std::vector<Record> rows;
    for (const Record& element : list.records) {
        Record head;
        for (const FlatField& flat : FlattenBesideLists(element)) {
            head.Add(flat.path, "", flat.field->value);
        }
        const auto add = [&](const Record& record) {
            rows.push_back(head);
            rows.back().AddGroup(inner.key, "", record);
        };
        const std::vector<const Field*> lists = element.Lists();
        const auto same = std::find_if(lists.begin(), lists.end(),
                                       [&](const Field* field) { return field->key == inner.key; });
        if (same != lists.end() && !(*same)->records.empty()) {
            std::for_each((*same)->records.begin(), (*same)->records.end(), add);
        } else if (all) {
            add(inner.prototype.front());
        }
    }
    return rows.empty() || columns.size() == own ? std::string() : Rows(columns, rows, style);
}

// A list of the layout Inner.
std::string InnerTable(const Field& list, const RenderStyle& style) {
    const Record& prototype = list.prototype.front();
    return InnerRows(list, *prototype.Lists().front(), ColumnsOf(prototype), true, style);
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

// The style of what stands behind a margin.
RenderStyle Within(const RenderStyle& style, size_t indent) {
    RenderStyle inner = style;
    inner.width -= std::min(indent, inner.width);
    return inner;
}

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
    if (field.layout == ListLayout::Inner) {
        return InnerTable(field, style);
    }
    if (field.layout == ListLayout::Tree) {
        return TreeText(field, style);
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
                text +=
                    margin + PadRight(field.label, width - indent) + "  " +
                    Painted(ShownText(field.value, *style.redactor), field.value.ToneOf(), style) +
                    "\n";
                break;
            case FieldKind::Group:
                text += (text.empty() && indent == 0 ? "" : "\n") + margin +
                        Heading(field.label, style) + "\n" +
                        Sections(field.records.front(), indent + 2, width, style);
                break;
            case FieldKind::List: {
                const std::string list = ListText(field, Within(style, indent));
                text += (text.empty() || list.empty() ? "" : "\n") + Indented(list, indent);
                break;
            }
            case FieldKind::Raw:
                text += std::get<std::string>(field.value.Content());
                break;
        }
    }
    return text;
}

// The values as FIELD and VALUE; a text that is printed as it is follows. Beside lists only what
// text mode shows as well.
std::string FieldsAsTable(const Record& record, bool besideLists, const RenderStyle& style) {
    std::vector<Record> rows;
    Record prototype;
    prototype.Add("field", "", Value(), "FIELD").Add("value", "", Value(), "VALUE");
    std::string raw;
    for (const FlatField& flat : FlattenBesideLists(record)) {
        if (flat.field->kind == FieldKind::Raw) {
            raw += std::get<std::string>(flat.field->value.Content());
        } else if (!besideLists || !flat.field->label.empty()) {
            Record& row = rows.emplace_back();
            const Value& value = flat.field->value;
            row.Add("field", "", Value::Text(flat.path));
            row.Add("value", "", Value::Text(ShownText(value, *style.redactor)).In(value.ToneOf()));
        }
    }
    const bool empty = rows.empty() && (besideLists || !raw.empty());
    return (empty ? "" : Rows(ColumnsOf(prototype), rows, style)) + raw;
}

// The list as a table; then the lists of its elements, each row behind its element's first column.
std::string ListAsTables(const Field& list, const RenderStyle& style) {
    if (list.layout == ListLayout::Inner && !list.records.empty()) {
        return InnerTable(list, style);
    }
    if (list.layout == ListLayout::Tree) {
        const Field leaves = LeavesOf(list);
        return Rows(ColumnsOf(leaves.prototype.front()), leaves.records, style);
    }
    const Record& prototype = list.prototype.front();
    const std::vector<Column> columns = ColumnsOf(prototype);
    std::string text = Rows(columns, list.records, style);
    for (const Field* inner : prototype.Lists()) {
        if (columns.empty()) {
            break;
        }
        const std::string rows = InnerRows(list, *inner, {columns.front()}, false, style);
        text += rows.empty() ? rows : "\n" + rows;
    }
    return text;
}

std::vector<Column> StreamColumns(const Record& prototype) {
    std::vector<Column> columns = ColumnsOf(prototype);
    for (Column& column : columns) {
        column.width = std::max(column.width, DisplayWidth(column.heading));
    }
    return columns;
}

RenderStyle Unlimited(RenderStyle style) {
    style.width = 0;
    return style;
}

std::string StreamCells(const std::vector<TableCell>& cells, const std::vector<Column>& columns,
                        const RenderStyle& style) {
    TableLayout layout;
    size_t before = 0;
    for (size_t i = 0; i < columns.size(); ++i) {
        layout.widths.push_back(columns[i].width);
        before += std::max(columns[i].width, DisplayWidth(cells[i].text)) + layout.gap;
    }
    std::vector<TableCell> shown = cells;
    // The columns stay where they are: the last one gives way.
    if (style.width != 0 && !shown.empty() && !shown.back().whole) {
        const size_t last = DisplayWidth(shown.back().text);
        before -= std::max(columns.back().width, last) + layout.gap;
        shown.back().text =
            Shortened(shown.back().text, style.width - std::min(before, style.width));
    }
    return TableLine(shown, layout, Unlimited(style));
}

}  // namespace

std::string ShownText(const Value& value, Redactor& redactor) {
    if (value.Shown().empty()) {
        return value.IsNull() ? kNothing : "";
    }
    return value.SecretOf() == Secret::None ? redactor.Clean(value.Shown())
                                            : redactor.Mask(value.SecretOf(), value.Shown());
}

std::string Painted(const std::string& text, Tone tone, const RenderStyle& style) {
    return Colored(text, ColorOf(tone), style.color);
}

std::string Heading(const std::string& text, const RenderStyle& style) {
    return Colored(text, kBold, style.color);
}

std::string RenderText(const Record& result, const RenderStyle& style) {
    return Sections(result, 0, LabelWidth(result, 0), style);
}

std::string RenderTable(const Record& result, const RenderStyle& style) {
    const std::vector<const Field*> lists = result.Lists();
    if (result.MainList() != nullptr && result.MainList()->streamed) {
        return {};
    }
    std::string text = FieldsAsTable(result, !lists.empty(), style);
    for (const Field* const list : lists) {
        text += (text.empty() ? "" : "\n") + ListAsTables(*list, style);
    }
    return text;
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
