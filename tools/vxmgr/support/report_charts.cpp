// The counters that were sampled, as lines over time.
#include <algorithm>
#include <cmath>

#include "vxmgr/support/report_parts.h"

namespace vxmgr {
namespace {

struct ChartSeries {
    const char* name;
    const char* className;
    std::vector<double> values;
};

struct Chart {
    std::string title;
    const char* unit;
    std::vector<int64_t> times;  // of the values, in milliseconds
    std::vector<ChartSeries> series;
};

constexpr double kChartWidth = 380;
constexpr double kChartHeight = 170;
constexpr double kLeft = 52;
constexpr double kRight = 368;
constexpr double kTop = 12;
constexpr double kBottom = 138;

std::string Coordinate(double value) {
    return ShownNumber(value, 1);
}

// With as many digits as a part of a whole of this size needs.
std::string ShownPart(double value, double whole) {
    const double magnitude = std::floor(std::log10(whole > 0 ? whole : 1));
    return ShownNumber(value, std::clamp(static_cast<int>(2 - magnitude), 0, 9));
}

// The end of an axis that holds the value and can be divided evenly: 1, 2 or 5 times a power of 10.
double RoundedUp(double value) {
    if (value <= 0) {
        return 1;
    }
    const double power = std::pow(10, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0, 10.0}) {
        if (value <= step * power) {
            return step * power;
        }
    }
    return value;
}

double Largest(const Chart& chart) {
    double largest = 0;
    for (const ChartSeries& series : chart.series) {
        for (const double value : series.values) {
            largest = std::max(largest, value);
        }
    }
    return largest;
}

class ChartDrawing {
  public:
    ChartDrawing(Html& html, const Chart& chart)
        : html_(html), chart_(chart), top_(RoundedUp(Largest(chart))) {}

    void Draw() {
        const auto svg = html_.In(
            "svg", {{"viewBox", "0 0 " + Coordinate(kChartWidth) + " " + Coordinate(kChartHeight)},
                    {"class", "chart"},
                    {"role", "img"},
                    {"aria-label", Summary()}});
        Grid();
        for (const ChartSeries& series : chart_.series) {
            Line(series);
        }
    }

  private:
    // What somebody is told who does not see the lines.
    std::string Summary() const {
        std::string text = chart_.title + " in " + chart_.unit + ".";
        for (const ChartSeries& series : chart_.series) {
            const auto [least, most] = std::ranges::minmax_element(series.values);
            text += std::string(" ") + series.name + ": from " + ShownPart(*least, top_) + " to " +
                    ShownPart(*most, top_) + ", last " + ShownPart(series.values.back(), top_) +
                    ".";
        }
        return text;
    }

    double X(size_t place) const {
        const int64_t span = chart_.times.back() - chart_.times.front();
        const double part = span <= 0
                                ? 0.5
                                : static_cast<double>(chart_.times[place] - chart_.times.front()) /
                                      static_cast<double>(span);
        return kLeft + part * (kRight - kLeft);
    }
    double Y(double value) const { return kBottom - value / top_ * (kBottom - kTop); }

    void Label(double x, double y, const char* anchor, const std::string& text) {
        html_.Add("text", {{"x", Coordinate(x)}, {"y", Coordinate(y)}, {"text-anchor", anchor}},
                  text);
    }

    void Grid() {
        constexpr int kLines = 4;
        for (int i = 0; i <= kLines; ++i) {
            const double value = top_ * i / kLines;
            const std::string y = Coordinate(Y(value));
            html_.Add("line",
                      {{"class", i == 0 ? "axis" : "grid"},
                       {"x1", Coordinate(kLeft)},
                       {"x2", Coordinate(kRight)},
                       {"y1", y},
                       {"y2", y}},
                      "");
            if (i % 2 == 0) {
                Label(kLeft - 6, Y(value) + 4, "end", ShownPart(value, top_));
            }
        }
        Label(kLeft, kBottom + 18, "start", ClockText(chart_.times.front()));
        if (chart_.times.size() > 1) {
            Label(kRight, kBottom + 18, "end", ClockText(chart_.times.back()));
        }
    }

    void Line(const ChartSeries& series) {
        std::string points;
        for (size_t i = 0; i < series.values.size(); ++i) {
            points += Coordinate(X(i)) + "," + Coordinate(Y(series.values[i])) + " ";
        }
        html_.Add("polyline",
                  {{"class", std::string("line ") + series.className}, {"points", points}}, "");
        for (size_t i = 0; i < series.values.size(); ++i) {
            const auto dot = html_.In("circle", {{"class", std::string("dot ") + series.className},
                                                 {"cx", Coordinate(X(i))},
                                                 {"cy", Coordinate(Y(series.values[i]))},
                                                 {"r", "2.5"}});
            html_.Add("title", std::string(series.name) + " " + ClockText(chart_.times[i]) + ": " +
                                   ShownPart(series.values[i], top_) + " " + chart_.unit);
        }
    }

    Html& html_;
    const Chart& chart_;
    const double top_;
};

void AddLegend(Html& html, const Chart& chart) {
    const auto legend = html.In("p", {{"class", "legend"}, {"aria-hidden", "true"}});
    for (const ChartSeries& series : chart.series) {
        const auto entry = html.In("span");
        {
            const auto svg = html.In("svg", {{"viewBox", "0 0 24 8"}, {"class", "key"}});
            html.Add("line",
                     {{"class", std::string("line ") + series.className},
                      {"x1", "0"},
                      {"x2", "24"},
                      {"y1", "4"},
                      {"y2", "4"}},
                     "");
        }
        html.Text(std::string(" ") + series.name);
    }
    html.Add("span", {{"class", "muted"}}, chart.unit);
}

void AddChart(Html& html, const Chart& chart) {
    const auto figure = html.In("figure");
    html.Add("figcaption", chart.title);
    AddLegend(html, chart);
    ChartDrawing(html, chart).Draw();
}

// The rows of one port, in the order in which they came, and what they say over time.
struct Sampled {
    const ReportJson* first;
    std::vector<const ReportJson*> rows;
};

std::vector<Sampled> SampledPorts(const ReportJson& readings) {
    std::vector<Sampled> ports;
    for (const ReportJson& row : readings) {
        if (!TimeAt(row, "time") || ValueAt(row, "tx_frames").is_null()) {
            continue;
        }
        const auto known = std::ranges::find_if(
            ports, [&](const Sampled& port) { return PortNumber(*port.first) == PortNumber(row); });
        (known != ports.end() ? *known : ports.emplace_back(Sampled{&row, {}}))
            .rows.push_back(&row);
    }
    return ports;
}

constexpr const char* kErrorKeys[] = {"link_failures",   "losses_of_sync", "losses_of_signal",
                                      "sequence_errors", "invalid_words",  "invalid_crcs"};

// Rows hold what was counted since the one before.
void AddSampledPort(Html& html, const Sampled& port) {
    constexpr double kBytesInWord = 4;
    constexpr double kMegabyte = 1e6;
    Chart traffic{PortTitle(*port.first) + ": traffic",
                  "MB/s",
                  {},
                  {{"sent", "first", {}}, {"received", "second", {}}}};
    Chart frames{PortTitle(*port.first) + ": frames",
                 "frames/s",
                 {},
                 {{"sent", "first", {}}, {"received", "second", {}}}};
    Chart errors{PortTitle(*port.first) + ": errors", "per interval", {}, {{"errors", "bad", {}}}};
    ReportTable table{PortTitle(*port.first) + ": the samples",
                      {"Time (UTC)", "Sent MB/s", "Received MB/s", "Sent frames/s",
                       "Received frames/s", "Errors"}};
    int64_t before = 0;
    for (const ReportJson* row : port.rows) {
        const int64_t time = TimeAt(*row, "time").value_or(0);
        const double given = NumberAt(*row, "seconds").value_or(1);
        const double seconds = before != 0 && time > before
                                   ? static_cast<double>(time - before) / 1000
                                   : std::max(given, 1.0);
        before = time;
        const auto rate = [&](const char* key) {
            return NumberAt(*row, key).value_or(0) / seconds;
        };
        double count = 0;
        for (const char* key : kErrorKeys) {
            count += NumberAt(*row, key).value_or(0);
        }
        for (Chart* chart : {&traffic, &frames, &errors}) {
            chart->times.push_back(time);
        }
        traffic.series[0].values.push_back(rate("tx_words") * kBytesInWord / kMegabyte);
        traffic.series[1].values.push_back(rate("rx_words") * kBytesInWord / kMegabyte);
        frames.series[0].values.push_back(rate("tx_frames"));
        frames.series[1].values.push_back(rate("rx_frames"));
        errors.series[0].values.push_back(count);
        table.rows.push_back({{ClockText(time)}});
        for (const double value :
             {traffic.series[0].values.back(), traffic.series[1].values.back(),
              frames.series[0].values.back(), frames.series[1].values.back(), count}) {
            table.rows.back().push_back({ShownNumber(value, 3), Wellness::Plain, true});
        }
    }
    const auto card = html.In("article", {{"class", "card"}, {"aria-label", traffic.title}});
    AddChart(html, traffic);
    AddChart(html, frames);
    if (Largest(errors) > 0) {
        AddChart(html, errors);
    } else {
        const auto line = html.In("p");
        AddBadge(html, Wellness::Good, "No errors while it was sampled");
    }
    const auto details = html.In("details");
    html.Add("summary", "The numbers");
    AddTable(html, table);
}

}  // namespace

void AddCharts(Html& html, const ReportDocuments& documents) {
    const std::vector<Sampled> ports = SampledPorts(documents.List("samples", "readings"));
    if (ports.empty()) {
        return;
    }
    AddSection(html, "samples", "Counters over time", [&] {
        const auto cards = html.In("div", {{"class", "cards"}});
        for (const Sampled& port : ports) {
            AddSampledPort(html, port);
        }
    });
}

}  // namespace vxmgr
