// The diagnostics page of a transceiver, two-wire device A2h (SFF-8472). Free of platform headers.
#pragma once

#include <array>
#include <cstddef>

#include "vxmgr/sfp/sfp_identity.h"

namespace vxmgr {

enum class SfpQuantity : uint8_t { Temperature, Voltage, Bias, SentPower, ReceivedPower };
using formats::kSfpQuantities;
using formats::SfpDiagnostics;

enum class SfpState : uint8_t { Normal, LowWarning, HighWarning, LowAlarm, HighAlarm };

// In degrees Celsius, volts, milliamperes, milliwatts. Empty: a calibration that makes no sense.
struct SfpReading {
    std::optional<double> value;
    std::optional<double> highAlarm, lowAlarm, highWarning, lowWarning;
    SfpState state = SfpState::Normal;
};
struct SfpReadings {
    std::array<SfpReading, kSfpQuantities> quantities;
    bool transmitDisabled = false;
    bool transmitFault = false;
    bool signalLost = false;
    bool ready = false;
    bool checksumHolds = false;

    const SfpReading& Of(SfpQuantity quantity) const {
        return quantities[static_cast<size_t>(quantity)];
    }
};
SfpReadings ReadDiagnostics(const SfpIdentity& identity, const SfpDiagnostics& page);

// "-2.84"; empty without light.
std::string DecibelText(double milliwatts);
std::string DecimalText(double value, int decimals);

// JSON has the numbers as decimal texts: they may be negative.
Value ReadingValue(SfpQuantity quantity, const std::optional<double>& value);
Value DecibelValue(const std::optional<double>& milliwatts);

// One row for each quantity. The readings have to live as long as the rows.
struct SfpReadingRow {
    SfpQuantity quantity;
    const SfpReading* reading;
};
extern const Fields<SfpReadingRow> kReadingFields;
std::vector<SfpReadingRow> ReadingRows(const SfpReadings& readings);

// "tx power low warning, signal lost"; empty when all is well.
std::string TroubleText(const SfpReadings& readings);

}  // namespace vxmgr
