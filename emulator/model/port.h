// One emulated port: what it is (its part of the profile) and what has happened to it.
#pragma once

#include <cstdint>

#include "hxfabric.h"
#include "hxstatistics.h"
#include "model/event_queue.h"
#include "model/health/port_health.h"
#include "model/profile/profile.h"
#include "model/storage/flash_keeping.h"

namespace vxemu {

struct Fabric;
struct Flash;
struct PortEeprom;

inline constexpr uint32_t kLunMaskBytes = (kMaxLunNumber + 1) / 8;
struct LunMask {
    uint8_t bytes[kLunMaskBytes];
};

// What a port holds about a device of the fabric.
struct Attachment {
    LunMask mask;  // LUN n is bit (n mod 8) of byte (n div 8), set = visible
    uint8_t bus;
    uint8_t bindingFlags;
    uint16_t target;
    uint16_t loopId;  // bit 0 is not used: it says whether the device is there
    bool withheld;    // nothing is stored for the device, and the driver wants that
};

// What a port has counted about a device of the fabric, and what management has set for it.
struct Peer {
    HX_PORT_STATISTICS_V2 counted;  // as far as it does not follow from the device
    HX_FPIN_COUNTERS fpins;         // about the device
    uint64_t lastFpin;              // when, 0 = never
    uint64_t since;                 // when the device came or went
    uint16_t speed;                 // HX_SPEED_..., 0 = as negotiated
    uint8_t levels[HX_QOS_LUNS];    // HX_QOS_...
};

// A block of these comes zeroed from the host; zero is the state before the first request.
struct Port {
    AdapterProfile* adapter;  // both inside the model's own profile
    PortProfile* profile;
    Fabric* fabric;           // what the port is connected to
    Attachment* attachments;  // one per target of the profile, kMaxTargets of them
    Peer* peers;              // the same
    PortState initialState;   // what a reset returns to
    EventQueue events;
    uint64_t requests;
    uint64_t faults;
    uint32_t resyncs;
    uint32_t openHandles;
    uint32_t dumpsForced;
    uint64_t statisticsReset;  // when, and how many requests there had been
    uint64_t requestsBefore;
    HX_PORT_STATISTICS_V2 counted;  // since then, as far as it does not follow from them
    uint32_t linkUps;               // since the driver started
    uint64_t linkSince;             // when the link came up or went down
    CongestionState congestion;
    PrivateCounts privateCounts;
    CreditRecoveryCounts creditRecovery;
    Beacon beacon;
    Signals signals;
    Board* board;  // of the adapter, shared by its ports
    HX_MGMT_ADDRESS_SETTING managementAddress;
    bool configRequired;        // targets that nothing is stored for are withheld
    bool managementAddressSet;  // else the port still has the address it starts with
    uint8_t dportRunning;       // a D-port test has begun and its results were not fetched
    uint8_t scmSetting;
    Flash* flash;        // of the adapter, shared by its ports
    PortEeprom* eeprom;  // null until something of it is used
    uint8_t secondBank;  // 1: NVRAM and VPD in use are those of the second bank
    // What has been written since the firmware last read its settings.
    bool nvramChanged;
    bool nvramWaits;  // in the bank that is not in use
    bool vpdWaits;
    KeptPort kept;
    bool eepromWritten;  // ever, and since it was last kept
    bool eepromChanged;

    bool LinkUp() const { return profile->state == PortState::Online; }
};

// Changes the link and queues the event that goes with the change; nothing when it is already so.
void SetLink(Port& port, bool up);

// To be told of a link that has come up or gone down.
void NoteLink(Port& port);

// Back to the state after the start: link as the profile has it, no events, delivery off.
void ResetPort(Port& port);

}  // namespace vxemu
