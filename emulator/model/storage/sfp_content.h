// The transceiver of an emulated port: its two memory pages as SFF-8472 has them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "model/profile/profile.h"

namespace vxemu {

inline constexpr uint32_t kTransceiverPageBytes = 256;

#pragma pack(push, 1)

// Page A0h: identity.
struct TransceiverIdentity {
    uint8_t identifier;
    uint8_t extendedIdentifier;
    uint8_t connector;
    uint8_t compliance[8];
    uint8_t encoding;
    uint8_t nominalRate;  // of 100 MBd; 0xFF: maxRate has it
    uint8_t rateIdentifier;
    uint8_t lengths[6];  // 0: no such fibre
    char vendor[16];     // blank-padded, as all texts
    uint8_t extendedCompliance;
    uint8_t vendorOui[3];
    char part[16];
    char revision[4];
    uint8_t wavelength[2];  // nm, big-endian as every number
    uint8_t reserved62;
    uint8_t baseChecksum;  // of the bytes before
    uint8_t options[2];
    uint8_t maxRate;  // of 250 MBd
    uint8_t minRate;
    char serial[16];
    char dateCode[8];
    uint8_t monitoring;
    uint8_t enhancedOptions;
    uint8_t complianceVersion;
    uint8_t extendedChecksum;  // of the bytes from options on
    uint8_t vendorSpecific[32];
    uint8_t reserved128[128];
};
static_assert(sizeof(TransceiverIdentity) == kTransceiverPageBytes);
static_assert(offsetof(TransceiverIdentity, lengths) == 14);
static_assert(offsetof(TransceiverIdentity, vendor) == 20);
static_assert(offsetof(TransceiverIdentity, part) == 40);
static_assert(offsetof(TransceiverIdentity, wavelength) == 60);
static_assert(offsetof(TransceiverIdentity, baseChecksum) == 63);
static_assert(offsetof(TransceiverIdentity, serial) == 68);
static_assert(offsetof(TransceiverIdentity, monitoring) == 92);
static_assert(offsetof(TransceiverIdentity, extendedChecksum) == 95);

// Five quantities: temperature (1/256 degree Celsius, signed), supply voltage (100 uV), laser bias
// (2 uA), sent and received power (0.1 uW).
struct TransceiverValues {
    uint8_t bytes[5][2];
};
struct TransceiverLimits {
    uint8_t bytes[5][4][2];  // high and low alarm, high and low warning
};

// Page A2h: diagnostics.
struct TransceiverDiagnostics {
    TransceiverLimits limits;
    uint8_t reserved40[16];
    uint8_t calibration[36];
    uint8_t reserved92[3];
    uint8_t checksum;  // of the bytes before
    TransceiverValues values;
    uint8_t reserved106[4];
    uint8_t status;
    uint8_t reserved111;
    uint8_t alarms[2];
    uint8_t reserved114[2];
    uint8_t warnings[2];
    uint8_t reserved118[2];
    uint8_t vendorSpecific[8];
    uint8_t writable[120];  // the user's
    uint8_t reserved248[8];
};
static_assert(sizeof(TransceiverDiagnostics) == kTransceiverPageBytes);
static_assert(offsetof(TransceiverDiagnostics, checksum) == 95);
static_assert(offsetof(TransceiverDiagnostics, values) == 96);
static_assert(offsetof(TransceiverDiagnostics, status) == 110);
static_assert(offsetof(TransceiverDiagnostics, warnings) == 116);
static_assert(offsetof(TransceiverDiagnostics, writable) == 128);

#pragma pack(pop)

void FillTransceiver(const AdapterProfile& adapter, const PortProfile& port,
                     TransceiverIdentity& identity);
void FillTransceiver(TransceiverDiagnostics& diagnostics);

// Makes both checksums.
void UpdateChecksums(TransceiverIdentity& identity);

// What the transceiver measures now. Values move a little from turn to turn; without a link no
// light arrives.
void Measure(uint32_t turn, bool link, TransceiverDiagnostics& diagnostics);

}  // namespace vxemu
