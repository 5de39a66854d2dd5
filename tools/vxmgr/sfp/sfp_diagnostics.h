// The diagnostics page of a transceiver, two-wire device A2h (SFF-8472). Free of platform headers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/record.h"
#include "vxmgr/sfp/sfp_identity.h"

namespace vxmgr {

enum class SfpQuantity : uint8_t { Temperature, Voltage, Bias, SentPower, ReceivedPower };
inline constexpr size_t kSfpQuantities = 5;

#pragma pack(push, 1)
// Numbers are big-endian. Temperature is in 1/256 degree Celsius, the supply voltage in 100 uV, the
// laser bias in 2 uA, power in 0.1 uW.
struct SfpDiagnostics {
    uint8_t limits[kSfpQuantities][4][2];  // high and low alarm, high and low warning
    uint8_t reserved40[16];
    uint8_t receivedPower[5][4];  // 56  coefficients from the fourth power on down, IEEE 754
    // Slope, in 1/256, and offset.
    uint8_t bias[2][2];
    uint8_t sentPower[2][2];
    uint8_t temperature[2][2];
    uint8_t voltage[2][2];
    uint8_t reserved92[3];
    uint8_t checksum;                   // 95  of the bytes before
    uint8_t values[kSfpQuantities][2];  // 96
    uint8_t reserved106[4];
    uint8_t status;  // 110
    uint8_t reserved111;
    uint8_t alarms[2];  // 112  high and low of each quantity, from the top bit on down
    uint8_t reserved114[2];
    uint8_t warnings[2];  // 116
    uint8_t reserved118[10];
    uint8_t writable[120];  // 128  the user's
    uint8_t reserved248[8];
};
#pragma pack(pop)
static_assert(sizeof(SfpDiagnostics) == kSfpPageBytes);
static_assert(offsetof(SfpDiagnostics, receivedPower) == 56);
static_assert(offsetof(SfpDiagnostics, bias) == 76);
static_assert(offsetof(SfpDiagnostics, checksum) == 95);
static_assert(offsetof(SfpDiagnostics, values) == 96);
static_assert(offsetof(SfpDiagnostics, status) == 110);
static_assert(offsetof(SfpDiagnostics, alarms) == 112);
static_assert(offsetof(SfpDiagnostics, warnings) == 116);
static_assert(offsetof(SfpDiagnostics, writable) == 128);

bool ChecksumHolds(const SfpDiagnostics& page);

enum class SfpState : uint8_t { Normal, LowWarning, HighWarning, LowAlarm, HighAlarm };
const char* NameOf(SfpState state);  // "low_warning"

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
tools::Value ReadingValue(SfpQuantity quantity, const std::optional<double>& value);
tools::Value DecibelValue(const std::optional<double>& milliwatts);
tools::Value StateValue(SfpState state);

// One row for each quantity.
tools::Record ReadingRow(SfpQuantity quantity, const SfpReading& reading);
std::vector<tools::Record> ReadingRows(const SfpReadings& readings);

// "tx power low warning, signal lost"; empty when all is well.
std::string TroubleText(const SfpReadings& readings);

}  // namespace vxmgr
