// What the sections of a report are made of.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "vxmgr/support/html.h"
#include "vxmgr/support/report_documents.h"

namespace vxmgr {

// How well something is; shown by colour, sign and word together.
enum class Wellness : uint8_t { Plain, Good, Unknown, Warning, Critical };

// Of a word that a document has for a state, as in "link_down".
Wellness WellnessOf(const std::string& state);

// A state with its sign.
void AddBadge(Html& html, Wellness wellness, const std::string& text);

// A section with a heading that the list of contents leads to.
void AddSection(Html& html, const char* id, const char* title,
                const std::function<void()>& content);

struct ReportCell {
    std::string text;
    Wellness badge = Wellness::Plain;  // other than Plain: the text is a state
    bool isNumber = false;
    std::string leadsTo = {};  // the id of a place in the page
};
struct ReportTable {
    std::string caption;
    std::vector<std::string> columns;
    std::vector<std::vector<ReportCell>> rows = {};
};
// The first column names what a row is about. Wide tables scroll by themselves.
void AddTable(Html& html, const ReportTable& table);

// Labels and values; those without a value are left out.
struct ReportFact {
    const char* label;
    std::string value;
    bool isLong = false;  // wants a line of its own
};
void AddFacts(Html& html, const std::vector<ReportFact>& facts);

// The id that leads to a port's card.
std::string PortAnchor(int64_t number);

// The sections, in their order. One about which the documents say nothing is left out.
void AddHealth(Html& html, const ReportDocuments& documents);
void AddTree(Html& html, const ReportDocuments& documents);
void AddPorts(Html& html, const ReportDocuments& documents);
void AddCharts(Html& html, const ReportDocuments& documents);
void AddEvents(Html& html, const ReportDocuments& documents);
void AddCode(Html& html, const ReportDocuments& documents);
void AddSources(Html& html, const ReportDocuments& documents);

}  // namespace vxmgr
