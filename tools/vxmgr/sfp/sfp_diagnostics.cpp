#include "vxmgr/sfp/sfp_diagnostics.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <utility>

namespace vxmgr {
namespace {

struct QuantityRow {
    const char* name;
    const char* unit;
    int decimals;
    double scale;  // of one count
    bool isSigned;
};
constexpr QuantityRow kQuantities[kSfpQuantities] = {
    {"temperature", "\u00b0C", 2, 1.0 / 256, true}, {"supply voltage", "V", 4, 0.0001, false},
    {"laser bias", "mA", 3, 0.002, false},          {"sent power", "mW", 4, 0.0001, false},
    {"received power", "mW", 4, 0.0001, false},
};
constexpr const char* kQuantityKeys[kSfpQuantities] = {"temperature", "voltage", "bias", "tx_power",
                                                       "rx_power"};
constexpr FieldType kDecimal = kText.OrNull();
constexpr char kDecimalNote[] = "a decimal number; null: not known";

const QuantityRow& RowOf(SfpQuantity quantity) {
    return kQuantities[static_cast<size_t>(quantity)];
}

struct StateRow {
    const char* shown;
    Tone tone;
};
constexpr StateRow kStates[] = {
    {"normal", Tone::Good},   {"low warning", Tone::Warning}, {"high warning", Tone::Warning},
    {"low alarm", Tone::Bad}, {"high alarm", Tone::Bad},
};
constexpr const char* kStateNames[] = {"normal", "low_warning", "high_warning", "low_alarm",
                                       "high_alarm"};

constexpr uint8_t kTransmitDisabled = 0x80 | 0x40;  // by the pin, by software
constexpr uint8_t kTransmitFault = 0x04;
constexpr uint8_t kSignalLost = 0x02;
constexpr uint8_t kNotReady = 0x01;

using Word = uint8_t[2];

int32_t SignedOf(const Word& word) {
    return static_cast<int16_t>(BigEndian(word));
}

double FloatOf(const uint8_t (&bytes)[4]) {
    return std::bit_cast<float>(static_cast<uint32_t>(BigEndian(bytes)));
}

std::optional<double> Finite(double value) {
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

double Linear(const uint8_t (&calibration)[2][2], double count) {
    return static_cast<double>(BigEndian(calibration[0])) / 256 * count + SignedOf(calibration[1]);
}

// The count as an internally calibrated module would give it.
double Calibrated(const SfpDiagnostics& page, SfpQuantity quantity, double count) {
    switch (quantity) {
        case SfpQuantity::Temperature:
            return Linear(page.temperature, count);
        case SfpQuantity::Voltage:
            return Linear(page.voltage, count);
        case SfpQuantity::Bias:
            return Linear(page.bias, count);
        case SfpQuantity::SentPower:
            return Linear(page.sentPower, count);
        case SfpQuantity::ReceivedPower:
            break;
    }
    double power = 0;
    for (const auto& coefficient : page.receivedPower) {
        power = power * count + FloatOf(coefficient);
    }
    return power;
}

class Reader {
  public:
    Reader(const SfpIdentity& identity, const SfpDiagnostics& page)
        : identity_(identity), page_(page) {}

    SfpReading Read(SfpQuantity quantity) const {
        const auto& limits = page_.limits[static_cast<size_t>(quantity)];
        SfpReading reading;
        reading.value = Measure(quantity, page_.values[static_cast<size_t>(quantity)]);
        reading.highAlarm = Measure(quantity, limits[0]);
        reading.lowAlarm = Measure(quantity, limits[1]);
        reading.highWarning = Measure(quantity, limits[2]);
        reading.lowWarning = Measure(quantity, limits[3]);
        reading.state = identity_.HasAlarmFlags() ? Flagged(quantity) : Compared(reading);
        return reading;
    }

  private:
    std::optional<double> Measure(SfpQuantity quantity, const Word& word) const {
        const QuantityRow& row = RowOf(quantity);
        double count = row.isSigned ? SignedOf(word) : static_cast<double>(BigEndian(word));
        if (identity_.ExternallyCalibrated()) {
            count = Calibrated(page_, quantity, count);
        }
        // A calibration may lead below nothing where the light is out.
        return Finite((row.isSigned ? count : std::max(count, 0.0)) * row.scale);
    }

    SfpState Flagged(SfpQuantity quantity) const {
        const uint32_t high = 0x8000u >> 2 * static_cast<uint32_t>(quantity);
        const auto alarms = static_cast<uint32_t>(BigEndian(page_.alarms));
        const auto warnings = static_cast<uint32_t>(BigEndian(page_.warnings));
        return (alarms & high) != 0          ? SfpState::HighAlarm
               : (alarms & high >> 1) != 0   ? SfpState::LowAlarm
               : (warnings & high) != 0      ? SfpState::HighWarning
               : (warnings & high >> 1) != 0 ? SfpState::LowWarning
                                             : SfpState::Normal;
    }

    static SfpState Compared(const SfpReading& reading) {
        // Limits that are all the same were never set.
        if (reading.highAlarm == reading.lowAlarm) {
            return SfpState::Normal;
        }
        const auto& value = reading.value;
        return value && reading.highAlarm && *value > *reading.highAlarm ? SfpState::HighAlarm
               : value && reading.lowAlarm && *value < *reading.lowAlarm ? SfpState::LowAlarm
               : value && reading.highWarning && *value > *reading.highWarning
                   ? SfpState::HighWarning
               : value && reading.lowWarning && *value < *reading.lowWarning ? SfpState::LowWarning
                                                                             : SfpState::Normal;
    }

    const SfpIdentity& identity_;
    const SfpDiagnostics& page_;
};

bool IsPower(SfpQuantity quantity) {
    return quantity == SfpQuantity::SentPower || quantity == SfpQuantity::ReceivedPower;
}

}  // namespace

SfpReadings ReadDiagnostics(const SfpIdentity& identity, const SfpDiagnostics& page) {
    const Reader reader(identity, page);
    SfpReadings readings;
    for (size_t i = 0; i < kSfpQuantities; ++i) {
        readings.quantities[i] = reader.Read(static_cast<SfpQuantity>(i));
    }
    readings.transmitDisabled = (page.status & kTransmitDisabled) != 0;
    readings.transmitFault = (page.status & kTransmitFault) != 0;
    readings.signalLost = (page.status & kSignalLost) != 0;
    readings.ready = (page.status & kNotReady) == 0;
    readings.checksumHolds = ChecksumHolds(page);
    return readings;
}

std::string DecimalText(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string DecibelText(double milliwatts) {
    return milliwatts > 0 ? DecimalText(10 * std::log10(milliwatts), 2) : std::string();
}

Value ReadingValue(SfpQuantity quantity, const std::optional<double>& value) {
    if (!value) {
        return {};
    }
    const QuantityRow& row = RowOf(quantity);
    const std::string text = DecimalText(*value, row.decimals);
    return Value::Text(text).Shown(text + " " + row.unit);
}

Value DecibelValue(const std::optional<double>& milliwatts) {
    const std::string text = milliwatts ? DecibelText(*milliwatts) : std::string();
    return text.empty() ? Value() : Value::Text(text).Shown(text + " dBm");
}

template <auto field>
constexpr auto kReadingOf =
    [](const SfpReadingRow& row) { return ReadingValue(row.quantity, row.reading->*field); };
const Fields<SfpReadingRow> kReadingFields = {
    {"quantity", "Quantity", "QUANTITY", Choice(kQuantityKeys),
     [](const SfpReadingRow& row) {
         return Value::Text(kQuantityKeys[static_cast<size_t>(row.quantity)])
             .Shown(RowOf(row.quantity).name);
     }},
    {"unit", "Unit", kText, [](const SfpReadingRow& row) { return RowOf(row.quantity).unit; }},
    {"value", "Value", "VALUE", kDecimal, kReadingOf<&SfpReading::value>, kDecimalNote},
    {"dbm", "dBm", "POWER", kDecimal,
     [](const SfpReadingRow& row) {
         return IsPower(row.quantity) ? DecibelValue(row.reading->value) : Value();
     },
     kDecimalNote},
    {"state", "State", "STATE", Choice(kStateNames),
     [](const SfpReadingRow& row) {
         const auto state = static_cast<size_t>(row.reading->state);
         return Value::Text(kStateNames[state]).Shown(kStates[state].shown).In(kStates[state].tone);
     }},
    {"low_alarm", "Low alarm", "LOW ALARM", kDecimal, kReadingOf<&SfpReading::lowAlarm>,
     kDecimalNote},
    {"low_warning", "Low warning", "LOW WARNING", kDecimal, kReadingOf<&SfpReading::lowWarning>,
     kDecimalNote},
    {"high_warning", "High warning", "HIGH WARNING", kDecimal, kReadingOf<&SfpReading::highWarning>,
     kDecimalNote},
    {"high_alarm", "High alarm", "HIGH ALARM", kDecimal, kReadingOf<&SfpReading::highAlarm>,
     kDecimalNote},
};

std::vector<SfpReadingRow> ReadingRows(const SfpReadings& readings) {
    std::vector<SfpReadingRow> rows;
    for (size_t i = 0; i < kSfpQuantities; ++i) {
        rows.push_back({static_cast<SfpQuantity>(i), &readings.quantities[i]});
    }
    return rows;
}

std::string TroubleText(const SfpReadings& readings) {
    std::string text;
    const auto add = [&](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
    for (size_t i = 0; i < kSfpQuantities; ++i) {
        const SfpState state = readings.quantities[i].state;
        if (state != SfpState::Normal) {
            add(std::string(kQuantities[i].name) + " " + kStates[static_cast<size_t>(state)].shown);
        }
    }
    const std::pair<bool, const char*> kFlags[] = {
        {readings.transmitDisabled, "transmitter off"},
        {readings.transmitFault, "transmitter fault"},
        {readings.signalLost, "signal lost"},
        {!readings.ready, "not ready"},
    };
    for (const auto& [set, what] : kFlags) {
        if (set) {
            add(what);
        }
    }
    return text;
}

}  // namespace vxmgr
