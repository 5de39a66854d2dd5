// The findings of `health`, worst first.
#include <algorithm>

#include "vxmgr/support/report_parts.h"

namespace vxmgr {
namespace {

std::string WithUnit(const ReportJson& check, const char* key) {
    const std::string unit = ShownAt(check, "unit");
    return unit.empty() ? ShownAt(check, key) : ShownAt(check, key, unit);
}

struct HealthRow {
    const ReportJson* check;
    std::string state;
    Wellness wellness;
};

std::vector<HealthRow> RowsOf(const ReportJson& checks) {
    std::vector<HealthRow> rows;
    for (const ReportJson& check : checks) {
        const std::string state = ShownAt(check, "state");
        rows.push_back({&check, state, WellnessOf(state)});
    }
    std::ranges::stable_sort(rows, std::ranges::greater(), &HealthRow::wellness);
    return rows;
}

ReportTable TableOf(std::string caption, const std::vector<HealthRow>& rows) {
    ReportTable table{std::move(caption),
                      {"Check", "State", "Port", "Value", "Warning at", "Critical at", "Detail"}};
    for (const auto& [check, state, wellness] : rows) {
        table.rows.push_back({{ShownAt(*check, "check")},
                              {state, wellness},
                              {PortTitle(*check)},
                              {WithUnit(*check, "value"), Wellness::Plain, true},
                              {WithUnit(*check, "warning"), Wellness::Plain, true},
                              {WithUnit(*check, "critical"), Wellness::Plain, true},
                              {ShownAt(*check, "detail")}});
    }
    return table;
}

}  // namespace

void AddHealth(Html& html, const ReportDocuments& documents) {
    const ReportJson& result = documents.Result("health");
    if (!result.is_object()) {
        return;
    }
    AddSection(html, "health", "Health", [&] {
        const std::vector<HealthRow> rows = RowsOf(documents.List("health", "checks"));
        std::vector<HealthRow> problems;
        std::vector<HealthRow> others;
        for (const HealthRow& row : rows) {
            (row.wellness >= Wellness::Warning ? problems : others).push_back(row);
        }
        if (problems.empty()) {
            const auto text = html.In("p", {{"class", "verdict"}});
            AddBadge(html, Wellness::Good, "Nothing found");
            html.Text(" All checks that the adapters can answer are as they should be.");
        } else {
            AddTable(html, TableOf("What was found, worst first", problems));
        }
        if (!others.empty()) {
            const auto details = html.In("details");
            html.Add("summary", std::to_string(others.size()) + " other checks");
            AddTable(html, TableOf("Checks that found nothing", others));
        }
    });
}

}  // namespace vxmgr
