// sfp serdes: the signal of each lane.
#include <cstring>

#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/read_list.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
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

// Null in the row of a port that failed.
template <class Get>
constexpr auto OfLane(Get get) {
    return Of(&LaneRow::lane, get);
}

const Fields<LaneRow> kLaneFields = {
    {PortKeys(kPortIndex | kOldSerialKey), &LaneRow::port},
    {"lane", "Lane", "LANE", kInteger.OrNull(), OfLane(Packed<&Lane::lane>)},
    {"speed_gbit", "Speed", "SPEED", Integer("Gbit/s").OrNull(),
     OfLane([](const Lane& lane) { return SpeedValue(lane.speed); })},
    {"locked", "Locked", "LOCKED", kFlag.OrNull(),
     OfLane([](const Lane& lane) { return lane.locked != 0; }), "the receiver follows the signal"},
    {"modulation", "Modulation", Choice(kModulations).OrNull(),
     OfLane([](const Lane& lane) { return NameAt(kModulations, lane.modulation); })},
    {"tx_amplitude_mv", "Amplitude", "AMPLITUDE", Integer("mV").OrNull(),
     OfLane(Packed<&Lane::txAmplitude>)},
    {"tx_pre", "Before the main tap", "PRE", kText.OrNull(),
     OfLane([](const Lane& lane) { return StepsValue(lane.txPre); }), kStepsAbout},
    {"tx_main", "Main tap", "MAIN", kText.OrNull(),
     OfLane([](const Lane& lane) { return StepsValue(lane.txMain); }), kStepsAbout},
    {"tx_post", "Behind the main tap", "POST", kText.OrNull(),
     OfLane([](const Lane& lane) { return StepsValue(lane.txPost); }), kStepsAbout},
    {"eye_height_mv", "Eye height", "EYE HEIGHT", Integer("mV").OrNull(),
     OfLane(Packed<&Lane::eyeHeight>)},
    {"eye_width_mui", "Eye width", "EYE WIDTH", kInteger.OrNull(), OfLane(EyeWidthValue),
     "1/1000 unit interval"},
    {"ctle_db", "Receive equaliser", "CTLE", kText.OrNull(), OfLane(CtleValue), "a decimal number"},
    {"dfe", "Decision feedback equaliser", FieldType{.array = true}, &LaneRow::Taps,
     "decimal numbers: steps of each tap"},
    {kPortStatus, &LaneRow::port},
};
const auto kSerdesFields = ListOf("lanes", "Lanes", kLaneFields, "no lanes");

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
    invocation.Result() = kSerdesFields.Make(rows);
    return exit;
}

}  // namespace

CommandRows SfpSerdesCommands() {
    static const Command kCommands[] = {
        {.path = "sfp serdes",
         .help = "show the signal of each lane between adapter and transceiver",
         .run = SfpSerdes,
         .example = "sfp serdes -p scsi:3",
         .result = ShapeOf<kSerdesFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
