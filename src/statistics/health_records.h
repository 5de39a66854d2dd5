// Byte layouts of the requests for temperature, locate LED, credit recovery and signals. The
// library sends and reads them, the emulated adapters answer them. Free of platform headers;
// little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hxhealth.h"
#include "properties/driver_replies.h"

namespace statistics {

// Mailbox commands, with their registers behind the command and behind the completion.
enum class MailboxCommand : uint16_t {
    BoardTemperature = 0x90,     // none; now, warning, critical, shutdown, highest, seconds (2)
    ReadSerdesRegister = 0x91,   // address; value
    WriteSerdesRegister = 0x92,  // address, value; none
    ReadLaneRegister = 0x93,     // lane, address (2); value (2)
    WriteLaneRegister = 0x94,    // lane, address (2), value (2); none
    ReadI2cRegister = 0x95,      // device, address; value
    WriteI2cRegister = 0x96,     // device, address, value; none
};

// BbCreditRecovery: an AddressBlock of zeros in.
static_assert(sizeof(HX_BBCR_DATA) == 64);
static_assert(offsetof(HX_BBCR_DATA, configured) == 2);
static_assert(offsetof(HX_BBCR_DATA, attachedCredit) == 6);
static_assert(offsetof(HX_BBCR_DATA, ownCredit) == 8);
static_assert(offsetof(HX_BBCR_DATA, scsSent) == 16);
static_assert(offsetof(HX_BBCR_DATA, creditsRecovered) == 48);
static_assert(offsetof(HX_BBCR_DATA, framesLost) == 56);
static_assert(sizeof(HX_BOARD_TEMPERATURE) == 16);
static_assert(offsetof(HX_BOARD_TEMPERATURE, highest) == 8);
static_assert(offsetof(HX_BOARD_TEMPERATURE, state) == 10);
static_assert(offsetof(HX_BOARD_TEMPERATURE, secondsAbove) == 12);
static_assert(sizeof(HX_BEACON) == 16);
static_assert(offsetof(HX_BEACON, leds) == 8);
static_assert(offsetof(HX_BEACON, supported) == 12);
static_assert(sizeof(HX_SERDES_LANE) == 32);
static_assert(offsetof(HX_SERDES_LANE, modulation) == 3);
static_assert(offsetof(HX_SERDES_LANE, txPost) == 6);
static_assert(offsetof(HX_SERDES_LANE, txAmplitude) == 8);
static_assert(offsetof(HX_SERDES_LANE, eyeWidth) == 12);
static_assert(offsetof(HX_SERDES_LANE, ctle) == 14);
static_assert(offsetof(HX_SERDES_LANE, dfe) == 16);

#pragma pack(push, 1)

// NodeProperties with a beacon in what its reply reserves, both ways. Without the mark these bytes
// mean nothing: other callers hand in whatever their buffer holds.
inline constexpr uint32_t kBeaconMark = 0x4E434542;  // "BECN"
enum class BeaconOperation : uint32_t { Read = 1, Set = 2 };
struct BeaconRequest {
    uint8_t reserved0[668];
    uint32_t mark;
    uint32_t operation;  // BeaconOperation
    HX_BEACON beacon;
    uint8_t reserved692[4];
};
static_assert(sizeof(BeaconRequest) == sizeof(properties::NodeReply));
static_assert(offsetof(BeaconRequest, mark) == offsetof(properties::NodeReply, reserved668));
static_assert(offsetof(BeaconRequest, operation) == 672);
static_assert(offsetof(BeaconRequest, beacon) == 676);

// SerdesParameters.
struct SerdesReply {
    uint32_t version;
    uint32_t count;
    HX_SERDES_LANE entries[HX_MAX_SERDES_LANES];
};
static_assert(sizeof(SerdesReply) == 520);
static_assert(offsetof(SerdesReply, entries) == 8);

#pragma pack(pop)

}  // namespace statistics
