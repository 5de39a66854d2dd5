#include "table.h"

#include <algorithm>
#include <numeric>

#include "text.h"
#include "unicode.h"

namespace tools {
namespace {

constexpr const char* kEllipsis = "\xe2\x80\xa6";
constexpr size_t kLeastHeading = 4;
constexpr size_t kLeastText = 4;

// Takes from the widest column that has more than its least, until the table fits or none has.
void Narrow(TableLayout& layout, const std::vector<size_t>& least, size_t limit) {
    const auto total = [&] {
        return std::accumulate(layout.widths.begin(), layout.widths.end(), size_t{0}) +
               layout.gap * (layout.widths.size() - 1);
    };
    for (size_t surplus = total(); surplus > limit; surplus = total()) {
        size_t widest = layout.widths.size();
        for (size_t i = 0; i < layout.widths.size(); ++i) {
            if (layout.widths[i] > least[i] &&
                (widest == layout.widths.size() || layout.widths[i] > layout.widths[widest])) {
                widest = i;
            }
        }
        if (widest == layout.widths.size()) {
            return;
        }
        --layout.widths[widest];
    }
}

}  // namespace

TableLayout LayOut(const std::vector<std::vector<TableCell>>& lines, size_t limit) {
    const size_t columns = lines.front().size();
    TableLayout layout;
    layout.widths.assign(columns, 0);
    std::vector<size_t> ofCells(columns, 0);
    std::vector<size_t> ofTexts(columns, 0);
    for (const std::vector<TableCell>& line : lines) {
        for (size_t i = 0; i < columns; ++i) {
            const size_t width = DisplayWidth(line[i].text);
            layout.widths[i] = std::max(layout.widths[i], width);
            if (&line != &lines.front()) {
                ofCells[i] = std::max(ofCells[i], width);
                ofTexts[i] =
                    std::max(ofTexts[i], line[i].whole ? width : std::min(width, kLeastText));
            }
        }
    }
    if (limit == 0 || columns == 0) {
        return layout;
    }
    const size_t all = std::accumulate(layout.widths.begin(), layout.widths.end(), size_t{0});
    layout.gap = all + layout.gap * (columns - 1) > limit ? 1 : layout.gap;
    for (std::vector<size_t>* least : {&ofCells, &ofTexts}) {
        for (size_t& width : *least) {
            width = std::max(width, kLeastHeading);
        }
        Narrow(layout, *least, limit);
    }
    return layout;
}

std::string Shortened(const std::string& text, size_t width) {
    if (DisplayWidth(text) <= width || width == 0) {
        return text;
    }
    // The last cell is the ellipsis's.
    size_t end = 0;
    std::string_view rest = text;
    for (size_t cells = 0; !rest.empty(); end = text.size() - rest.size()) {
        cells += CellsOf(TakeCharacter(rest));
        if (cells >= width) {
            break;
        }
    }
    for (size_t at = 0; at < end; ++at) {
        if (const size_t length = Wwn::LengthAt(text, at); at + length > end) {
            end = at;
        }
    }
    return text.substr(0, end) + kEllipsis;
}

}  // namespace tools
