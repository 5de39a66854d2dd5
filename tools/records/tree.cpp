#include "tree.h"

#include <algorithm>

#include "flatten.h"
#include "table.h"
#include "text.h"

namespace tools {
namespace {

struct TreeLines {
    const char* child;
    const char* lastChild;
    const char* below;  // of a child that is not the last
    const char* belowLast;
};
constexpr TreeLines kAsciiLines = {"|- ", "`- ", "|  ", "   "};
constexpr TreeLines kDrawnLines = {"\xe2\x94\x9c\xe2\x94\x80 ", "\xe2\x94\x94\xe2\x94\x80 ",
                                   "\xe2\x94\x82  ", "   "};

constexpr const char* kGap = "  ";
constexpr const char* kMore = " \xe2\x80\xa6";
constexpr size_t kLeastRoom = 4;  // for the beginning of a text
constexpr size_t kLeastLine = 8;  // for a node, however deep

struct NodePart {
    std::string text;
    Tone tone;
    bool whole;  // never cut
};

std::vector<NodePart> PartsOf(const Record& node, const RenderStyle& style) {
    std::vector<NodePart> parts;
    for (const FlatField& flat : FlattenBesideLists(node)) {
        const Value& value = flat.field->value;
        if (flat.field->label.empty() || value.Shown().empty()) {
            continue;
        }
        std::string text = ShownText(value, *style.redactor);
        const auto* number = std::get_if<uint64_t>(&value.Content());
        if (number != nullptr && text == std::to_string(*number)) {
            text = flat.field->label + " " + text;
        }
        parts.push_back({std::move(text), value.ToneOf(),
                         number != nullptr || value.SecretOf() == Secret::Wwn});
    }
    return parts;
}

// What fits into so many cells (0: any), and a sign where there is more.
std::string NodeText(const Record& node, bool isRoot, size_t room, const RenderStyle& style) {
    std::string line;
    size_t used = 0;
    for (const NodePart& part : PartsOf(node, style)) {
        const size_t gap = line.empty() ? 0 : DisplayWidth(kGap);
        const size_t left = room == 0 ? SIZE_MAX : room > used + gap ? room - used - gap : 0;
        std::string text = part.text;
        const bool fits = DisplayWidth(text) <= left;
        if (!fits && (part.whole || left < kLeastRoom)) {
            line += used + DisplayWidth(kMore) <= room ? kMore : "";
            break;
        }
        text = fits ? text : Shortened(text, left);
        used += gap + DisplayWidth(text);
        line += gap == 0 ? "" : kGap;
        line += isRoot && gap == 0 ? Heading(text, style) : Painted(text, part.tone, style);
        if (!fits) {
            break;
        }
    }
    return line + "\n";
}

void AddNode(const Record& node, const std::string& own, const std::string& below, bool isRoot,
             const RenderStyle& style, std::string& text) {
    const size_t room =
        style.width == 0
            ? 0
            : std::max(kLeastLine, style.width - std::min(style.width, DisplayWidth(own)));
    text += own + NodeText(node, isRoot, room, style);
    std::vector<const Record*> children;
    for (const Field* list : node.Lists()) {
        for (const Record& child : list->records) {
            children.push_back(&child);
        }
    }
    const TreeLines& lines = style.lines ? kDrawnLines : kAsciiLines;
    for (const Record* child : children) {
        const bool last = child == children.back();
        AddNode(*child, below + (last ? lines.lastChild : lines.child),
                below + (last ? lines.belowLast : lines.below), false, style, text);
    }
}

void PutOver(const Record& from, Record& into) {
    for (const Field& field : from.Fields()) {
        if (field.kind == FieldKind::List) {
            continue;
        }
        auto& fields = into.Fields();
        const auto found = std::find_if(fields.begin(), fields.end(),
                                        [&](const Field& one) { return one.key == field.key; });
        if (found == fields.end()) {
            fields.push_back(field);
        } else if (field.kind == FieldKind::Value) {
            found->value = field.value.IsNull() ? found->value : field.value;
            found->column = found->column.empty() ? field.column : found->column;
        } else {
            *found = field;
        }
    }
}

void AddColumns(const Record& prototype, Record& columns) {
    PutOver(prototype, columns);
    for (const Field* list : prototype.Lists()) {
        AddColumns(list->prototype.front(), columns);
    }
}

void AddLeaves(const Record& node, Record row, std::vector<Record>& rows) {
    PutOver(node, row);
    bool isLeaf = true;
    for (const Field* list : node.Lists()) {
        for (const Record& child : list->records) {
            AddLeaves(child, row, rows);
            isLeaf = false;
        }
    }
    if (isLeaf) {
        rows.push_back(std::move(row));
    }
}

}  // namespace

std::string TreeText(const Field& tree, const RenderStyle& style) {
    std::string text;
    for (const Record& root : tree.records) {
        AddNode(root, "", "", true, style, text);
    }
    return text;
}

Field LeavesOf(const Field& tree) {
    Field leaves = tree;
    leaves.layout = ListLayout::Table;
    leaves.records.clear();
    Record columns;
    AddColumns(tree.prototype.front(), columns);
    for (const Record& root : tree.records) {
        AddLeaves(root, columns, leaves.records);
    }
    leaves.prototype = {columns};
    return leaves;
}

}  // namespace tools
