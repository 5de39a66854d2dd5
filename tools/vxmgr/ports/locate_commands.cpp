// adapter locate on|off|show: the LEDs that tell where an adapter is.
#include <algorithm>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

constexpr Argument kLocateArguments[] = {
    NumberOption("--for", "S", "end after S seconds (until it is switched off)", 1,
                 HX_BEACON_MOST_SECONDS),
};

enum LocateOutcome { kLocated, kAsItWas, kPlanned, kCannotLocate, kNotLocated, kLocateFailed };
constexpr const char* kLocateOutcomes[] = {"done",          "unchanged",  "planned",
                                           "not_supported", "not_proven", "failed"};
constexpr Tone kLocateTones[] = {Tone::Good,  Tone::Plain,   Tone::Plain,
                                 Tone::Plain, Tone::Warning, Tone::Bad};

struct BeaconState {
    std::optional<HX_BEACON> beacon;
    std::optional<LocateOutcome> outcome;
};

struct BeaconRow {
    const Port* port;
    BeaconState state;
};

const std::optional<HX_BEACON>& BeaconOf(const BeaconRow& row) {
    return row.state.beacon;
}

// Only a driver that knows of beacons can say that there is none.
Value BeaconSupported(const BeaconRow& row) {
    return row.state.beacon                           ? Value::Flag(true)
           : row.port->failure == HXMGT_NOT_SUPPORTED ? Value::Flag(false)
                                                      : Value();
}

Value BeaconEnd(const HX_BEACON& beacon) {
    if (beacon.on == 0) {
        return {};
    }
    return beacon.seconds != 0 ? Value::Number(beacon.seconds, "s") : Value().Shown("never");
}

std::vector<std::string> LitLeds(const HX_BEACON& beacon) {
    std::vector<std::string> names;
    if (beacon.leds & HX_BEACON_GREEN) {
        names.push_back("green");
    }
    if (beacon.leds & HX_BEACON_AMBER) {
        names.push_back("amber");
    }
    return names;
}

Value OutcomeOf(const BeaconRow& row) {
    const auto& outcome = row.state.outcome;
    return outcome ? Value::Text(kLocateOutcomes[*outcome]).In(kLocateTones[*outcome]) : Value();
}

template <bool changes>
const Fields<std::vector<BeaconRow>>& BeaconList() {
    static constexpr const char* kLeds[] = {"green", "amber"};
    static const Fields<BeaconRow> kBeacon = {
        {PortKeys(kPortIndex | kAdapterSerial | kOldSerialKey), &BeaconRow::port},
        {"supported", "Supported", kFlag.OrNull(), BeaconSupported},
        {"on", "Beacon", "BEACON", kFlag.OrNull(),
         Of(BeaconOf,
            [](const HX_BEACON& beacon) {
                return Value::Flag(beacon.on != 0).Shown(beacon.on != 0 ? "on" : "off");
            })},
        {"seconds_left", "Ends in", "ENDS IN", Integer("s").OrNull(), Of(BeaconOf, BeaconEnd),
         "null: it is off, or on until it is switched off"},
        {"leds", "LEDs", changes ? "" : "LIT NOW", Choices(kLeds).OrNull(), Of(BeaconOf, LitLeds),
         "lit at this moment"},
        {"outcome", "Outcome", changes ? "OUTCOME" : "", Choice(kLocateOutcomes).OrNull(),
         OutcomeOf, "null: nothing was to be changed"},
        {kPortStatus, &BeaconRow::port},
    };
    static const auto kFields = ListOf("beacons", "Beacons", kBeacon, "No ports.");
    return kFields;
}

HX_STATUS ReadBeacon(uint32_t handle, BeaconState* state) {
    HX_BEACON beacon{};
    const HX_STATUS status = HXGetBeaconControl(handle, &beacon);
    if (status == HXMGT_SUCCESS) {
        state->beacon = beacon;
    }
    return status;
}

// Switches the LED and reads it back.
HX_STATUS SwitchBeacon(PortVisit& visit, const HX_BEACON& wanted, bool dry, BeaconState* state) {
    visit.query = "beacon";
    HX_STATUS status = ReadBeacon(visit.Handle(), state);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    if (wanted.on == 0 && state->beacon->on == 0) {
        state->outcome = kAsItWas;
        return HXMGT_SUCCESS;
    }
    if (dry) {
        state->outcome = kPlanned;
        return HXMGT_SUCCESS;
    }
    visit.task.Answered();
    status = HXUpdateBeaconControl(visit.Handle(), &wanted);
    if (status == HXMGT_SUCCESS) {
        state->outcome = kNotLocated;
        visit.task.Answered();
        status = ReadBeacon(visit.Handle(), state);
    }
    if (status == HXMGT_SUCCESS && (state->beacon->on != 0) == (wanted.on != 0)) {
        state->outcome = kLocated;
    }
    return status;
}

// The ports of the selected adapters; all adapters when nothing is selected.
std::vector<Port*> PortsToLocate(Invocation& invocation, std::vector<Port>& ports, bool onlyOne) {
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    if (onlyOne && selected.size() != 1) {
        invocation.Fail(selected.empty() ? ExitCode::NotFound : ExitCode::Usage,
                        selected.empty() ? "there is no adapter"
                                         : "the command works on one adapter, and " +
                                               std::to_string(selected.size()) + " are selected",
                        "choose one with -a; `adapter list` shows them");
    }
    std::vector<Port*> found;
    for (const Adapter* adapter : selected) {
        for (const Port* port : adapter->ports) {
            found.push_back(&ports[static_cast<size_t>(port - ports.data())]);
        }
    }
    return found;
}

template <bool changes>
ExitCode AskBeacons(Invocation& invocation, const AskPort<BeaconState>& ask,
                    std::vector<BeaconRow>* rows, std::vector<Port>& ports) {
    const auto answers = ForEachPort(invocation, PortsToLocate(invocation, ports, changes), ask);
    const ExitCode exit = ReportAnswers(invocation, answers);
    for (const auto& one : answers) {
        BeaconState state = one.answer;
        if (changes && one.status != HXMGT_SUCCESS && !state.outcome) {
            state.outcome = CannotTell(one.status) ? kCannotLocate : kLocateFailed;
        }
        rows->push_back({one.port, state});
    }
    invocation.Result() = BeaconList<changes>().Make(*rows);
    return exit;
}

template <bool on>
ExitCode LocateAdapter(Invocation& invocation) {
    HX_BEACON wanted{};
    wanted.on = on ? 1 : 0;
    if constexpr (on) {
        wanted.seconds = static_cast<uint32_t>(invocation.Given().Number("for").value_or(0));
    }
    const bool dry = invocation.DryRun();
    std::vector<Port> ports = ReadPorts(invocation);
    std::vector<BeaconRow> rows;
    const ExitCode exit = AskBeacons<true>(
        invocation,
        [wanted, dry](PortVisit& visit, BeaconState* state) {
            return SwitchBeacon(visit, wanted, dry, state);
        },
        &rows, ports);
    const auto has = [&](LocateOutcome outcome) {
        return std::ranges::any_of(
            rows, [&](const BeaconRow& row) { return row.state.outcome == outcome; });
    };
    if (has(kLocated) || has(kNotLocated)) {
        invocation.Changed();
    }
    if (has(kPlanned)) {
        invocation.Note(std::string("dry run: the LEDs would be switched ") + (on ? "on" : "off"));
    }
    if (exit == ExitCode::Done && has(kNotLocated)) {
        invocation.Fail(ExitCode::NotProven, "the LED was switched, but does not read back");
    }
    return exit;
}

ExitCode LocateShow(Invocation& invocation) {
    std::vector<Port> ports = ReadPorts(invocation);
    std::vector<BeaconRow> rows;
    return AskBeacons<false>(
        invocation,
        [](PortVisit& visit, BeaconState* state) {
            visit.query = "beacon";
            return ReadBeacon(visit.Handle(), state);
        },
        &rows, ports);
}

}  // namespace

CommandRows LocateCommands() {
    static const Command kCommands[] = {
        {.path = "adapter locate on",
         .risk = Risk::Reversible,
         .help = "let the LEDs of an adapter's ports blink",
         .schema = "adapter.locate",
         .arguments = kLocateArguments,
         .run = LocateAdapter<true>,
         .example = "adapter locate on --for 60 -a EMU7740A0001",
         .result = ShapeOf<BeaconList<true>>},
        {.path = "adapter locate off",
         .risk = Risk::Reversible,
         .help = "end the blinking",
         .schema = "adapter.locate",
         .run = LocateAdapter<false>,
         .example = "adapter locate off -a EMU7740A0001",
         .result = ShapeOf<BeaconList<true>>},
        {.path = "adapter locate show",
         .help = "show which ports blink",
         .schema = "adapter.locate",
         .run = LocateShow,
         .example = "adapter locate show",
         .result = ShapeOf<BeaconList<false>>},
    };
    return kCommands;
}

}  // namespace vxmgr
