// The memory pages of a transceiver as SFF-8472 has them. Numbers are big-endian, texts are filled
// with blanks.
#pragma once

#include "formats/bytes.h"

namespace formats {

inline constexpr size_t kSfpPageBytes = 256;

#pragma pack(push, 1)
// Two-wire device A0h.
struct SfpIdentity {
    uint8_t identifier;
    uint8_t extendedIdentifier;
    uint8_t connector;
    uint8_t ethernet;  // 3  10 gigabit Ethernet, InfiniBand
    uint8_t reserved4[2];
    uint8_t gigabitEthernet;
    uint8_t fibreChannelLink;  // 7  lengths, and part of the technologies
    uint8_t fibreChannelTechnology;
    uint8_t fibreChannelMedia;
    uint8_t fibreChannelSpeeds;
    uint8_t encoding;
    uint8_t nominalRate;  // 12  of 100 MBd; 255: maxRate has it
    uint8_t rateIdentifier;
    uint8_t lengthSingleMode;     // 14  km
    uint8_t lengthSingleMode100;  // 15  of 100 m
    uint8_t lengthOm2;            // 16  of 10 m, as the others
    uint8_t lengthOm1;
    uint8_t lengthOm4;  // 18  copper: of 1 m
    uint8_t lengthOm3;
    char vendor[16];
    uint8_t extendedCompliance;  // 36
    uint8_t vendorOui[3];
    char part[16];
    char revision[4];
    uint8_t wavelength[2];        // 60  nm; of copper something else
    uint8_t fibreChannelSpeeds2;  // 62
    uint8_t baseChecksum;         // 63  of the bytes before
    uint8_t options[2];
    uint8_t maxRate;  // 66  percent above nominal, or of 250 MBd
    uint8_t minRate;
    char serial[16];
    char date[8];        // 84  year, month, day, lot: two characters each
    uint8_t monitoring;  // 92
    uint8_t enhancedOptions;
    uint8_t compliance;
    uint8_t extendedChecksum;  // 95  of the bytes from options on
    uint8_t vendorSpecific[32];
    uint8_t reserved128[128];

    bool HasMonitoring() const { return (monitoring & 0x40) != 0; }
    bool ExternallyCalibrated() const { return (monitoring & 0x10) != 0; }
    bool AveragePower() const { return (monitoring & 0x08) != 0; }  // else modulation amplitude
    // The diagnostics page answers only after a change of the device's address.
    bool NeedsAddressChange() const { return (monitoring & 0x04) != 0; }
    bool HasAlarmFlags() const { return (enhancedOptions & 0x80) != 0; }
    bool IsCopper() const { return (fibreChannelTechnology & 0x0C) != 0; }
};
#pragma pack(pop)
static_assert(sizeof(SfpIdentity) == kSfpPageBytes);
static_assert(offsetof(SfpIdentity, encoding) == 11);
static_assert(offsetof(SfpIdentity, vendor) == 20);
static_assert(offsetof(SfpIdentity, part) == 40);
static_assert(offsetof(SfpIdentity, revision) == 56);
static_assert(offsetof(SfpIdentity, baseChecksum) == 63);
static_assert(offsetof(SfpIdentity, serial) == 68);
static_assert(offsetof(SfpIdentity, monitoring) == 92);
static_assert(offsetof(SfpIdentity, extendedChecksum) == 95);

inline constexpr size_t kSfpQuantities = 5;

#pragma pack(push, 1)
// Two-wire device A2h. Quantities are temperature in 1/256 degree Celsius, supply voltage in 100
// uV, laser bias in 2 uA, sent and received power in 0.1 uW.
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

bool BaseChecksumHolds(const SfpIdentity& identity);
bool ExtendedChecksumHolds(const SfpIdentity& identity);
bool ChecksumHolds(const SfpDiagnostics& page);

void UpdateChecksums(SfpIdentity& identity);
void UpdateChecksum(SfpDiagnostics& page);

}  // namespace formats
