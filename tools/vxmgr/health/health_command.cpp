// health, explain health.
#include <algorithm>

#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/health/health_ports.h"

namespace vxmgr {
namespace {

constexpr Argument kHealthArguments[] = {
    NumberOption("--sample", "S",
                 "judge what is counted in the next S seconds instead of since the reset", 1,
                 86400),
};
constexpr Argument kExplainHealthArguments[] = {
    {.name = "ID", .help = "which check; without: a list of them"},
};

struct FindingRow {
    const Port* port;
    HealthFinding finding;

    const HealthCheck& Check() const { return *finding.check; }
    std::string Unit() const { return finding.check->unit; }
};

Value HealthStateValue(HealthState state) {
    constexpr Tone kTones[] = {Tone::Good, Tone::Plain, Tone::Warning, Tone::Bad};
    const auto place = static_cast<size_t>(state);
    return Value::Text(kHealthStates[place]).In(kTones[place]);
}

// A number with its unit; words stand for themselves.
template <auto member>
Value LimitValue(const FindingRow& row) {
    const std::string& text = row.finding.*member;
    const bool number = text.find_first_of("0123456789") != std::string::npos;
    const std::string unit = row.Unit();
    return text.empty()              ? Value()
           : unit.empty() || !number ? Value::Text(text)
                                     : Value::Text(text).Shown(text + " " + unit);
}

constexpr char kLimitAbout[] =
    "a decimal number in the unit, from which on (or, of light, down to which) the state is "
    "reached; "
    "null: there is none";

const Fields<FindingRow> kFindingFields = {
    {"state", "State", "STATE", Choice(kHealthStates),
     [](const FindingRow& row) { return HealthStateValue(row.finding.state); },
     "unknown: the question failed; what a port cannot tell is left out"},
    {PortKeys((kPortIndex & kPortColumns) | (kAdapterSerial & kPortColumns) | kOldSerialKey),
     &FindingRow::port},
    {"id", "", kText, [](const FindingRow& row) { return row.Check().id; },
     "of the check, for `explain health`"},
    {"check", "Check", "CHECK", kText, [](const FindingRow& row) { return row.Check().name; }},
    {"value", "Value", "VALUE", kText.OrNull(), LimitValue<&HealthFinding::value>,
     "a decimal number in the unit, or words"},
    {"unit", "", kText.OrNull(), &FindingRow::Unit},
    {"warning", "Warning", "WARNING", kText.OrNull(), LimitValue<&HealthFinding::warning>,
     kLimitAbout},
    {"critical", "Critical", "CRITICAL", kText.OrNull(), LimitValue<&HealthFinding::critical>,
     kLimitAbout},
    {"detail", "Detail", "DETAIL", kText.OrNull(),
     [](const FindingRow& row) { return row.finding.detail; }},
    {"status", "Status", kText.OrNull(),
     [](const FindingRow& row) { return StatusValue(row.finding.status); },
     "null, or the status that the question, or the port, failed with"},
};

struct HealthReport {
    HealthState state = HealthState::Unknown;
    std::vector<FindingRow> rows;
};

const Fields<HealthReport> kHealthFields = {
    {"state", "Health", "STATE", Choice(kHealthStates),
     [](const HealthReport& report) { return HealthStateValue(report.state); },
     "the worst of all; unknown: there is no port"},
    {"checks", "Checks", kFindingFields, &HealthReport::rows, "nothing to tell",
     "the worst first; with --quiet those alone that are not normal"},
};

ExitCode ExitOf(HealthState state) {
    return state == HealthState::Critical  ? ExitCode::HealthCritical
           : state == HealthState::Warning ? ExitCode::HealthWarning
                                           : ExitCode::Done;
}

ExitCode ShowHealth(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    HealthReport report;
    const auto health =
        ReadHealth(invocation, ports, {invocation.Given().Number("sample").value_or(0)});
    report.state = health.empty() ? HealthState::Unknown : HealthState::Normal;
    for (const PortHealth& one : health) {
        report.state = std::max(report.state, WorstOf(one.findings));
        for (const HealthFinding& finding : one.findings) {
            if (!invocation.Quiet() || finding.state != HealthState::Normal) {
                report.rows.push_back({one.port, finding});
            }
        }
    }
    // Within a state by port, and then as the table has them.
    std::ranges::stable_sort(report.rows, std::greater(),
                             [](const FindingRow& row) { return row.finding.state; });
    invocation.Result() = kHealthFields.Make(report);
    return ExitOf(report.state);
}

const Fields<HealthCheck> kCheckMeaningFields = {
    {"id", "ID", "ID", kText, &HealthCheck::id},
    {"check", "Check", "CHECK", kText, &HealthCheck::name},
    {"unit", "Unit", kText.OrNull(), &HealthCheck::unit},
    {"meaning", "Meaning", "MEANING", kText, &HealthCheck::meaning},
    {"advice", "What to do", kText, &HealthCheck::advice},
};

using CheckRows = std::vector<const HealthCheck*>;
const auto kCheckList = ListOf<CheckRows>("checks", "Checks", kCheckMeaningFields, "No checks.");
const auto kCheckSections =
    ListOf<CheckRows>("checks", "Checks", kCheckMeaningFields, ListLayout::Sections, "No checks.");

ExitCode ExplainHealth(Invocation& invocation) {
    CheckRows rows;
    if (!invocation.Given().Has("ID")) {
        for (const HealthCheck& check : HealthChecks()) {
            rows.push_back(&check);
        }
        invocation.Result() = kCheckList.Make(rows);
        return ExitCode::Done;
    }
    std::string id = Lowercase(invocation.Given().Text("ID"));
    std::ranges::replace(id, '-', '_');
    const HealthCheck* const check = FindHealthCheck(id);
    if (check == nullptr) {
        std::vector<std::string> ids;
        for (const HealthCheck& one : HealthChecks()) {
            ids.push_back(one.id);
        }
        const std::string near = Nearest(id, ids);
        invocation.Fail(ExitCode::NotFound, "no check \"" + invocation.Given().Text("ID") + "\"",
                        near.empty() ? "`explain health` lists them all"
                                     : "did you mean `explain health " + near + "`?");
    }
    rows = {check};
    invocation.Result() = kCheckSections.Make(rows);
    return ExitCode::Done;
}

std::string HealthNotes() {
    return "Each finding has a line, the worst first; with -q those alone that are not normal. The "
           "exit code is 0, 20 when there is a warning, 21 when something is critical. `explain "
           "health ID` tells what a check means and what to do. Firmware, settings and product "
           "data "
           "are read from the flash and checked.";
}

}  // namespace

CommandRows HealthCommands() {
    static const Command kCommands[] = {
        {.path = "health",
         .help =
             "is it well? temperature, light, links, fabric, firmware and settings of the ports",
         .arguments = kHealthArguments,
         .run = ShowHealth,
         .example = "health -q --sample 60",
         .result = ShapeOf<kHealthFields>,
         .notes = HealthNotes},
        {.path = "explain health",
         .help = "explain a check of the health, and what to do about it",
         .arguments = kExplainHealthArguments,
         .run = ExplainHealth,
         .example = "explain health received_power",
         .result = ShapeOf<kCheckSections>},
    };
    return kCommands;
}

}  // namespace vxmgr
