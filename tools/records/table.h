// Tables of text that shorten themselves to the width of a console.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "record.h"

namespace tools {

// Of a table that is too wide the gaps go first, then what headings have more than their cells,
// then the ends of texts, the widest columns first. Numbers and world wide names stay whole.
struct TableCell {
    std::string text;
    Tone tone = Tone::Plain;
    bool right = false;
    bool whole = false;  // never cut
};

struct TableLayout {
    std::vector<size_t> widths;
    size_t gap = 2;
};

// lines: the heading first. limit: cells of a line, 0 for any.
TableLayout LayOut(const std::vector<std::vector<TableCell>>& lines, size_t limit);

// The text in so many cells at most, with an ellipsis in the place of its end. A world wide name
// inside is left out as a whole.
std::string Shortened(const std::string& text, size_t width);

}  // namespace tools
