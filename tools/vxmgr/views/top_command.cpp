// top.
#include <memory>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"
#include "vxmgr/views/port_trend.h"
#include "vxmgr/views/top_live.h"
#include "vxmgr/views/top_session.h"

namespace vxmgr {
namespace {

constexpr uint64_t kUsualSeconds = 2;
constexpr Argument kTopArguments[] = {
    NumberOption("--interval", "S", "seconds between two readings (2)", 1, 86400),
    NumberOption("--count", "N", "end after N intervals", 1),
    kForArgument,
};

// A port behind an interval.
struct TopRow {
    TopReading reading;
    PortTrend trend;

    const Port& OwnPort() const { return reading.port; }
};

template <auto member>
std::optional<uint64_t> RateOf(const TopRow& row) {
    return row.trend.Rates().*member;
}

// Megabytes for people.
template <auto member>
Value ThroughputValue(const TopRow& row) {
    const auto rate = RateOf<member>(row);
    return rate ? Value::Number(*rate).Shown(DecimalText(static_cast<double>(*rate) / 1e6, 2))
                : Value();
}

Value ErrorsValue(uint64_t errors) {
    return Value::Number(errors).In(errors != 0 ? Tone::Warning : Tone::Plain);
}

Value TemperatureValue(const TopRow& row) {
    constexpr Tone kTones[] = {Tone::Plain, Tone::Warning, Tone::Warning, Tone::Bad, Tone::Bad};
    return row.reading.temperature
               ? ReadingValue(SfpQuantity::Temperature, row.reading.temperature->value)
                     .In(kTones[static_cast<size_t>(row.reading.temperature->state)])
               : Value();
}

const Fields<TopRow> kTopRow = {
    TimeField<TopRow>("UTC, when the port was read"),
    {PortKeys(kPortIndex | kScsiPort), &TopRow::OwnPort},
    {"state", "State", "STATE", Choice(kPortStates).OrNull(),
     [](const TopRow& row) { return StateValue(row.OwnPort()); }, "", 9},
    {"speed_gbit", "Speed", kInteger.OrNull(),
     [](const TopRow& row) {
         return row.OwnPort().port ? SpeedValue(row.OwnPort().port->currentSpeed) : Value();
     }},
    {"tx_bytes_per_s", "Sent", "TX MB/S", kInteger.OrNull(), ThroughputValue<&PortRates::txBytes>,
     "bytes of frames sent in a second", 8},
    {"rx_bytes_per_s", "Received", "RX MB/S", kInteger.OrNull(),
     ThroughputValue<&PortRates::rxBytes>, "the same of frames received", 8},
    {"tx_frames_per_s", "Frames sent", "TX FR/S", kInteger.OrNull(), RateOf<&PortRates::txFrames>,
     "frames sent in a second", 8},
    {"rx_frames_per_s", "Frames received", "RX FR/S", kInteger.OrNull(),
     RateOf<&PortRates::rxFrames>, "frames received in a second", 8},
    {"new_errors", "New errors", "NEW ERRORS", kInteger,
     [](const TopRow& row) { return ErrorsValue(row.trend.NewErrors()); },
     "errors of the link since the row before", 10},
    {"errors", "Errors", "ERRORS", kInteger,
     [](const TopRow& row) { return ErrorsValue(row.trend.Errors()); },
     "the same since the command began", 6},
    {"temperature_c", "Temperature", "TEMP.", kText.OrNull(), TemperatureValue,
     "of the transceiver: a decimal number; null: not known", 9},
};
const auto kTopList = ListOf("readings", "Readings", kTopRow);

struct TopSource {
    TopSession session;
    PortTrend trend;
};

// What comes behind the first reading, a row each.
auto RowsOf(std::shared_ptr<TopSource> source) {
    return [source = std::move(source)](PortTask& task, WatchTurn& turn) {
        TopReading reading = source->session.Read([&] { task.Answered(); });
        turn.status = reading.status;
        turn.query = reading.query;
        if (reading.status == HXMGT_SUCCESS) {
            source->trend.Take(reading.counters, reading.time);
            turn.rows.push_back(kTopRow.Make({std::move(reading), source->trend}));
        } else {
            source->trend.Break();
        }
    };
}

// A table for each interval, or rows for programs.
ExitCode PrintTop(Invocation& invocation, const std::vector<Port*>& ports,
                  std::chrono::seconds interval) {
    struct First {
        HX_STATUS status = HXMGT_SUCCESS;
        std::string query;
        std::shared_ptr<TopSource> source;
    };
    std::vector<PortQuestion<First>> questions;
    for (const Port* port : ports) {
        questions.push_back(
            {port->Name(),
             [own = *port, trace = TracePath(invocation)](PortTask& task, First& first) {
                 first.source = std::make_shared<TopSource>(TopSource{{own, trace}, {}});
                 const TopReading reading = first.source->session.Read([&] { task.Answered(); });
                 first.status = reading.status;
                 first.query = reading.query;
                 first.source->trend.Take(reading.counters, reading.time);
             }});
    }
    auto answers = AskSideBySide(invocation, std::move(questions));
    std::vector<WatchedPort> watched;
    for (size_t i = 0; i < ports.size(); ++i) {
        if (!answers[i]) {
            DoesNotAnswer(invocation, ports[i]);
            continue;
        }
        ports[i]->failure = answers[i]->status;
        ports[i]->failedQuery = answers[i]->query;
        if (answers[i]->status == HXMGT_SUCCESS) {
            watched.push_back({*ports[i], RowsOf(std::move(answers[i]->source))});
        }
    }
    const ExitCode exit = ReportFailures(invocation, ports);
    WatchPlan plan = GivenPlan(invocation, "port");
    plan.interval = interval;
    plan.waitsFirst = true;
    plan.repeatsHeading = true;
    return WatchPorts(invocation, plan, std::move(watched), exit);
}

ExitCode Top(Invocation& invocation) {
    const std::chrono::seconds interval(
        invocation.Given().Number("interval").value_or(kUsualSeconds));
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port to watch", "see `port list`");
    }
    if (auto screen = invocation.HasScreen() ? Screen::Open() : nullptr) {
        return ShowTopScreen(invocation, std::move(screen), selected, interval);
    }
    return PrintTop(invocation, selected, interval);
}

std::string TopNotes() {
    return "On a console it is a screen that is drawn anew all the time; behind it the console is "
           "as "
           "it was. Keys: q or Esc leaves, p or a blank pauses, / takes a text that ports have to "
           "have, the arrows to the left and right choose the column to sort by and o its order, "
           "those up and down move the list, ? tells more. Anywhere else, and with -o table, it "
           "prints a table or rows for each interval; the first when the first interval is over.";
}

}  // namespace

CommandRows TopCommands() {
    static const Command kCommands[] = {
        {.path = "top",
         .help = "watch all ports: rates, errors, temperatures and events",
         .arguments = kTopArguments,
         .run = Top,
         .example = "top --interval 1",
         .result = ShapeOf<kTopList>,
         .notes = TopNotes},
    };
    return kCommands;
}

}  // namespace vxmgr
