// Records as comma-separated values (RFC 4180): lines end with CR LF.
#pragma once

#include <string>

#include "record.h"

namespace tools {

class Redactor;

// One line per row of the first list, with the values beside the list in each, or one for the
// record.
std::string RenderCsv(const Record& result, Redactor& redactor);

std::string CsvHeader(const Record& prototype);
std::string CsvLine(const Record& row, Redactor& redactor);
std::string CsvCell(const std::string& text);

}  // namespace tools
