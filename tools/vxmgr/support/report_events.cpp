// What the adapters reported while the counters were sampled.
#include <algorithm>

#include "vxmgr/support/report_parts.h"

namespace vxmgr {
namespace {

Wellness WellnessOfEvent(const std::string& kind) {
    return kind == "link-down" ? Wellness::Critical
           : kind == "link-up" ? Wellness::Good
                               : Wellness::Warning;
}

const char* ClassOf(Wellness wellness) {
    return wellness == Wellness::Critical ? "bad" : wellness == Wellness::Good ? "good" : "first";
}

// A line from the first sample to the last, with a mark for each event: a picture of the list
// below.
void AddTimeLine(Html& html, const ReportJson& events, int64_t from, int64_t to) {
    constexpr double kLength = 1000;
    const auto svg = html.In("svg", {{"viewBox", "0 0 1000 28"},
                                     {"class", "timeline"},
                                     {"preserveAspectRatio", "none"},
                                     {"aria-hidden", "true"}});
    html.Add("line", {{"class", "axis"}, {"x1", "0"}, {"x2", "1000"}, {"y1", "14"}, {"y2", "14"}},
             "");
    for (const ReportJson& event : events) {
        const int64_t time = TimeAt(event, "time").value_or(from);
        const double part =
            to > from ? static_cast<double>(time - from) / static_cast<double>(to - from) : 0.5;
        const double x = std::clamp(part, 0.0, 1.0) * (kLength - 6);
        html.Add(
            "rect",
            {{"class", std::string("event ") + ClassOf(WellnessOfEvent(ShownAt(event, "kind")))},
             {"x", ShownNumber(x, 1)},
             {"y", "4"},
             {"width", "6"},
             {"height", "20"}},
            "");
    }
}

}  // namespace

void AddEvents(Html& html, const ReportDocuments& documents) {
    if (!documents.Result("event watch").is_object()) {
        return;
    }
    const ReportJson& events = documents.List("event watch", "events");
    AddSection(html, "events", "Events", [&] {
        if (events.empty()) {
            html.Add("p", "No event came while the counters were sampled.");
            return;
        }
        int64_t from = INT64_MAX;
        int64_t to = 0;
        for (const ReportJson* rows : {&events, &documents.List("samples", "readings")}) {
            for (const ReportJson& row : *rows) {
                if (const auto time = TimeAt(row, "time")) {
                    from = std::min(from, *time);
                    to = std::max(to, *time);
                }
            }
        }
        AddTimeLine(html, events, from, to);
        const auto list = html.In("ol", {{"class", "events"}});
        for (const ReportJson& event : events) {
            const std::string kind = ShownAt(event, "kind");
            const auto item = html.In("li");
            html.Add("time", {{"datetime", ShownAt(event, "time")}},
                     ClockText(TimeAt(event, "time").value_or(0)));
            html.Text(" ");
            AddBadge(html, WellnessOfEvent(kind), kind);
            html.Text(" " + PortTitle(event) + ": " + ShownAt(event, "meaning"));
        }
    });
}

}  // namespace vxmgr
