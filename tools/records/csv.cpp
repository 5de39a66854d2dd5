#include "csv.h"

#include <algorithm>

#include "flatten.h"
#include "redaction.h"
#include "text.h"
#include "tree.h"

namespace tools {
namespace {

std::string CsvText(const std::vector<std::string>& cells) {
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        line += (i == 0 ? "" : ",") + CsvCell(cells[i]);
    }
    return line + "\r\n";
}

std::string CsvNames(const std::vector<FlatField>& columns) {
    std::vector<std::string> names;
    for (const FlatField& flat : columns) {
        names.push_back(flat.path);
    }
    return CsvText(names);
}

// Spreadsheets take a text that begins so for a formula, and names come from anybody.
std::string NoFormula(const std::string& text) {
    constexpr std::string_view kBegins = "=+-@\t\r";
    if (text.empty() || kBegins.find(text.front()) == std::string_view::npos) {
        return text;
    }
    const bool isSigned = text.front() == '+' || text.front() == '-';
    const bool isNumber = isSigned && text.size() > 1 &&
                          text.find_first_not_of("0123456789.", 1) == std::string::npos;
    return isNumber ? text : "'" + text;
}

std::string CsvValues(const std::vector<FlatField>& fields, Redactor& redactor) {
    struct Plain {
        std::string operator()(std::monostate) const { return {}; }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(uint64_t number) const { return std::to_string(number); }
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const std::vector<std::string>& texts) const {
            return TextsJoined(texts, ",");
        }
        std::string operator()(const JsonText& json) const { return json.text; }
    };
    std::vector<std::string> cells;
    for (const FlatField& flat : fields) {
        const Value& value = flat.field->value;
        const std::string plain = std::visit(Plain(), value.Content());
        const bool isSecret = value.SecretOf() != Secret::None;
        cells.push_back(
            NoFormula(isSecret ? redactor.Mask(value.SecretOf(), plain) : redactor.Clean(plain)));
    }
    return CsvText(cells);
}

}  // namespace

std::string RenderCsv(const Record& result, Redactor& redactor) {
    const std::vector<const Field*> lists = result.Lists();
    if (lists.empty()) {
        return CsvHeader(result) + CsvLine(result, redactor);
    }
    if (lists.front()->streamed) {
        return {};
    }
    const bool isTree = lists.front()->layout == ListLayout::Tree;
    const Field list = isTree ? LeavesOf(*lists.front()) : *lists.front();
    std::vector<FlatField> columns = Flatten(list.prototype.front());
    std::vector<FlatField> beside;
    for (const FlatField& flat : FlattenBesideLists(result)) {
        const bool known =
            std::any_of(columns.begin(), columns.end(),
                        [&](const FlatField& column) { return column.path == flat.path; });
        if (!known) {
            beside.push_back(flat);
        }
    }
    columns.insert(columns.end(), beside.begin(), beside.end());
    std::string text = CsvNames(columns);
    for (const Record& record : list.records) {
        std::vector<FlatField> row = Flatten(record);
        row.insert(row.end(), beside.begin(), beside.end());
        text += CsvValues(row, redactor);
    }
    return text;
}

std::string CsvHeader(const Record& prototype) {
    return CsvNames(Flatten(prototype));
}

std::string CsvLine(const Record& row, Redactor& redactor) {
    return CsvValues(Flatten(row), redactor);
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

}  // namespace tools
