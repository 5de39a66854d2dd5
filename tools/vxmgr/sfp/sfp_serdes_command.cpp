// sfp serdes: the signal of each lane.
#include <cstring>

#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/read_list.h"
#include "vxmgr/app/values.h"
#include "vxmgr/sfp/commands.h"
#include "vxmgr/sfp/sfp_diagnostics.h"

namespace vxmgr {
namespace {

using Lane = HX_SERDES_LANE;

constexpr const char* kModulations[] = {"nrz", "pam4"};
constexpr char kStepsAbout[] = "a decimal number: steps of the chip";

struct LaneRow {
    const Port* port = nullptr;
    std::optional<Lane> lane = std::nullopt;  // none: a port that failed

    std::vector<std::string> Taps() const {
        std::vector<std::string> taps;
        if (lane) {
            int16_t steps[std::size(Lane{}.dfe)];
            std::memcpy(steps, lane->dfe, sizeof steps);
            for (const int step : steps) {
                taps.push_back(std::to_string(step));
            }
        }
        return taps;
    }
};

// JSON has numbers that may be negative as decimal texts.
Value StepsValue(int steps) {
    return Value::Text(std::to_string(steps));
}

Value EyeWidthValue(const Lane& lane) {
    const auto width = Packed<&Lane::eyeWidth>(lane);
    return Value::Number(width).Shown(DecimalText(width / 1000.0, 3) + " UI");
}

Value CtleValue(const Lane& lane) {
    const std::string text = DecimalText(Packed<&Lane::ctle>(lane) / 10.0, 1);
    return Value::Text(text).Shown(text + " dB");
}

const Fields<std::vector<LaneRow>>& SerdesFields() {
    // Null in the row of a port that failed.
    const auto of = [](auto get) {
        return [get](const LaneRow& row) { return row.lane ? get(*row.lane) : Value(); };
    };
    const auto number = [](auto get) { return Of(&LaneRow::lane, get); };
    constexpr auto kMillivolts = Integer("mV").OrNull();
    constexpr auto kTextOrNull = kText.OrNull();
    static const Fields<LaneRow> kLanes = {
        {PortKeys(kPortIndex | kOldSerialKey), &LaneRow::port},
        {"lane", "Lane", "LANE", kInteger.OrNull(), number(Packed<&Lane::lane>)},
        {"speed_gbit", "Speed", "SPEED", Integer("Gbit/s").OrNull(),
         of([](const Lane& lane) { return SpeedValue(lane.speed); })},
        {"locked", "Locked", "LOCKED", kFlag.OrNull(),
         number([](const Lane& lane) { return lane.locked != 0; }),
         "the receiver follows the signal"},
        {"modulation", "Modulation", Choice(kModulations).OrNull(),
         number([](const Lane& lane) { return NameAt(kModulations, lane.modulation); })},
        {"tx_amplitude_mv", "Amplitude", "AMPLITUDE", kMillivolts,
         number(Packed<&Lane::txAmplitude>)},
        {"tx_pre", "Before the main tap", "PRE", kTextOrNull,
         of([](const Lane& lane) { return StepsValue(lane.txPre); }), kStepsAbout},
        {"tx_main", "Main tap", "MAIN", kTextOrNull,
         of([](const Lane& lane) { return StepsValue(lane.txMain); }), kStepsAbout},
        {"tx_post", "Behind the main tap", "POST", kTextOrNull,
         of([](const Lane& lane) { return StepsValue(lane.txPost); }), kStepsAbout},
        {"eye_height_mv", "Eye height", "EYE HEIGHT", kMillivolts,
         number(Packed<&Lane::eyeHeight>)},
        {"eye_width_mui", "Eye width", "EYE WIDTH", kInteger.OrNull(), of(EyeWidthValue),
         "1/1000 unit interval"},
        {"ctle_db", "Receive equaliser", "CTLE", kTextOrNull, of(CtleValue), "a decimal number"},
        {"dfe", "Decision feedback equaliser", FieldType{.array = true}, &LaneRow::Taps,
         "decimal numbers: steps of each tap"},
        {PortStatus(), &LaneRow::port},
    };
    static const auto kFields = ListOf("lanes", "Lanes", kLanes, "no lanes");
    return kFields;
}

HX_STATUS ReadLanes(PortVisit& visit, std::vector<Lane>* lanes) {
    visit.query = "signals of the SerDes lanes";
    return ReadList(
        [&](Lane* records, uint32_t* count) {
            return HXReadSerdesParams(visit.Handle(), records, count);
        },
        lanes);
}

ExitCode SfpSerdes(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const auto answers =
        ForEachPort<std::vector<Lane>>(invocation, SelectPorts(invocation, ports), ReadLanes);
    const ExitCode exit = ReportAnswers(invocation, answers);
    std::vector<LaneRow> rows;
    for (const auto& one : answers) {
        for (const Lane& lane : one.answer) {
            rows.push_back({one.port, lane});
        }
        if (one.status != HXMGT_SUCCESS) {
            rows.push_back({one.port, std::nullopt});
        }
    }
    invocation.Result() = SerdesFields().Make(rows);
    return exit;
}

}  // namespace

CommandRows SfpSerdesCommands() {
    static const Command kCommands[] = {
        {.path = "sfp serdes",
         .help = "show the signal of each lane between adapter and transceiver",
         .run = SfpSerdes,
         .example = "sfp serdes -p scsi:3",
         .result = ShapeOf<SerdesFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
