#include "vxmgr/views/top_screen.h"

#include <algorithm>
#include <cstdio>

#include "records/table.h"

namespace vxmgr {
namespace {

constexpr size_t kTrendWidth = 12;

struct Cell {
    std::string text;
    Tone tone = Tone::Plain;
};

std::string RateText(const std::optional<uint64_t>& rate) {
    return rate ? std::to_string(*rate) : "-";
}

// Megabytes are what links are measured in; slow ones have decimals.
std::string MegabytesText(const std::optional<uint64_t>& bytes) {
    if (!bytes) {
        return "-";
    }
    const double megabytes = static_cast<double>(*bytes) / 1e6;
    char text[32];
    std::snprintf(text, sizeof text, megabytes < 100 ? "%.2f" : "%.0f", megabytes);
    return text;
}

Tone ErrorTone(uint64_t errors) {
    return errors != 0 ? Tone::Warning : Tone::Plain;
}

Cell CellOf(const TopPort& port, TopColumn column, bool blocks) {
    const PortRates& rates = port.trend.Rates();
    char text[32];
    switch (column) {
        case TopColumn::Port:
            return {std::to_string(port.index)};
        case TopColumn::ScsiPort:
            return {port.scsiPort ? std::to_string(*port.scsiPort) : "-"};
        case TopColumn::Adapter:
            return {port.adapter};
        case TopColumn::Name:
            return {port.name};
        case TopColumn::State:
            return {port.state, port.stateTone};
        case TopColumn::Speed:
            return {port.speed};
        case TopColumn::TxBytes:
            return {MegabytesText(rates.txBytes)};
        case TopColumn::RxBytes:
            return {MegabytesText(rates.rxBytes)};
        case TopColumn::TxFrames:
            return {RateText(rates.txFrames)};
        case TopColumn::RxFrames:
            return {RateText(rates.rxFrames)};
        case TopColumn::Traffic:
            return {Sparkline(port.trend.BytesBefore(), kTrendWidth, blocks)};
        case TopColumn::Errors:
            return {std::to_string(port.trend.Errors()), ErrorTone(port.trend.Errors())};
        case TopColumn::NewErrors:
            return {Sparkline(port.trend.ErrorsBefore(), kTrendWidth, blocks),
                    ErrorTone(port.trend.NewErrors())};
        case TopColumn::Temperature:
            if (!port.temperature) {
                return {"-"};
            }
            std::snprintf(text, sizeof text, "%.1f", *port.temperature);
            return {text, port.temperatureTone};
    }
    return {};
}

struct ColumnLook {
    const char* heading;
    size_t width;
    bool right;
    int rank;  // those of high rank give way first
};
// In the order of TopColumn.
constexpr ColumnLook kLooks[] = {
    {"PORT", 4, true, 0},
    {"SCSI", 4, true, 4},
    {"ADAPTER", 14, false, 8},
    {"NAME", 23, false, 9},
    {"STATE", 9, false, 0},
    {"SPEED", 5, true, 7},
    {"TX MB/S", 8, true, 0},
    {"RX MB/S", 8, true, 0},
    {"TX FR/S", 8, true, 5},
    {"RX FR/S", 8, true, 5},
    {"TRAFFIC", kTrendWidth, true, 6},
    {"ERRORS", 7, true, 1},
    {"NEW ERRORS", kTrendWidth, true, 3},
    {"TEMP", 5, true, 2},
};
static_assert(std::size(kLooks) == kTopColumns);

const ColumnLook& LookOf(TopColumn column) {
    return kLooks[static_cast<size_t>(column)];
}

// The columns that fit side by side.
std::vector<TopColumn> ColumnsFor(size_t width) {
    std::vector<TopColumn> columns;
    for (size_t i = 0; i < kTopColumns; ++i) {
        columns.push_back(static_cast<TopColumn>(i));
    }
    const auto total = [&] {
        size_t sum = columns.size() - 1;
        for (const TopColumn column : columns) {
            sum += LookOf(column).width;
        }
        return sum;
    };
    while (columns.size() > 1 && total() > width) {
        const auto last = std::ranges::max_element(
            columns, {}, [](TopColumn column) { return LookOf(column).rank; });
        columns.erase(last);
    }
    return columns;
}

std::string Fitted(const std::string& text, size_t width, bool right) {
    const std::string shown = Shortened(text, width);
    const std::string blanks(width - std::min(width, DisplayWidth(shown)), ' ');
    return right ? blanks + shown : shown + blanks;
}

// What does not fit on the line goes.
ScreenLine Limited(ScreenLine line, size_t width) {
    size_t left = width;
    for (ScreenSpan& span : line) {
        const bool blank = span.text.find_first_not_of(' ') == std::string::npos;
        span.text = left == 0 ? std::string()
                    : blank   ? span.text.substr(0, left)
                              : Shortened(span.text, left);
        left -= std::min(left, DisplayWidth(span.text));
    }
    return line;
}

// One line of cells, the columns a blank apart; what is left of the width goes to the last.
ScreenLine Cells(const std::vector<TopColumn>& columns,
                 const std::function<ScreenSpan(TopColumn column)>& spanOf, size_t width) {
    ScreenLine line;
    for (const TopColumn column : columns) {
        ScreenSpan span = spanOf(column);
        span.text = Fitted(span.text, LookOf(column).width, LookOf(column).right);
        line.push_back(std::move(span));
        line.push_back({.text = " ", .inverse = line.back().inverse});
    }
    line.pop_back();
    return Limited(std::move(line), width);
}

ScreenLine HeadingLine(const std::vector<TopColumn>& columns, const TopView& view, size_t width) {
    const auto heading = [&](TopColumn column) {
        const bool sorted = column == view.SortedBy();
        std::string text = LookOf(column).heading;
        const bool room = text.size() < LookOf(column).width;
        text += sorted && room ? (view.Reversed() ? "v" : "^") : "";
        return ScreenSpan{.text = std::move(text), .strong = sorted, .inverse = true};
    };
    ScreenLine line = Cells(columns, heading, width);
    line.push_back({.text = std::string(width, ' '), .inverse = true});  // to the edge
    return line;
}

ScreenLine TitleLine(const TopPicture& picture, const TopView& view, size_t shown, size_t first,
                     size_t rows) {
    std::string ports =
        std::to_string(picture.ports.size()) + (picture.ports.size() == 1 ? " port" : " ports");
    if (shown != picture.ports.size()) {
        ports = std::to_string(shown) + " of " + ports;
    }
    if (shown > rows) {
        ports += ", " + std::to_string(first + 1) + " to " +
                 std::to_string(std::min(shown, first + rows));
    }
    ScreenLine line{{.text = "vxmgr top  ", .strong = true},
                    {.text = picture.clock + "  " + ports}};
    if (view.Paused()) {
        line.push_back({.text = "  paused", .tone = Tone::Warning});
    }
    if (!view.Filter().empty()) {
        line.push_back({.text = "  with \"" + view.Filter() + "\"", .tone = Tone::Warning});
    }
    return line;
}

ScreenLine LastLine(const TopView& view) {
    if (view.Typing()) {
        return {{.text = "Show ports with: ", .strong = true},
                {.text = view.Filter() + "_"},
                {.text = "   Enter keeps, Esc drops"}};
    }
    if (view.ShowsHelp()) {
        return {{.text = "sort: n port  a adapter  s state  t sent  r received  e errors  c temp  "
                         "o order  <> column"}};
    }
    return {{.text = "q quit  p pause  / filter  <> sort  o order  ? more keys"}};
}

size_t EventLines(size_t rows) {
    return rows >= 20 ? 5 : rows >= 12 ? 3 : 0;
}

}  // namespace

std::string Sparkline(const std::deque<uint64_t>& values, size_t width, bool blocks) {
    constexpr const char* kBlocks[] = {"\xe2\x96\x81", "\xe2\x96\x82", "\xe2\x96\x83",
                                       "\xe2\x96\x84", "\xe2\x96\x85", "\xe2\x96\x86",
                                       "\xe2\x96\x87", "\xe2\x96\x88"};
    constexpr const char* kAscii[] = {"_", ".", ":", "-", "=", "+", "*", "#"};
    constexpr uint64_t kHighest = std::size(kBlocks) - 1;
    const size_t first = values.size() > width ? values.size() - width : 0;
    const uint64_t most =
        first < values.size()
            ? *std::max_element(values.begin() + static_cast<ptrdiff_t>(first), values.end())
            : 0;
    std::string text(width - (values.size() - first), ' ');
    for (size_t i = first; i < values.size(); ++i) {
        const double share =
            most == 0 ? 0 : static_cast<double>(values[i]) / static_cast<double>(most);
        // Rounded up, so that the least that is not zero can be seen.
        const double height = share * static_cast<double>(kHighest);
        auto level = static_cast<uint64_t>(height);
        level += height > static_cast<double>(level) ? 1 : 0;
        level = std::min(level, kHighest);
        text += blocks ? kBlocks[level] : kAscii[level];
    }
    return text;
}

std::vector<ScreenLine> DrawTop(const TopPicture& picture, TopView& view, const TopLook& look) {
    const size_t width = look.size.columns;
    const size_t events = EventLines(look.size.rows);
    // Title, heading, rows, events below their own heading, keys.
    const size_t around = 2 + (events != 0 ? events + 1 : 0) + 1;
    const size_t rows = look.size.rows > around ? look.size.rows - around : 1;
    const std::vector<const TopPort*> ports = view.Select(picture);
    const size_t first = view.ScrollTo(ports.size(), rows);
    const std::vector<TopColumn> columns = ColumnsFor(width);

    std::vector<ScreenLine> lines{TitleLine(picture, view, ports.size(), first, rows),
                                  HeadingLine(columns, view, width)};
    for (size_t i = 0; i < rows; ++i) {
        if (first + i >= ports.size()) {
            lines.push_back({});
            continue;
        }
        const TopPort& port = *ports[first + i];
        lines.push_back(Cells(
            columns,
            [&](TopColumn column) {
                Cell cell = CellOf(port, column, look.blocks);
                return ScreenSpan{.text = std::move(cell.text), .tone = cell.tone};
            },
            width));
    }
    if (events != 0) {
        lines.push_back({{.text = Fitted("EVENTS", width, false), .inverse = true}});
        for (size_t i = 0; i < events; ++i) {
            lines.push_back({});
            if (i < picture.events.size()) {
                const TopEvent& event = picture.events[i];
                lines.back() = {{.text = event.time + "  "},
                                {.text = event.text, .tone = event.tone}};
            }
        }
    }
    lines.push_back(LastLine(view));
    lines.resize(std::min(lines.size(), look.size.rows));
    for (ScreenLine& line : lines) {
        line = Limited(std::move(line), width);
        for (ScreenSpan& span : line) {
            span.tone = look.colors ? span.tone : Tone::Plain;
        }
    }
    return lines;
}

}  // namespace vxmgr
