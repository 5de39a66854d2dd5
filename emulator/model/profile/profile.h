// What the emulated adapters are: one flat, versioned record. It travels as it is (a registry
// value, a file made from JSON), so whoever receives one validates it before use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vxemu {

inline constexpr uint32_t kProfileMagic = 0x50584556;  // "VEXP"
inline constexpr uint32_t kProfileVersion = 4;         // raised with every change of the layout
inline constexpr uint32_t kMaxAdapters = 64;
inline constexpr uint32_t kMaxPorts = 64;
inline constexpr uint32_t kMaxScsiPort = 63;
inline constexpr uint32_t kMaxPciFunction = 7;
inline constexpr uint32_t kMaxTargets = 32;
inline constexpr uint32_t kMaxLuns = 256;        // of all targets together
inline constexpr uint32_t kMaxLunNumber = 2047;  // what a LUN mask covers
inline constexpr uint8_t kSeenByAllPorts = 0xFF;

// The two kinds of driver that the adapters of the family are found with.
enum class DriverGeneration : uint8_t {
    Extended = 0,  // answers extended requests
    Legacy = 1,    // answers plain requests, and extended ones as far as opening a port needs them
};

// PortReply state.
enum class PortState : uint16_t {
    Online = 0,
    Offline = 1,
    LinkDown = 2,
};

// PortReply topology.
enum class Topology : uint16_t {
    Unknown = 0,
    PointToPoint = 1,
    PrivateLoop = 2,
    PublicLoop = 3,
    Fabric = 4,
};

#pragma pack(push, 1)

struct AdapterProfile {
    uint16_t deviceId;
    uint16_t subsystemVendorId;
    uint16_t subsystemDeviceId;  // board ID
    uint16_t revision;
    DriverGeneration generation;
    uint8_t pciBus;
    uint8_t pciDevice;
    uint8_t serialBytes[3];  // b0, b1, b2 of the numeric serial
    char serial[32];         // begins with kEmulatedSerialPrefix
    char manufacturer[80];
    char model[17];
    char description[17];  // contains kEmulatedMark
    char driverName[32];   // service name
    char driverVersion[32];
    char driverBuild[17];
    char firmwareVersion[32];  // major.minor.patch
    char optionRomVersion[5];
    uint32_t driverBuildNumber;
    uint32_t firmwareAttributes;
    uint32_t activationAttributes;
    uint32_t vendorSpecificId;
    uint32_t nodeFlags;
    // Sizes of the dumps; a kind with size 0 is never made.
    uint32_t dumpWords;  // external memory, trace and FCE buffer of the dump that becomes text
    uint32_t dumpTraceWords;
    uint32_t dumpFceWords;
    uint32_t dumpQueues;
    uint32_t rawDumpBytes;
    uint32_t mpiDumpBytes;
    uint32_t mctpDumpBytes;
    uint32_t miniDumpBytes[2];  // its first and its second part
    uint8_t dumpPresent;        // 1: there is a dump without one being forced
    uint8_t lockdown;           // 1: nothing that the adapter stores can be changed
    uint8_t secureUpdates;      // 1: code is only updated with its signature verified
    uint8_t listsLostTargets;   // 1: a legacy driver keeps targets that are gone in its list
    // Of the board, in degrees Celsius; a limit of 0 is none.
    uint8_t temperature;
    uint8_t temperatureWarning;
    uint8_t temperatureCritical;
    uint8_t reserved[19];
};
static_assert(sizeof(AdapterProfile) == 360);

// Why a port goes without credit recovery (BB_SC_N) although both ends have it.
enum class CreditRecoveryRefusal : uint8_t {
    None = 0,
    LinkDown = 1,
    Loop = 2,
    NotConfigured = 3,
    Refused = 4,  // by the attached port
};

enum class VirtualPortState : uint8_t {
    FollowsLink = 0,
    Offline = 2,
    Rejected = 3,  // the fabric refuses their logins
};

struct PortProfile {
    uint8_t adapter;   // index into Profile::adapters
    uint8_t scsiPort;  // N of "\\.\scsiN:"
    uint8_t pciFunction;
    uint8_t portId[3];  // domain, area, port; zero while the link is down
    uint8_t nodeName[8];
    uint8_t portName[8];
    uint16_t role;  // 1 = initiator
    PortState state;
    Topology topology;
    uint8_t supportedFc4;
    uint8_t activeFc4;
    uint8_t supportedSpeeds;
    uint8_t currentSpeed;  // while the link is up
    uint16_t speedFlags;
    uint16_t maxFrameSize;
    uint16_t bbCredits;
    uint16_t npivMaximum;
    uint16_t npivInUse;
    // What only the second version of the port properties reports.
    uint16_t maxTargets;
    uint16_t maxLunsPerTarget;
    uint16_t executionThrottle;
    uint16_t loginTimeout;
    uint16_t linkDownTimeout;
    uint16_t portDownRetry;
    uint8_t transceiverType[2];
    uint32_t featureMask;
    uint8_t fecActive;
    uint8_t protocolFlags;
    uint8_t trunkState;
    uint8_t diagnosticState;
    uint8_t portDisabled;
    uint8_t knowsSubCode10;  // 0: the driver rejects the second version of the port properties
    uint8_t flashRegionFlag;
    uint8_t flashRegionCode;
    uint8_t loopbackErrors;  // echoed bytes that a loopback test damages
    uint8_t bootsFromSan;    // 1: the system's boot disk is behind this port
    uint8_t bbcr;            // BB_SC_N: credit recovery counts every 2^N frames, 0 = never
    CreditRecoveryRefusal bbcrReason;
    VirtualPortState npivState;
    uint8_t qosEnabled;
    uint8_t scm;  // 0: the driver knows no congestion management
    uint8_t beaconSupported;
    uint8_t transmitFault;   // 1: the transceiver's transmitter says that it fails
    uint16_t receivedPower;  // light that arrives, in microwatts; 0 = as usual
    uint8_t reserved[33];
};
static_assert(sizeof(PortProfile) == 112);

// An adapter and its ports by themselves. Which adapter the ports belong to is not read.
inline constexpr uint32_t kMaxAdapterPorts = kMaxPciFunction + 1;
struct AdapterRecord {
    uint32_t portCount;
    AdapterProfile adapter;
    PortProfile ports[kMaxAdapterPorts];
};
static_assert(sizeof(AdapterRecord) == 4 + 360 + kMaxAdapterPorts * 112);

enum class DeviceRole : uint8_t {
    Target = 1,
    Initiator = 2,
    Both = 3,
};

enum class Security : uint8_t {
    Plain = 0,
    Secured = 1,  // authenticated and encrypted
    Failed = 2,
};

// A device on the fabric or loop. Initiators have no LUNs and are no discovered targets.
struct TargetProfile {
    uint8_t nodeName[8];
    uint8_t portName[8];
    uint8_t portId[3];  // domain, area, port
    DeviceRole role;
    uint8_t seenBy;   // SCSI port number of the one port that sees it, or kSeenByAllPorts
    uint8_t present;  // 0: gone
    uint8_t refusesReportLuns;
    uint8_t bindingFlags;
    uint8_t bus;
    uint8_t reserved25;
    uint16_t target;
    uint16_t loopId;  // bit 0 is not used: it says whether the device is there
    uint16_t portFlags;
    uint32_t roleAndState;
    char symbolicName[96];
    Security secured;
    uint8_t nvme;          // 1: its LUNs are namespaces as well
    uint8_t highestSpeed;  // HX_SPEED_...
    uint8_t reserved135[25];
};
static_assert(sizeof(TargetProfile) == 160);

struct LunProfile {
    uint8_t target;      // index into Profile::targets
    uint8_t deviceType;  // SCSI peripheral device type, 0 = disk
    uint16_t number;
    uint32_t blockSize;
    uint64_t blocks;
    uint8_t masked;  // hidden from every port at the start
    char vendor[9];
    char product[17];
    char revision[5];
    char serial[25];
    uint8_t reserved[23];
};
static_assert(sizeof(LunProfile) == 96);
static_assert(offsetof(LunProfile, blocks) == 8);

struct Profile {
    uint32_t magic;
    uint32_t version;
    uint32_t size;  // of the whole record
    uint32_t adapterCount;
    uint32_t portCount;
    char name[32];
    uint32_t targetCount;
    uint32_t lunCount;
    uint8_t reserved[4];
    AdapterProfile adapters[kMaxAdapters];
    PortProfile ports[kMaxPorts];
    TargetProfile targets[kMaxTargets];
    LunProfile luns[kMaxLuns];
};
static_assert(offsetof(Profile, adapters) == 64);
static_assert(sizeof(Profile) ==
              64 + kMaxAdapters * 360 + kMaxPorts * 112 + kMaxTargets * 160 + kMaxLuns * 96);

#pragma pack(pop)

inline constexpr char kEmulatedSerialPrefix[] = "EMU";
inline constexpr char kEmulatedMark[] = "Emulated";

enum class ProfileError : uint32_t {
    None,
    Size,
    Magic,
    Version,
    AdapterCount,
    PortCount,
    Name,
    Field,         // a field's value is out of range, or its text is not terminated
    Serial,        // does not begin with kEmulatedSerialPrefix
    Description,   // does not contain kEmulatedMark
    AdapterIndex,  // a port of an adapter that does not exist
    AdapterHasNoPort,
    DuplicateScsiPort,
    DuplicatePortName,
    NoPortName,
    DuplicateSerial,  // of an adapter that is to be added
    TargetCount,
    LunCount,
    DuplicateTargetAddress,  // bus and target, loop identifier or port identifier
    TargetIndex,             // a LUN of a target that does not exist or is an initiator
    DuplicateLun,
};

// Where a profile is wrong: which adapter or port, and the name of the value (or null).
enum class FaultScope : uint32_t { Profile, Adapter, Port, Target, Lun };
struct ProfileFault {
    ProfileError error = ProfileError::None;
    FaultScope scope = FaultScope::Profile;
    uint32_t index = 0;
    const char* field = nullptr;
};

// Checks a record of bytes that came from outside.
ProfileFault ValidateProfile(const void* bytes, size_t size);

// Puts an adapter with its ports behind the others. When the profile would not be valid with it, or
// has its serial number already, it stays as it was.
ProfileError AppendAdapter(Profile& profile, const AdapterRecord& added);

// The targets and LUNs alone, as far as they depend on one another.
ProfileFault ValidateTargets(const Profile& profile);

const char* ProfileErrorText(ProfileError error);

// An empty profile of that name: header only. A name that is too long is cut.
void InitializeProfile(Profile& profile, const char* name);

// An adapter, or a port, with the values that its chip and driver commonly have. The caller sets
// what tells it from others: serial, names, SCSI port.
AdapterProfile DefaultAdapter(uint16_t deviceId, DriverGeneration generation);
PortProfile DefaultPort(const AdapterProfile& adapter);

// An adapter as the built-in profiles have it: the driver and firmware that go with its chip,
// serial number and names by the number. Its ports are the functions of its device, in their order;
// the caller sets their SCSI ports.
void FillAdapter(uint16_t deviceId, uint32_t number, AdapterProfile& adapter,
                 std::span<PortProfile> ports);

// A target with addresses that the profile does not use yet, and a LUN of a target. The caller sets
// the names.
TargetProfile DefaultTarget(const Profile& profile);
LunProfile DefaultLun(uint8_t target, uint16_t number);

// The node name of a port or target that was given none: the port's with another first byte.
template <typename Device>
void DeriveNodeName(Device& device) {
    for (size_t at = 0; at < sizeof device.nodeName; ++at) {
        device.nodeName[at] = at == 0 ? 0x20 : device.portName[at];
    }
}

// Sets the serial bytes to what reads as 'E' and the number's five digits ('A' + value / 100000).
void SetNumericSerial(AdapterProfile& adapter, uint32_t number);

struct BuiltInProfile {
    const char* name;
    const char* description;
    void (*fill)(Profile& profile);
};
inline constexpr uint32_t kBuiltInProfiles = 2;
extern const BuiltInProfile kBuiltInProfileTable[kBuiltInProfiles];  // the first one is the default

// Fills profile with the built-in one of that name; false when there is none.
bool FillBuiltInProfile(const char* name, Profile& profile);

}  // namespace vxemu
