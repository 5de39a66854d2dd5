// A card for each port: identity, link, transceiver with its limits, counters.
#include <algorithm>
#include <cmath>

#include "vxmgr/support/report_parts.h"

namespace vxmgr {
namespace {

constexpr size_t kFewPorts = 8;  // whose counters are all shown

// The row about the same port in another document's list; null: none.
const ReportJson& RowOf(const ReportJson& list, int64_t port) {
    static const ReportJson kNone;
    for (const ReportJson& row : list) {
        if (PortNumber(row) == port) {
            return row;
        }
    }
    return kNone;
}

std::string StateOf(const ReportJson& port) {
    const ReportJson& answers = ValueAt(port, "answers");
    if (answers.is_boolean() && !answers.get<bool>()) {
        return "not answering";
    }
    return FlagAt(port, "link.disabled") ? "disabled" : ShownAt(port, "link.state");
}

// Where a reading lies between its limits, as a bar: alarm zones, warning zones, and a mark.
class LimitBar {
  public:
    explicit LimitBar(const ReportJson& reading)
        : lowAlarm_(NumberAt(reading, "low_alarm")),
          lowWarning_(NumberAt(reading, "low_warning")),
          highWarning_(NumberAt(reading, "high_warning")),
          highAlarm_(NumberAt(reading, "high_alarm")),
          value_(NumberAt(reading, "value")) {
        if (!value_ || !highAlarm_ || !lowAlarm_ || *highAlarm_ <= *lowAlarm_) {
            return;
        }
        const double room = (*highAlarm_ - *lowAlarm_) / 8;
        from_ = std::min(*lowAlarm_ - room, *value_);
        to_ = std::max(*highAlarm_ + room, *value_);
        drawable_ = true;
    }

    bool IsDrawable() const { return drawable_; }

    void Draw(Html& html, const std::string& label) const {
        const auto svg = html.In("svg", {{"viewBox", "0 0 240 14"},
                                         {"class", "limits"},
                                         {"preserveAspectRatio", "none"},
                                         {"role", "img"},
                                         {"aria-label", label}});
        const double lowWarning = lowWarning_.value_or(*lowAlarm_);
        const double highWarning = highWarning_.value_or(*highAlarm_);
        AddZone(html, "zone-critical", from_, *lowAlarm_);
        AddZone(html, "zone-warning", *lowAlarm_, lowWarning);
        AddZone(html, "zone-good", lowWarning, highWarning);
        AddZone(html, "zone-warning", highWarning, *highAlarm_);
        AddZone(html, "zone-critical", *highAlarm_, to_);
        const std::string x = ShownNumber(std::clamp(At(*value_) - 1.5, 0.0, kWidth - 3), 1);
        html.Add("rect",
                 {{"class", "mark"}, {"x", x}, {"y", "0"}, {"width", "3"}, {"height", "14"}}, "");
    }

  private:
    static constexpr double kWidth = 240;

    double At(double value) const { return (value - from_) / (to_ - from_) * kWidth; }

    void AddZone(Html& html, const char* zone, double from, double to) const {
        if (to > from) {
            html.Add("rect",
                     {{"class", zone},
                      {"x", ShownNumber(At(from), 1)},
                      {"y", "4"},
                      {"width", ShownNumber(At(to) - At(from), 1)},
                      {"height", "6"}},
                     "");
        }
    }

    std::optional<double> lowAlarm_;
    std::optional<double> lowWarning_;
    std::optional<double> highWarning_;
    std::optional<double> highAlarm_;
    std::optional<double> value_;
    double from_ = 0;
    double to_ = 1;
    bool drawable_ = false;
};

std::string LimitsText(const ReportJson& reading) {
    const auto between = [&](const char* low, const char* high) {
        const std::string from = ShownAt(reading, low);
        const std::string to = ShownAt(reading, high);
        return from.empty() || to.empty() ? std::string() : from + " to " + to;
    };
    const std::string warning = between("low_warning", "high_warning");
    const std::string alarm = between("low_alarm", "high_alarm");
    return (warning.empty() ? "" : "good from " + warning) +
           (alarm.empty() ? "" : "; no alarm from " + alarm);
}

void AddReading(Html& html, const ReportJson& reading) {
    const std::string name = LabelOf(ShownAt(reading, "quantity"));
    const std::string state = ShownAt(reading, "state");
    std::string value = ShownAt(reading, "value", ShownAt(reading, "unit"));
    if (const std::string dbm = ShownAt(reading, "dbm", "dBm"); !dbm.empty()) {
        value += " (" + dbm + ")";
    }
    const auto item = html.In("li");
    html.Add("span", {{"class", "quantity"}}, name);
    html.Add("span", {{"class", "value"}}, value.empty() ? "\u2013" : value);
    if (state != "normal") {
        AddBadge(html, WellnessOf(state), LabelOf(state));
    }
    if (const LimitBar bar(reading); bar.IsDrawable()) {
        bar.Draw(html, name + " " + value + ", " + state + "; " + LimitsText(reading));
    }
}

void AddTransceiver(Html& html, const ReportJson& transceiver) {
    if (!transceiver.is_object()) {
        return;
    }
    html.Add("h4", "Transceiver");
    const std::string trouble = ShownAt(transceiver, "trouble");
    if (!trouble.empty()) {
        const auto line = html.In("p");
        AddBadge(html, Wellness::Critical, trouble);
    }
    AddFacts(html, {{"Module", ShownAt(transceiver, "identity.vendor") + " " +
                                   ShownAt(transceiver, "identity.part")},
                    {"Serial number", ShownAt(transceiver, "identity.serial")},
                    {"Speeds", ShownAt(transceiver, "identity.speeds_gbit", "Gbit/s")},
                    {"Technology", ShownAt(transceiver, "identity.technology")}});
    const ReportJson& readings = ValueAt(transceiver, "readings");
    if (readings.is_array() && !readings.empty()) {
        const auto list = html.In("ul", {{"class", "readings"}});
        for (const ReportJson& reading : readings) {
            AddReading(html, reading);
        }
    }
}

// Counters that stay at zero on a link that is well.
constexpr const char* kErrors[] = {
    "link_failures",
    "losses_of_sync",
    "losses_of_signal",
    "sequence_errors",
    "invalid_words",
    "invalid_crcs",
    "traffic.error_frames",
    "traffic.fec_uncorrectable",
    "traffic.frames_timed_out",
    "traffic.exchanges_timed_out",
    "traffic.tx_credits_recovered",
    "private.commands_failed",
    "private.commands_timed_out",
    "private.mailbox_failures",
    "private.firmware_resets",
    "private.link_downs",
};

void AddErrors(Html& html, const ReportJson& reading) {
    const auto line = html.In("p", {{"class", "errors"}});
    bool any = false;
    for (const char* path : kErrors) {
        const auto count = NumberAt(reading, path);
        if (count && *count > 0) {
            const std::string_view whole = path;
            AddBadge(html, Wellness::Warning,
                     LabelOf(whole.substr(whole.rfind('.') + 1)) + ": " + ShownAt(reading, path));
            html.Text(" ");
            any = true;
        }
    }
    if (!any) {
        AddBadge(html, Wellness::Good, "No errors counted");
    }
}

void AddCounterRows(ReportTable* table, const std::string& group, const ReportJson& counters) {
    constexpr const char* kKeys[] = {"port", "scsi_port"};
    for (const auto& [key, value] : counters.items()) {
        if (value.is_number() && std::ranges::find(kKeys, key) == std::end(kKeys)) {
            table->rows.push_back(
                {{group + LabelOf(key)}, {ShownValue(value), Wellness::Plain, true}});
        } else if (value.is_object()) {
            AddCounterRows(table, group + LabelOf(key) + ": ", value);
        }
    }
}

void AddCounters(Html& html, const ReportJson& reading, bool open) {
    if (!reading.is_object() || ValueAt(reading, "tx_frames").is_null()) {
        return;
    }
    html.Add("h4", "Counters");
    AddErrors(html, reading);
    ReportTable table{"Everything counted", {"Counter", "Count"}};
    AddCounterRows(&table, "", reading);
    const auto details = open ? html.In("details", {{"class", "wide"}}) : html.In("details");
    html.Add("summary", "All " + std::to_string(table.rows.size()) + " counters");
    AddTable(html, table);
}

void AddCard(Html& html, const ReportJson& port, const ReportDocuments& documents, bool few) {
    const int64_t number = PortNumber(port).value_or(-1);
    const std::string state = StateOf(port);
    const std::string anchor = PortAnchor(number);
    const auto card = html.In(
        "article", {{"class", "card"}, {"id", anchor}, {"aria-labelledby", anchor + "-title"}});
    {
        const auto head = html.In("header");
        html.Add("h3", {{"id", anchor + "-title"}}, PortTitle(port));
        AddBadge(html, WellnessOf(state), LabelOf(state));
    }
    html.Add("p", {{"class", "muted"}}, ShownAt(port, "identity.model_description"));
    AddFacts(html, {{"Port name", ShownWwn(port, "port_wwn"), true},
                    {"Node name", ShownWwn(port, "identity.node_wwn"), true},
                    {"Adapter", ShownAt(port, "adapter_serial")},
                    {"Model", ShownAt(port, "identity.model")},
                    {"PCI", ShownAt(port, "pci.location")},
                    {"PCIe link", ShownAt(port, "pci.link")},
                    {"Firmware", ShownAt(port, "versions.firmware")},
                    {"Driver", ShownAt(port, "versions.driver")}});
    html.Add("h4", "Link");
    AddFacts(html, {{"Speed", ShownAt(port, "link.speed_gbit", "Gbit/s")},
                    {"Highest speed", ShownAt(port, "link.max_speed_gbit", "Gbit/s")},
                    {"Topology", ShownAt(port, "link.topology")},
                    {"Port ID", ShownAt(port, "link.port_id")},
                    {"Targets", ShownAt(port, "fibre_channel.discovered_targets")},
                    {"Credits", ShownAt(port, "fibre_channel.bb_credits")},
                    {"FEC", ShownAt(port, "fibre_channel.fec")},
                    {"Credit recovery", LabelOf(ShownAt(port, "credit_recovery.state"))},
                    {"Status", ShownAt(port, "status")}});
    AddTransceiver(html, RowOf(documents.List("sfp show", "transceivers"), number));
    AddCounters(html, RowOf(documents.List("port stats", "readings"), number), few);
}

ReportTable Overview(const ReportJson& ports, const ReportDocuments& documents) {
    ReportTable table{
        "The ports at a glance",
        {"Port", "State", "Adapter", "Port name", "Speed", "Transceiver", "Firmware"}};
    for (const ReportJson& port : ports) {
        const int64_t number = PortNumber(port).value_or(-1);
        const std::string state = StateOf(port);
        std::string temperature;
        for (const ReportJson& reading :
             ValueAt(RowOf(documents.List("sfp show", "transceivers"), number), "readings")) {
            if (ShownAt(reading, "quantity") == "temperature") {
                temperature = ShownAt(reading, "value", ShownAt(reading, "unit"));
            }
        }
        table.rows.push_back({{PortTitle(port), Wellness::Plain, false, PortAnchor(number)},
                              {LabelOf(state), WellnessOf(state)},
                              {ShownAt(port, "adapter_serial")},
                              {ShownWwn(port, "port_wwn")},
                              {ShownAt(port, "link.speed_gbit", "Gbit/s"), Wellness::Plain, true},
                              {temperature, Wellness::Plain, true},
                              {ShownAt(port, "versions.firmware")}});
    }
    return table;
}

}  // namespace

void AddPorts(Html& html, const ReportDocuments& documents) {
    const ReportJson& ports = documents.List("port show", "ports");
    if (ports.empty()) {
        return;
    }
    AddSection(html, "ports", "Ports", [&] {
        const bool few = ports.size() <= kFewPorts;
        if (ports.size() > 1) {
            AddTable(html, Overview(ports, documents));
        }
        const auto cards = html.In("div", {{"class", "cards"}});
        for (const ReportJson& port : ports) {
            AddCard(html, port, documents, few);
        }
    });
}

}  // namespace vxmgr
