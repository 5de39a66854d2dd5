#include "vxmgr/support/report_page.h"

#include <algorithm>

#include "vxmgr/support/report_parts.h"
#include "vxmgr/support/report_style.h"

namespace vxmgr {
namespace {

struct SectionRow {
    const char* id;
    const char* title;
    void (*add)(Html& html, const ReportDocuments& documents);
};
constexpr SectionRow kSections[] = {
    {"health", "Health", AddHealth},    {"tree", "Tree", AddTree},
    {"ports", "Ports", AddPorts},       {"samples", "Counters over time", AddCharts},
    {"events", "Events", AddEvents},    {"code", "Firmware and settings", AddCode},
    {"sources", "Sources", AddSources},
};

void AddHead(Html& html, const ReportAbout& about) {
    const auto head = html.In("head");
    html.AddVoid("meta", {{"charset", "utf-8"}});
    html.AddVoid("meta",
                 {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
    html.AddVoid("meta", {{"name", "color-scheme"}, {"content", "light dark"}});
    // Nothing is fetched and nothing runs, whatever a name may hold.
    html.AddVoid("meta",
                 {{"http-equiv", "Content-Security-Policy"},
                  {"content", "default-src 'none'; style-src 'unsafe-inline'; img-src data:"}});
    html.AddVoid("link", {{"rel", "icon"}, {"href", "data:,"}});
    html.Add("title", "Fibre Channel report of " + about.host);
    const auto style = html.In("style");
    html.Own(kReportStyle);
}

struct Tile {
    std::string number;
    std::string label;
    Wellness wellness = Wellness::Plain;
};

size_t CountOf(const ReportJson& list, std::string_view path, const char* value) {
    return static_cast<size_t>(std::ranges::count_if(
        list, [&](const ReportJson& row) { return ShownAt(row, path) == value; }));
}

std::vector<Tile> TilesOf(const ReportDocuments& documents) {
    std::vector<Tile> tiles;
    const std::string health = ShownAt(documents.Result("health"), "state");
    if (!health.empty()) {
        tiles.push_back({LabelOf(health), "health", WellnessOf(health)});
    }
    const ReportJson& adapters = documents.List("adapter list", "adapters");
    tiles.push_back(
        {std::to_string(adapters.size()), adapters.size() == 1 ? "adapter" : "adapters"});
    const ReportJson& ports = documents.List("port show", "ports");
    const size_t online = CountOf(ports, "link.state", "online");
    tiles.push_back({std::to_string(online) + " of " + std::to_string(ports.size()), "ports online",
                     online == ports.size() ? Wellness::Good : Wellness::Warning});
    double paths = 0;
    for (const ReportJson& port : ports) {
        paths += NumberAt(port, "fibre_channel.discovered_targets").value_or(0);
    }
    tiles.push_back({ShownNumber(paths, 0), "paths to targets"});
    const size_t findings = CountOf(documents.List("health", "checks"), "state", "warning") +
                            CountOf(documents.List("health", "checks"), "state", "critical");
    if (!health.empty()) {
        tiles.push_back({std::to_string(findings), findings == 1 ? "finding" : "findings",
                         findings == 0 ? Wellness::Good : WellnessOf(health)});
    }
    return tiles;
}

constexpr const char* kTileClasses[] = {"tile", "tile good", "tile", "tile warning",
                                        "tile critical"};

void AddBanner(Html& html, const ReportAbout& about, const ReportDocuments& documents) {
    const auto banner = html.In("header", {{"class", "banner"}});
    html.Add("p", {{"class", "over"}}, "Fibre Channel adapters");
    html.Add("h1", about.host);
    {
        const auto line = html.In("p", {{"class", "muted"}});
        html.Text("As of ");
        html.Add("time", {{"datetime", about.time}}, about.time);
        html.Text(" \u00B7 vxmgr " + about.tool + " \u00B7 library " + about.library +
                  (about.sampled.empty() ? "" : " \u00B7 sampled " + about.sampled));
    }
    const auto tiles = html.In("ul", {{"class", "tiles"}});
    for (const Tile& tile : TilesOf(documents)) {
        const auto item =
            html.In("li", {{"class", kTileClasses[static_cast<size_t>(tile.wellness)]}});
        html.Add("strong", tile.number);
        html.Text(" ");
        html.Add("span", tile.label);
    }
}

}  // namespace

std::string ReportPage(const ReportAbout& about, const ReportDocuments& documents) {
    // The sections come first: the contents list those that there are.
    Html sections;
    std::vector<const SectionRow*> present;
    for (const SectionRow& row : kSections) {
        const size_t before = sections.Written().size();
        row.add(sections, documents);
        if (sections.Written().size() != before) {
            present.push_back(&row);
        }
    }
    Html html;
    html.Own("<!DOCTYPE html>\n");
    {
        const auto page = html.In("html", {{"lang", "en"}});
        AddHead(html, about);
        const auto body = html.In("body");
        html.Add("a", {{"class", "skip"}, {"href", "#main"}}, "Skip to the content");
        AddBanner(html, about, documents);
        {
            const auto contents = html.In("nav", {{"aria-label", "Contents"}});
            for (const SectionRow* row : present) {
                html.Add("a", {{"href", std::string("#") + row->id}}, row->title);
            }
        }
        {
            const auto main = html.In("main", {{"id", "main"}});
            html.Own(sections.Written());
        }
        html.Add("footer", "Made by vxmgr " + about.tool + " from what the adapters answered at " +
                               about.time + ". Times are UTC.");
    }
    html.Own("\n");
    return html.Written();
}

}  // namespace vxmgr
