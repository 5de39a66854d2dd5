#include "vxmgr/health/health_judging.h"

namespace vxmgr {
namespace {

bool JudgeTransceiver(const HealthReading& reading, HealthFinding* finding) {
    const TransceiverReading& module = reading.transceiver;
    if (!module.present) {
        finding->value = "no module";
        SetState(finding, HealthState::Critical, "there is no transceiver in the cage");
        return true;
    }
    finding->value = "present";
    if (!module.readings) {
        finding->detail = "it has no diagnostics";
        return true;
    }
    const SfpReadings& readings = *module.readings;
    if (readings.transmitFault) {
        finding->value = "fault";
        SetState(finding, HealthState::Critical, "the transmitter says that it fails");
    } else if (readings.transmitDisabled) {
        finding->value = "off";
        SetState(finding, HealthState::Warning, "the transmitter is switched off");
    } else if (!readings.ready) {
        finding->value = "not ready";
        SetState(finding, HealthState::Warning, "it has nothing to tell yet");
    } else if (!readings.checksumHolds) {
        SetState(finding, HealthState::Warning, "the checksum of its limits is wrong");
    }
    return true;
}

struct StateWord {
    HealthState state;
    const char* detail;
};
constexpr StateWord kSfpStates[] = {
    {HealthState::Normal, ""},
    {HealthState::Warning, "low warning of the transceiver"},
    {HealthState::Warning, "high warning of the transceiver"},
    {HealthState::Critical, "low alarm of the transceiver"},
    {HealthState::Critical, "high alarm of the transceiver"},
};

std::string Measured(SfpQuantity quantity, const std::optional<double>& value) {
    if (!value) {
        return {};
    }
    const bool power = quantity == SfpQuantity::SentPower || quantity == SfpQuantity::ReceivedPower;
    const std::string text = power ? DecibelText(*value) : DecimalText(*value, 2);
    return text.empty() ? "no light" : text;
}

// Too little of them is what happens to light.
constexpr bool FailsLow(SfpQuantity quantity) {
    return quantity == SfpQuantity::SentPower || quantity == SfpQuantity::ReceivedPower;
}

template <SfpQuantity quantity>
bool JudgeQuantity(const HealthReading& reading, HealthFinding* finding) {
    if (!reading.transceiver.readings) {
        return false;
    }
    const SfpReading& measured = reading.transceiver.readings->Of(quantity);
    const bool high = measured.state == SfpState::HighWarning ||
                      measured.state == SfpState::HighAlarm ||
                      (measured.state == SfpState::Normal && !FailsLow(quantity));
    finding->value = Measured(quantity, measured.value);
    finding->warning = Measured(quantity, high ? measured.highWarning : measured.lowWarning);
    finding->critical = Measured(quantity, high ? measured.highAlarm : measured.lowAlarm);
    const StateWord& word = kSfpStates[static_cast<size_t>(measured.state)];
    SetState(finding, word.state, word.detail);
    return true;
}

using enum HealthQuestion;
constexpr HealthCheck kTransceiverChecks[] = {
    {"transceiver", "transceiver", "", Transceiver, false, JudgeTransceiver,
     "Whether there is a transceiver, and whether it says that it fails, is off or is not ready.",
     "put one in, or replace it; `sfp show` names it"},
    {"transceiver_temperature", "transceiver temperature", kCelsius, Transceiver, false,
     JudgeQuantity<SfpQuantity::Temperature>,
     "The temperature of the transceiver, against the limits that its maker stored in it.",
     kLightAdvice},
    {"transceiver_voltage", "transceiver voltage", "V", Transceiver, false,
     JudgeQuantity<SfpQuantity::Voltage>,
     "The supply voltage of the transceiver, against the limits that its maker stored in it.",
     "replace the transceiver; when the next one says the same, the adapter"},
    {"transceiver_bias", "laser bias", "mA", Transceiver, false, JudgeQuantity<SfpQuantity::Bias>,
     "The current through the laser. It rises as a laser ages.",
     "replace the transceiver before it fails"},
    {"sent_power", "sent power", "dBm", Transceiver, false, JudgeQuantity<SfpQuantity::SentPower>,
     "The light that the transceiver sends, against the limits that its maker stored in it.",
     "replace the transceiver"},
    {"received_power", "received power", "dBm", Transceiver, false,
     JudgeQuantity<SfpQuantity::ReceivedPower>,
     "The light that reaches the transceiver. Too little comes from dirt, a bent or broken cable, "
     "or "
     "a laser at the other end that fails.",
     kLightAdvice},
};

}  // namespace

std::span<const HealthCheck> TransceiverChecks() {
    return kTransceiverChecks;
}

}  // namespace vxmgr
