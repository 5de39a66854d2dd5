// The private request interface of the miniport driver: both envelopes, the driver's status
// codes and the one table of command codes. The library, the emulated adapters and the tests
// share this header; it needs nothing from the platform.
//
// All numbers are little-endian, as on every machine this runs on.
#pragma once

#include <cstddef>
#include <cstdint>

namespace transport {

// Control code of every request: CTL_CODE(IOCTL_SCSI_BASE, 0x0402, METHOD_BUFFERED, read | write).
inline constexpr uint32_t kIoctlScsiMiniport = 0x0004D008;

inline constexpr uint32_t kHeaderLength = 28;
inline constexpr char kSignature[8] = {'Z', 'N', 'R', 'T', 0, 0, 0, 0};
inline constexpr uint32_t kInterfaceLevelAndVersion = 0x00050001;  // level 1, version 5
inline constexpr uint32_t kTimeoutSeconds = 60;
inline constexpr uint32_t kCtTimeoutSeconds = 120;

#pragma pack(push, 1)

// SRB_IO_CONTROL, the operating system's header of a miniport request.
struct SrbIoControl {
    uint32_t headerLength;  // 28
    char signature[8];
    uint32_t timeout;  // seconds
    uint32_t controlCode;
    uint32_t returnCode;
    uint32_t length;  // bytes that follow this header
};
static_assert(sizeof(SrbIoControl) == kHeaderLength);
static_assert(offsetof(SrbIoControl, signature) == 4);
static_assert(offsetof(SrbIoControl, timeout) == 12);
static_assert(offsetof(SrbIoControl, controlCode) == 16);
static_assert(offsetof(SrbIoControl, returnCode) == 20);
static_assert(offsetof(SrbIoControl, length) == 24);

// EXT_IOCTL, the body of an extended request; the data follows it.
struct ExtIoctl {
    char signature[8];
    uint32_t levelAndVersion;
    uint16_t subCode;
    uint16_t instance;
    uint32_t status;        // 0 in; DriverStatus back
    uint32_t detailStatus;  // input flag of some commands; SCSI status or mailbox code back
    uint32_t parameter;     // flash offset or region pair of some commands
    uint32_t requestLen;
    uint32_t responseLen;  // room in; filled or needed length back
    uint8_t reserved1[20];
    uint16_t resyncFlag;
    uint16_t reserved2;
    uint8_t reserved3[28];
};
static_assert(sizeof(ExtIoctl) == 88);

// Envelope of an extended request: one buffer for request and reply.
struct ExtRequest {
    SrbIoControl srb;
    ExtIoctl ext;
};
static_assert(sizeof(ExtRequest) == 116);
static_assert(offsetof(ExtRequest, ext.signature) == 28);
static_assert(offsetof(ExtRequest, ext.levelAndVersion) == 36);
static_assert(offsetof(ExtRequest, ext.subCode) == 40);
static_assert(offsetof(ExtRequest, ext.instance) == 42);
static_assert(offsetof(ExtRequest, ext.status) == 44);
static_assert(offsetof(ExtRequest, ext.detailStatus) == 48);
static_assert(offsetof(ExtRequest, ext.parameter) == 52);
static_assert(offsetof(ExtRequest, ext.requestLen) == 56);
static_assert(offsetof(ExtRequest, ext.responseLen) == 60);
static_assert(offsetof(ExtRequest, ext.reserved1) == 64);
static_assert(offsetof(ExtRequest, ext.resyncFlag) == 84);
static_assert(offsetof(ExtRequest, ext.reserved3) == 88);

// Input of most plain (legacy) queries: names the item to read.
struct SelectorRecord {
    uint16_t reserved0;
    uint16_t option;  // kSelectorOption where the caller sets it
    uint32_t selector;
    uint32_t reserved1;
};
static_assert(sizeof(SelectorRecord) == 12);
static_assert(offsetof(SelectorRecord, option) == 2);
static_assert(offsetof(SelectorRecord, selector) == 4);

#pragma pack(pop)

inline constexpr uint32_t kEnvelopeLength = sizeof(ExtRequest);
inline constexpr uint32_t kExtIoctlLength = sizeof(ExtIoctl);
inline constexpr uint16_t kSelectorOption = 0x0080;

// What the driver puts into EXT_IOCTL Status.
enum class DriverStatus : uint32_t {
    Success = 0,
    Error = 1,
    Busy = 2,
    Pending = 3,
    Suspended = 4,
    RetryPending = 5,
    InvalidParameter = 6,
    DataOverrun = 7,
    DataUnderrun = 8,
    DeviceNotFound = 9,
    CopyFailed = 10,
    MailboxFailed = 11,  // detail: mailbox completion code
    UnsupportedSubCode = 12,
    UnsupportedVersion = 13,
    ManagementServerSilent = 14,
    ScsiStatus = 15,  // detail: SCSI status byte
    BufferTooSmall = 16,
    OutOfMemory = 17,
    Unknown18 = 18,
    Unknown19 = 19,
    InvalidRequest = 20,
    DeviceNotReady = 21,
    DeviceOffline = 22,
    HbaNotReady = 23,
    HbaQueueFull = 24,
    Unknown25 = 25,
    Code26 = 26,
    Code27 = 27,
    Code28 = 28,
    Code29 = 29,
    TimedOut = 30,
    NvramChecksum = 31,
    UnexpectedReset = 32,
    FirmwareState = 33,
    Code34 = 34,
    NoDump = 35,
    Code36 = 36,
    Code37 = 37,
    Code38 = 38,
    Unknown39 = 39,
    Unknown40 = 40,
    Unknown41 = 41,
    Lockdown = 42,
    TestRunning = 43,
    SfpUpdateFailed = 44,
    PortEnableFailed = 45,
};

// How the number in a command row's sub-code column is meant.
enum class SubCode : uint8_t {
    Fixed,       // the number itself
    CallerAdds,  // the number plus a selector of the caller
    Region,      // a flash region code chosen by the caller; the number is unused
    Range,       // the number is the first of several
};

struct Command {
    uint32_t code;
    uint16_t subCode;
};

// Extended requests, in code order: name, code, sub-code, kind of sub-code, role.
// clang-format off
#define VX_EXTENDED_COMMANDS(ROW)                                                                  \
    ROW(NodeProperties,          0xF0001001,   1, Fixed,      "adapter and node properties")       \
    ROW(PortProperties,          0xF0001001,   2, Fixed,      "port properties")                   \
    ROW(DiscoveredPort,          0xF0001001,   3, Fixed,      "discovered port properties")        \
    ROW(DiscoveredTarget,        0xF0001001,   4, Fixed,      "discovered target properties")      \
    ROW(DriverProperties,        0xF0001001,   6, Fixed,      "driver properties")                 \
    ROW(FirmwareProperties,      0xF0001001,   7, Fixed,      "firmware properties")               \
    ROW(ChipProperties,          0xF0001001,   8, Fixed,      "chip properties")                   \
    ROW(NodePropertiesResync,    0xF0001001,   9, Fixed,      "node properties after a resync")    \
    ROW(PortPropertiesV2,        0xF0001001,  10, Fixed,      "port properties, second version")   \
    ROW(EventDelivery,           0xF0001003,   0, Fixed,      "event delivery on or off")          \
    ROW(FetchEvents,             0xF0001004,   0, Fixed,      "fetch queued events")               \
    ROW(ElsRnid,                 0xF0001005,   0, Fixed,      "send an RNID ELS")                  \
    ROW(LinkStatistics,          0xF0001007,   3, Fixed,      "link statistics")                   \
    ROW(OptionRomReadOld,        0xF0001007,   7, Fixed,      "option ROM read, older drivers")    \
    ROW(ScmStatistics,           0xF0001007,   9, Fixed,      "SCM statistics")                    \
    ROW(NpivAttributes,          0xF0001007,  10, Fixed,      "NPIV attributes")                   \
    ROW(RemotePortInfo,          0xF0001007,  12, Fixed,      "remote port information")           \
    ROW(TargetLunMask,           0xF0001007, 103, CallerAdds, "target LUN mask")                   \
    ROW(PortDatabase,            0xF0001007, 106, Fixed,      "port and target database")          \
    ROW(PositionalMap,           0xF0001007, 107, Fixed,      "positional map")                    \
    ROW(ManagementAddress,       0xF0001007, 109, Fixed,      "management address")                \
    ROW(TargetLunMaskFc,         0xF0001007, 111, Fixed,      "target LUN mask, FC form")          \
    ROW(PortStatistics,          0xF0001007, 112, Fixed,      "port statistics")                   \
    ROW(SerdesParameters,        0xF0001007, 113, Fixed,      "SerDes parameters")                 \
    ROW(BbCreditRecovery,        0xF0001007, 114, Fixed,      "BB credit recovery data")           \
    ROW(PrivateStatistics,       0xF0001007, 115, Fixed,      "private statistics")                \
    ROW(PrivateStatisticsEx,     0xF0001007, 116, Fixed,      "private statistics, extended")      \
    ROW(DportDiagnostic,         0xF0001007, 117, Fixed,      "D-port diagnostic")                 \
    ROW(LunQos,                  0xF0001007, 118, Fixed,      "LUN QoS")                           \
    ROW(LunQosEnable,            0xF0001007, 119, Fixed,      "LUN QoS enable state")              \
    ROW(ActiveRegions,           0xF0001007, 120, Fixed,      "active flash regions")              \
    ROW(DportResults,            0xF0001007, 121, Fixed,      "D-port diagnostic results")         \
    ROW(ResetStatistics,         0xF0001008,   3, Fixed,      "reset statistics")                  \
    ROW(OptionRomWriteOld,       0xF0001008,   7, Fixed,      "option ROM write, older drivers")   \
    ROW(SetTargetLunMask,        0xF0001008, 103, Fixed,      "update target LUN mask")            \
    ROW(SetManagementAddress,    0xF0001008, 109, Fixed,      "set management address")            \
    ROW(SetTargetLunMaskFc,      0xF0001008, 111, Fixed,      "update target LUN mask, FC form")   \
    ROW(AddTargetOld,            0xF0001008, 112, Fixed,      "add a target, older drivers")       \
    ROW(SwapTargetsOld,          0xF0001008, 113, Fixed,      "swap targets, older drivers")       \
    ROW(SetLunQos,               0xF0001008, 114, Fixed,      "set LUN QoS")                       \
    ROW(ScmManagement,           0xF0001008, 115, Fixed,      "SCM management")                    \
    ROW(ScsiPassThrough,         0xF0001009,   1, Fixed,      "SCSI pass-through")                 \
    ROW(CtPassThrough,           0xF000100A,   0, Fixed,      "CT pass-through")                   \
    ROW(DestinationStatistics,   0xF000100B,   0, Fixed,      "port statistics by destination")    \
    ROW(Loopback,                0xF000100C,   0, Fixed,      "diagnostic loopback")               \
    ROW(FlashWrite,              0xF000100D,   0, Region,     "write a flash region")              \
    ROW(AddTarget,               0xF000100E,   0, Fixed,      "add a target device")               \
    ROW(NvramRead,               0xF000100F,   0, Range,      "read NVRAM")                        \
    ROW(NvramWrite,              0xF0001010,   0, Region,     "write NVRAM")                       \
    ROW(SwapTargets,             0xF0001011,   0, Fixed,      "swap targets")                      \
    ROW(FlashRead,               0xF0001012,   0, Region,     "read a flash region")               \
    ROW(FlashLayout,             0xF0001015,   0, Fixed,      "option ROM layout")                 \
    ROW(VpdRead,                 0xF0001016,   0, Fixed,      "read VPD")                          \
    ROW(VpdWrite,                0xF0001017,   0, Fixed,      "write VPD")                         \
    ROW(TargetLinkSpeed,         0xF0001018,   0, Fixed,      "read a target's link speed")        \
    ROW(SetTargetLinkSpeed,      0xF0001019,   0, Fixed,      "set a target's link speed")         \
    ROW(SfpRead,                 0xF000101A,   0, Fixed,      "read transceiver data")             \
    ROW(AuxiliaryFirmware,       0xF000101C,   1, Range,      "auxiliary firmware management")     \
    ROW(I2cRead,                 0xF0001022,   0, Fixed,      "read a transceiver page")           \
    ROW(I2cWrite,                0xF0001023,   0, Fixed,      "write a transceiver page")          \
    ROW(FirmwareDump,            0xF0001024,   0, Fixed,      "firmware dump")                     \
    ROW(ElsPassThrough,          0xF0001040,   0, Fixed,      "ELS pass-through")                  \
    ROW(RestartFirmware,         0xF0001041,   0, Fixed,      "reset and restart firmware")        \
    ROW(MiniDump,                0xF0001046,   0, Fixed,      "mini dump")                         \
    ROW(RawFirmwareDump,         0xF0001047,   0, Fixed,      "raw firmware dump")                 \
    ROW(MctpDump,                0xF0001048,   0, Fixed,      "MCTP dump")                         \
    ROW(Mailbox,                 0xF000104A,   0, Fixed,      "mailbox pass-through")              \
    ROW(RawMpiDump,              0xF000104B,   0, Fixed,      "raw MPI dump")                      \
    ROW(FlashLayoutEx,           0xF000104C,   0, Fixed,      "option ROM layout, extended")       \
    ROW(SecureFlashState,        0xF000104D,   0, Fixed,      "secure-flash state")                \
    ROW(SecureFlashBegin,        0xF000104E,   0, Fixed,      "secure update: begin")              \
    ROW(SecureFlashVerify,       0xF000104F,   0, Fixed,      "secure update: verify")             \
    ROW(SecureFlashCommit,       0xF0001050,   0, Fixed,      "secure update: commit")             \
    ROW(SecureFlashAbort,        0xF0001051,   0, Fixed,      "secure update: abort")              \
    ROW(SecureFlashHeader,       0xF0001052,   0, Fixed,      "secure update: image header")       \
    ROW(SecureFlashStatus,       0xF0001053,   0, Fixed,      "secure update: status")             \
    ROW(NvmeInfo,                0xF0001054,   0, Fixed,      "NVMe information")                  \
    ROW(BootFromSan,             0xF0001055,   0, Fixed,      "boot-from-SAN information")         \
    ROW(DestinationStatisticsV1, 0xF0001056,   0, Fixed,      "port statistics by destination, newer drivers") \
    ROW(ForceEvent,              0xF0001057,   0, Fixed,      "force an adapter event")            \
    ROW(SecurePortInfo,          0xF0001059,   7, Fixed,      "secure port information")           \
    ROW(DestinationStatisticsV2, 0xF000105A,   0, Fixed,      "port statistics, second version")   \
    ROW(LockdownState,           0xF000105D,   0, Fixed,      "adapter lockdown state")            \
    ROW(NvmeTargetInfo,          0xF0001060,   0, Fixed,      "NVMe target information")           \
    ROW(PortDisableInfo,         0xF0001061,   0, Fixed,      "port disable information")          \
    ROW(NvmeNamespaceInfo,       0xF0001062,   0, Fixed,      "NVMe namespace information")        \
    ROW(LoadSfpFirmware,         0xF0001063,   0, Fixed,      "load transceiver firmware")         \
    ROW(ForceDump,               0xF000A144,   0, Fixed,      "force a firmware dump")

// Plain requests: name, code, role.
#define VX_PLAIN_COMMANDS(ROW)                                                     \
    ROW(LegacyLoopback,         0xF0001002, "diagnostic loopback, first form")     \
    ROW(LegacyQuery,            0xF000000B, "legacy query with a selector record") \
    ROW(LegacyResetStatistics,  0xF000000C, "reset statistics")                    \
    ROW(LegacyNvramWrite64,     0xF000000D, "NVRAM update, 64 bytes")              \
    ROW(LegacyNvramWrite16,     0xF000000E, "NVRAM update, 16 bytes")              \
    ROW(LegacySwapTargets,      0xF0000011, "swap target devices")                 \
    ROW(LegacyPortAndNode,      0xF0000017, "port and node record")                \
    ROW(LegacySetTarget,        0xF0000020, "set target data")                     \
    ROW(LegacyResetStatistics2, 0xF0000026, "reset statistics, second step")       \
    ROW(LegacyNvramRead,        0xF0000027, "read NVRAM")                          \
    ROW(LegacyNvramWrite,       0xF0000028, "write NVRAM")                         \
    ROW(LegacyAddTarget,        0xF0000029, "add target or update LUN mask")       \
    ROW(LegacyCtPassThrough,    0xF0000040, "CT pass-through, own envelope")       \
    ROW(LegacyScsiPassThrough,  0xF00060C4, "SCSI pass-through")
// clang-format on

namespace command {
#define VX_ROW(name, code, subCode, kind, role) inline constexpr Command name{code, subCode};
VX_EXTENDED_COMMANDS(VX_ROW)
#undef VX_ROW
#define VX_ROW(name, code, role) inline constexpr uint32_t name = code;
VX_PLAIN_COMMANDS(VX_ROW)
#undef VX_ROW
}  // namespace command

struct ExtendedCommandRow {
    const char* name;
    uint32_t code;
    uint16_t subCode;
    SubCode kind;
    const char* role;
};
inline constexpr ExtendedCommandRow kExtendedCommands[] = {
#define VX_ROW(name, code, subCode, kind, role) {#name, code, subCode, SubCode::kind, role},
    VX_EXTENDED_COMMANDS(VX_ROW)
#undef VX_ROW
};

struct PlainCommandRow {
    const char* name;
    uint32_t code;
    const char* role;
};
inline constexpr PlainCommandRow kPlainCommands[] = {
#define VX_ROW(name, code, role) {#name, code, role},
    VX_PLAIN_COMMANDS(VX_ROW)
#undef VX_ROW
};

}  // namespace transport
