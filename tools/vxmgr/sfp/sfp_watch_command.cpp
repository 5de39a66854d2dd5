// sfp watch.
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/watch.h"
#include "vxmgr/commands.h"
#include "vxmgr/sfp/sfp_port.h"

namespace vxmgr {
namespace {

constexpr Argument kSfpWatchArguments[] = {kIntervalArgument, kTurnsArgument, kForArgument};
constexpr FieldType kMeasured = kText.OrNull();
constexpr char kMeasuredAbout[] = "a decimal number; null: not known";

struct Measured {
    const Port* port;
    SfpReadings readings;
};

template <SfpQuantity quantity>
Value PlainValue(const Measured& measured) {
    return ReadingValue(quantity, measured.readings.Of(quantity).value);
}
template <SfpQuantity quantity>
Value PowerValue(const Measured& measured) {
    return DecibelValue(measured.readings.Of(quantity).value);
}

Value TroubleValue(const Measured& measured) {
    const std::string trouble = TroubleText(measured.readings);
    return Value::Text(trouble)
        .Shown(trouble.empty() ? "none" : trouble)
        .In(trouble.empty() ? Tone::Plain : Tone::Warning);
}

const Fields<Measured> kMeasuredFields = {
    TimeField<Measured>("UTC"),
    {PortKeys(kPortIndex | kAdapterSerial), &Measured::port},
    {"temperature_c", "Temperature", "TEMP.", kMeasured, PlainValue<SfpQuantity::Temperature>,
     kMeasuredAbout, 9},
    {"voltage_v", "Supply voltage", "SUPPLY", kMeasured, PlainValue<SfpQuantity::Voltage>,
     kMeasuredAbout, 8},
    {"bias_ma", "Laser bias", "BIAS", kMeasured, PlainValue<SfpQuantity::Bias>, kMeasuredAbout, 9},
    {"tx_power_mw", "Sent power", kMeasured, PlainValue<SfpQuantity::SentPower>, kMeasuredAbout},
    {"tx_power_dbm", "Sent power", "TX POWER", kMeasured, PowerValue<SfpQuantity::SentPower>,
     kMeasuredAbout, 10},
    {"rx_power_mw", "Received power", kMeasured, PlainValue<SfpQuantity::ReceivedPower>,
     kMeasuredAbout},
    {"rx_power_dbm", "Received power", "RX POWER", kMeasured,
     PowerValue<SfpQuantity::ReceivedPower>, kMeasuredAbout, 10},
    {"trouble", "Trouble", "TROUBLE", kText, TroubleValue, "empty when all is well"},
};

const auto kMeasuredList = ListOf("readings", "Readings", kMeasuredFields);

ExitCode SfpWatch(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<WatchedPort> watched;
    const auto measure = [](const Port& port, Device device, const SfpIdentity& identity) {
        return [port, device = std::make_shared<Device>(std::move(device)), identity](
                   PortTask&, WatchTurn& turn) {
            SfpDiagnostics page{};
            turn.status = ReadSfp(device->Handle(), kSfpPages[1], 0,
                                  {reinterpret_cast<uint8_t*>(&page), sizeof page});
            if (turn.status == HXMGT_SUCCESS) {
                turn.rows.push_back(kMeasuredFields.Make({&port, ReadDiagnostics(identity, page)}));
            }
        };
    };
    const ExitCode started = ForEachSfpModule(
        invocation, ports,
        [&](const Port& port, Device& device, const SfpModule& module, std::string*) {
            if (module.Reachable()) {
                watched.push_back({port, measure(port, std::move(device), module.identity)});
            } else {
                invocation.Note("port " + std::to_string(port.index) +
                                " is left out: its transceiver has no diagnostics");
            }
            return HX_STATUS{HXMGT_SUCCESS};
        });
    return WatchPorts(invocation, GivenPlan(invocation, "transceiver"), std::move(watched),
                      started);
}

}  // namespace

CommandRows SfpWatchCommands() {
    static const Command kCommands[] = {
        {.path = "sfp watch",
         .help = "print measured values as they come",
         .arguments = kSfpWatchArguments,
         .run = SfpWatch,
         .example = "sfp watch --interval 10 --count 3",
         .result = ShapeOf<kMeasuredList>},
    };
    return kCommands;
}

}  // namespace vxmgr
