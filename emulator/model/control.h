// The control requests of the emulated adapters, sent to the device "\\.\vxemu" (or straight to
// Model::Control). Every request begins with its record, every reply is one record; both travel
// in one buffer. Shared by the driver, the control tool and the tests.
#pragma once

#include <cstddef>
#include <cstdint>

#include "model/faults.h"
#include "model/profile/profile.h"
#include "model/storage/flash_file.h"
#include "model/storage/flash_regions.h"
#include "model/trace.h"
#include "properties/driver_replies.h"

namespace vxemu {

inline constexpr char kControlDeviceName[] = "vxemu";
inline constexpr uint32_t kControlVersion = 5;  // raised with every change of a record

// A control code as the operating system builds it: unknown device type, read access for what
// only asks and read and write access for what changes something, buffered.
constexpr uint32_t ControlCode(uint32_t function, bool changes) {
    return (0x22u << 16) | ((changes ? 3u : 1u) << 14) | ((0x800u + function) << 2);
}

namespace control {
inline constexpr uint32_t kStatus = ControlCode(0, false);        // - / StatusReply
inline constexpr uint32_t kFaultList = ControlCode(1, false);     // - / FaultListReply
inline constexpr uint32_t kReadProfile = ControlCode(2, false);   // - / Profile as it stands
inline constexpr uint32_t kFlashShow = ControlCode(3, false);     // PortSelector / FlashReport
inline constexpr uint32_t kFlashDump = ControlCode(4, false);     // FlashSelector / FlashPiece
inline constexpr uint32_t kTraceRead = ControlCode(5, false);     // TraceSelector / TracePiece
inline constexpr uint32_t kFaultAdd = ControlCode(16, true);      // FaultRule / CountReply: id
inline constexpr uint32_t kFaultClear = ControlCode(17, true);    // FaultClear / CountReply
inline constexpr uint32_t kPortReset = ControlCode(18, true);     // PortSelector / -
inline constexpr uint32_t kRaiseEvent = ControlCode(19, true);    // EventRequest / CountReply
inline constexpr uint32_t kSetLink = ControlCode(20, true);       // LinkRequest / -
inline constexpr uint32_t kSetField = ControlCode(21, true);      // FieldRequest / CountReply
inline constexpr uint32_t kTargetAdd = ControlCode(22, true);     // TargetProfile / ChangeReply
inline constexpr uint32_t kTargetRemove = ControlCode(23, true);  // TargetSelector / ChangeReply
inline constexpr uint32_t kTargetSet = ControlCode(24, true);  // TargetFieldRequest / ChangeReply
inline constexpr uint32_t kLunAdd = ControlCode(25, true);     // LunRequest / ChangeReply
inline constexpr uint32_t kLunRemove = ControlCode(26, true);  // LunSelector / ChangeReply
inline constexpr uint32_t kLunSet = ControlCode(27, true);     // LunFieldRequest / ChangeReply
inline constexpr uint32_t kFlashCorrupt = ControlCode(28, true);   // FlashSelector / CountReply
inline constexpr uint32_t kPowerFail = ControlCode(29, true);      // PowerFailRequest / -
inline constexpr uint32_t kRaiseCounter = ControlCode(30, true);   // CounterRequest / CountReply
inline constexpr uint32_t kTraceStart = ControlCode(31, true);     // TraceName / CountReply: 1 done
inline constexpr uint32_t kTraceStop = ControlCode(32, true);      // TraceStop / CountReply: 1 done
inline constexpr uint32_t kAdapterAdd = ControlCode(33, true);     // AdapterRecord / ChangeReply
inline constexpr uint32_t kAdapterRemove = ControlCode(34, true);  // PortSelector / ChangeReply
inline constexpr uint32_t kFlashReset = ControlCode(40, true);     // PortSelector, or kAnyPort / -
}  // namespace control

#pragma pack(push, 1)

struct PortStatus {
    uint32_t scsiPort;
    uint32_t adapter;
    PortState state;
    uint8_t delivery;  // 1 while events are delivered
    uint8_t reserved;
    uint32_t eventsQueued;
    uint32_t eventsDropped;
    uint32_t openHandles;
    uint64_t requests;
    uint64_t faults;
    char driverName[32];
    char serial[32];
    uint8_t portName[8];
    uint16_t deviceId;
    FlashKeep flash;  // whether what is written to it lasts
    uint8_t reserved115[5];
};
static_assert(sizeof(PortStatus) == 120);
static_assert(offsetof(PortStatus, requests) % 8 == 0);

struct StatusReply {
    uint32_t version;  // kControlVersion
    uint32_t adapterCount;
    uint32_t portCount;
    uint32_t faultCount;
    uint64_t uptime;  // milliseconds
    char profileName[32];
    PortStatus ports[kMaxPorts];
};
static_assert(sizeof(StatusReply) == 56 + kMaxPorts * 120);

struct FaultListReply {
    uint32_t version;
    uint32_t count;
    FaultEntry entries[kMaxFaults];
};
static_assert(sizeof(FaultListReply) == 8 + kMaxFaults * 44);

// A number: the new rule's id, or how many things were changed, queued or removed.
struct CountReply {
    uint32_t count;
};

struct FaultClear {
    uint32_t id;  // 0 = all
};

struct PortSelector {
    uint32_t scsiPort;
};

struct EventRequest {
    uint32_t scsiPort;
    properties::DriverEvent event;
};
static_assert(sizeof(EventRequest) == 20);

struct LinkRequest {
    uint32_t scsiPort;
    uint32_t up;  // 0 or 1
};
static_assert(sizeof(LinkRequest) == 8);

inline constexpr uint32_t kFieldValueLength = 96;

// The new value of a settable field (profile_fields.h).
struct FieldChange {
    char name[32];
    uint32_t length;  // of value; the field's own size
    uint8_t value[kFieldValueLength];
};
static_assert(sizeof(FieldChange) == 132);

// A field of the port, or of the port's adapter.
struct FieldRequest {
    uint32_t scsiPort;
    FieldChange change;
};
static_assert(sizeof(FieldRequest) == 136);

struct TargetSelector {
    uint8_t portName[8];
};

struct TargetFieldRequest {
    TargetSelector target;
    FieldChange change;
};
static_assert(sizeof(TargetFieldRequest) == 140);

// A counter of counter_keys.h.
struct CounterRequest {
    uint32_t scsiPort;
    uint32_t reserved;
    TargetSelector target;  // zero: the port itself
    char key[32];
    uint64_t n;
};
static_assert(sizeof(CounterRequest) == 56);

struct LunSelector {
    TargetSelector target;
    uint32_t number;
};

// The number stands in the LUN's own record.
struct LunRequest {
    TargetSelector target;
    LunProfile lun;
};
static_assert(sizeof(LunRequest) == 104);

struct LunFieldRequest {
    LunSelector lun;
    FieldChange change;
};
static_assert(sizeof(LunFieldRequest) == 144);

enum class CheckState : uint8_t { None, Good, Bad };

struct FlashRegionStatus {
    uint16_t code;
    RegionContent content;
    uint8_t flags;
    uint8_t readOnly;
    CheckState checksum;
    CheckState signature;
    uint8_t reserved;
    uint32_t start;
    uint32_t size;
    char version[48];  // empty: none that can be told
};
static_assert(sizeof(FlashRegionStatus) == 64);

struct FlashReport {
    uint32_t version;  // kControlVersion
    uint32_t bytes;
    uint32_t count;
    uint8_t withoutPower;  // 1: the adapter does not answer until one of its ports is reset
    uint8_t failsSoon;     // 1: it will not, once bytesUntilFailure more are written
    uint8_t secondBank;    // 1: the port's settings in use are those of the second bank
    FlashKeep keep;
    uint32_t bytesUntilFailure;
    uint32_t reserved20;
    FlashRegionStatus regions[kMaxFlashRegions];
};
static_assert(sizeof(FlashReport) == 24 + kMaxFlashRegions * 64);

// A place in a region of the port's adapter.
struct FlashSelector {
    uint32_t scsiPort;
    uint32_t region;
    uint32_t offset;
};
static_assert(sizeof(FlashSelector) == 12);

// What stands there, as far as the piece and the region go.
struct FlashPiece {
    uint32_t length;
    uint8_t bytes[16384];
};

struct PowerFailRequest {
    uint32_t scsiPort;
    uint32_t afterBytes;
};
static_assert(sizeof(PowerFailRequest) == 8);

// Ends the trace: no request is recorded any more.
struct TraceStop {
    uint32_t drop;  // 0: the entries are kept to be read, and no other trace begins until then
};
struct TraceSelector {
    uint64_t from;  // number of the first entry that is wanted
};
struct TracePiece {
    uint32_t version;  // kControlVersion
    uint32_t count;    // of these entries
    uint64_t first;    // number of the first of them
    uint64_t lost;     // that have given way since the start
    uint64_t end;      // number that the next request gets
    uint64_t now;      // of the clock of the entries
    uint8_t running;   // 1: takes requests
    uint8_t kept;      // 1: has entries, running or ended
    uint8_t reserved42[6];
    TraceName name;
    TraceEntry entries[256];
};
static_assert(sizeof(TracePiece) == 48 + sizeof(TraceName) + 256 * sizeof(TraceEntry));

// What is wrong with the profile that the change would lead to; nothing has changed then.
struct ChangeReply {
    ProfileError error;
};

#pragma pack(pop)

}  // namespace vxemu
