// Records as text and tables, for people. CSV is in csv.h, the JSON forms in json_document.h.
#pragma once

#include <string>
#include <vector>

#include "record.h"

namespace tools {

class Redactor;

struct RenderStyle {
    bool color = false;
    Redactor* redactor = nullptr;  // never null when rendering
    size_t width = 0;              // cells of a line that tables shorten themselves to; 0: any
    bool lines = false;            // trees have drawn lines, not such of ASCII characters
};

// What a person reads for the value.
std::string ShownText(const Value& value, Redactor& redactor);

// The text in its tone's colour, or as a heading.
std::string Painted(const std::string& text, Tone tone, const RenderStyle& style);
std::string Heading(const std::string& text, const RenderStyle& style);

std::string RenderText(const Record& result, const RenderStyle& style);

// Tables alone: the values beside lists, each list, and behind a list those that its elements have.
std::string RenderTable(const Record& result, const RenderStyle& style);

// Rows that are printed as they come: columns have their fields' least width.
std::string StreamHeader(const Record& prototype, const RenderStyle& style);
std::string StreamLine(const Record& row, const RenderStyle& style);

}  // namespace tools
