// The identity page of a transceiver, two-wire device A0h (SFF-8472). Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "common/record.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

inline constexpr size_t kSfpPageBytes = 256;

#pragma pack(push, 1)
// Numbers are big-endian, texts are filled with blanks.
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

bool BaseChecksumHolds(const SfpIdentity& identity);
bool ExtendedChecksumHolds(const SfpIdentity& identity);

// The year 20yy: "2024-01-31"; empty when it is no date.
std::string SfpDate(const char (&date)[8]);

tools::Record SfpIdentityRecord(const SfpIdentity& identity);

}  // namespace vxmgr
