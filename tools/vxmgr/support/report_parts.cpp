#include "vxmgr/support/report_parts.h"

#include <algorithm>
#include <iterator>

namespace vxmgr {
namespace {

struct WellnessRow {
    const char* className;
    const char* sign;  // for those who do not see the colours
};
constexpr WellnessRow kWellness[] = {
    {"plain", ""},         {"good", "\u2713"},     {"unknown", "?"},
    {"warning", "\u25B2"}, {"critical", "\u2716"},
};

struct StateRow {
    const char* state;
    Wellness wellness;
};
constexpr StateRow kStates[] = {
    {"normal", Wellness::Good},
    {"online", Wellness::Good},
    {"running", Wellness::Good},
    {"done", Wellness::Good},
    {"restored", Wellness::Good},
    {"stored", Wellness::Plain},
    {"warning", Wellness::Warning},
    {"low_warning", Wellness::Warning},
    {"high_warning", Wellness::Warning},
    {"pending", Wellness::Warning},
    {"offline", Wellness::Warning},
    {"link_down", Wellness::Warning},
    {"critical", Wellness::Critical},
    {"low_alarm", Wellness::Critical},
    {"high_alarm", Wellness::Critical},
    {"damaged", Wellness::Critical},
    {"disabled", Wellness::Critical},
    {"failed", Wellness::Critical},
    {"not answering", Wellness::Critical},
};

}  // namespace

Wellness WellnessOf(const std::string& state) {
    const auto found =
        std::ranges::find_if(kStates, [&](const StateRow& row) { return state == row.state; });
    return found != std::end(kStates) ? found->wellness : Wellness::Unknown;
}

void AddBadge(Html& html, Wellness wellness, const std::string& text) {
    const WellnessRow& row = kWellness[static_cast<size_t>(wellness)];
    const auto badge = html.In("span", {{"class", std::string("badge ") + row.className}});
    if (*row.sign != '\0') {
        html.Add("span", {{"class", "sign"}, {"aria-hidden", "true"}}, row.sign);
    }
    html.Text(text);
}

void AddSection(Html& html, const char* id, const char* title,
                const std::function<void()>& content) {
    const std::string heading = std::string(id) + "-title";
    const auto section = html.In("section", {{"id", id}, {"aria-labelledby", heading}});
    html.Add("h2", {{"id", heading}}, title);
    content();
}

void AddTable(Html& html, const ReportTable& table) {
    const auto scrolls = html.In("div", {{"class", "scrolls"},
                                         {"role", "region"},
                                         {"tabindex", "0"},
                                         {"aria-label", table.caption}});
    const auto element = html.In("table");
    html.Add("caption", table.caption);
    {
        const auto head = html.In("thead");
        const auto row = html.In("tr");
        for (size_t i = 0; i < table.columns.size(); ++i) {
            const bool numbers = !table.rows.empty() && i < table.rows.front().size() &&
                                 table.rows.front()[i].isNumber;
            html.Add("th", {{"scope", "col"}, {"class", numbers ? "number" : ""}},
                     table.columns[i]);
        }
    }
    const auto body = html.In("tbody");
    for (const std::vector<ReportCell>& cells : table.rows) {
        const auto row = html.In("tr");
        for (size_t i = 0; i < cells.size(); ++i) {
            const ReportCell& cell = cells[i];
            const std::string kind = cell.isNumber ? "number" : "";
            const auto place = i == 0 ? html.In("th", {{"scope", "row"}, {"class", kind}})
                                      : html.In("td", {{"class", kind}});
            if (cell.badge != Wellness::Plain && !cell.text.empty()) {
                AddBadge(html, cell.badge, cell.text);
            } else if (!cell.leadsTo.empty()) {
                html.Add("a", {{"href", "#" + cell.leadsTo}}, cell.text);
            } else {
                html.Text(cell.text.empty() ? "\u2013" : cell.text);
            }
        }
    }
}

void AddFacts(Html& html, const std::vector<ReportFact>& facts) {
    const auto list = html.In("dl", {{"class", "facts"}});
    for (const ReportFact& fact : facts) {
        if (!fact.value.empty()) {
            const auto pair = html.In("div", {{"class", fact.isLong ? "long" : ""}});
            html.Add("dt", fact.label);
            html.Add("dd", fact.value);
        }
    }
}

std::string PortAnchor(int64_t number) {
    return "port-" + std::to_string(number);
}

}  // namespace vxmgr
