// Records as text, tables and CSV. The JSON forms are in json_document.h.
#pragma once

#include <string>
#include <vector>

#include "record.h"

namespace tools {

class Redactor;

struct RenderStyle {
    bool color = false;
    Redactor* redactor = nullptr;  // never null when rendering
};

// One value of a record under its place: groups are joined with '_' ("firmware_version").
struct FlatField {
    std::string path;
    const Field* field;
};

// All values of a record and its groups, in order. Lists inside are left out.
std::vector<FlatField> Flatten(const Record& record);

// What a person reads for the value.
std::string ShownText(const Value& value, Redactor& redactor);

std::string RenderText(const Record& result, const RenderStyle& style);
std::string RenderTable(const Record& result, const RenderStyle& style);

// RFC 4180: one line per row of the main list, or one for the record; lines end with CR LF.
std::string RenderCsv(const Record& result, const RenderStyle& style);
std::string CsvHeader(const Record& prototype);
std::string CsvLine(const Record& row, Redactor& redactor);
std::string CsvCell(const std::string& text);

// Rows that are printed as they come: columns have their fields' least width.
std::string StreamHeader(const Record& prototype, const RenderStyle& style);
std::string StreamLine(const Record& row, const RenderStyle& style);

}  // namespace tools
