#include "model/profile/profile_fields.h"

#include <cstring>

#include "model/bytes/bytes.h"

namespace vxemu {
namespace {

constexpr FieldChoice kGenerations[] = {
    {static_cast<uint32_t>(DriverGeneration::Extended), "extended"},
    {static_cast<uint32_t>(DriverGeneration::Legacy), "legacy"},
    {0, nullptr},
};

constexpr FieldChoice kStates[] = {
    {static_cast<uint32_t>(PortState::Online), "online"},
    {static_cast<uint32_t>(PortState::Offline), "offline"},
    {static_cast<uint32_t>(PortState::LinkDown), "link-down"},
    {0, nullptr},
};

constexpr FieldChoice kTopologies[] = {
    {static_cast<uint32_t>(Topology::Unknown), "unknown"},
    {static_cast<uint32_t>(Topology::PointToPoint), "point-to-point"},
    {static_cast<uint32_t>(Topology::PrivateLoop), "private-loop"},
    {static_cast<uint32_t>(Topology::PublicLoop), "public-loop"},
    {static_cast<uint32_t>(Topology::Fabric), "fabric"},
    {0, nullptr},
};

constexpr FieldChoice kRoles[] = {
    {static_cast<uint32_t>(DeviceRole::Target), "target"},
    {static_cast<uint32_t>(DeviceRole::Initiator), "initiator"},
    {static_cast<uint32_t>(DeviceRole::Both), "both"},
    {0, nullptr},
};

constexpr FieldChoice kRefusals[] = {
    {static_cast<uint32_t>(CreditRecoveryRefusal::None), "none"},
    {static_cast<uint32_t>(CreditRecoveryRefusal::LinkDown), "link-down"},
    {static_cast<uint32_t>(CreditRecoveryRefusal::Loop), "loop"},
    {static_cast<uint32_t>(CreditRecoveryRefusal::NotConfigured), "not-configured"},
    {static_cast<uint32_t>(CreditRecoveryRefusal::Refused), "refused"},
    {0, nullptr},
};

constexpr FieldChoice kVirtualPortStates[] = {
    {static_cast<uint32_t>(VirtualPortState::FollowsLink), "follows-link"},
    {static_cast<uint32_t>(VirtualPortState::Offline), "offline"},
    {static_cast<uint32_t>(VirtualPortState::Rejected), "rejected"},
    {0, nullptr},
};

constexpr FieldChoice kSecurity[] = {
    {static_cast<uint32_t>(Security::Plain), "0"},
    {static_cast<uint32_t>(Security::Secured), "1"},
    {static_cast<uint32_t>(Security::Failed), "failed"},
    {0, nullptr},
};

constexpr FieldChoice kBlockSizes[] = {
    {512, "512"},
    {4096, "4096"},
    {0, nullptr},
};

constexpr uint32_t kAny8 = 0xFF;
constexpr uint32_t kAny16 = 0xFFFF;
constexpr uint32_t kAny32 = 0xFFFFFFFF;
constexpr uint32_t kMaxBus = 0xFF;
constexpr uint32_t kMaxPciDevice = 31;
constexpr uint32_t kMaxDumpWords = 0x100000;
constexpr uint32_t kMaxDumpQueues = 256;
constexpr uint32_t kMaxDumpBytes = 0x1000000;
constexpr uint32_t kMaxLoopId = 0xFFFD;  // 0xFFFF is none
constexpr uint32_t kMaxDegrees = 117;    // 10 more are the highest that records hold
constexpr uint32_t kMaxVirtualPorts = 254;
constexpr uint32_t kMaxCreditRecovery = 15;
constexpr uint32_t kMaxMicrowatts = 6553;  // the most that a transceiver can say
constexpr uint32_t kMaxDeviceType = 0x1F;
// Offsets in bytes of every block then fit 64 bits.
constexpr uint64_t kMaxBlocks = uint64_t{1} << 48;

#define ADAPTER(member) \
    FieldScope::Adapter, offsetof(AdapterProfile, member), sizeof(AdapterProfile::member)
#define PORT(member) FieldScope::Port, offsetof(PortProfile, member), sizeof(PortProfile::member)
#define TARGET(member) \
    FieldScope::Target, offsetof(TargetProfile, member), sizeof(TargetProfile::member)
#define LUN(member) FieldScope::Lun, offsetof(LunProfile, member), sizeof(LunProfile::member)

// Rows are written name, place, kind, maximum, choices, settable.
constexpr Field Row(const char* name, FieldScope scope, size_t offset, size_t size, FieldKind kind,
                    uint64_t maximum, const FieldChoice* choices, bool settable) {
    return {name,    scope,   kind,    static_cast<uint16_t>(offset), static_cast<uint16_t>(size),
            maximum, choices, settable};
}

// clang-format off
constexpr Field kFields[] = {
    Row("device_id",              ADAPTER(deviceId),             FieldKind::Code,   kAny16, nullptr, false),
    Row("subsystem_vendor_id",    ADAPTER(subsystemVendorId),    FieldKind::Code,   kAny16, nullptr, true),
    Row("subsystem_device_id",    ADAPTER(subsystemDeviceId),    FieldKind::Code,   kAny16, nullptr, true),
    Row("revision",               ADAPTER(revision),             FieldKind::Number, kAny8,  nullptr, true),
    Row("driver_generation",      ADAPTER(generation),           FieldKind::Choice, 0, kGenerations, false),
    Row("pci_bus",                ADAPTER(pciBus),               FieldKind::Number, kMaxBus, nullptr, true),
    Row("pci_device",             ADAPTER(pciDevice),            FieldKind::Number, kMaxPciDevice, nullptr, true),
    Row("serial",                 ADAPTER(serial),               FieldKind::Text,   0, nullptr, false),
    Row("serial_bytes",           ADAPTER(serialBytes),          FieldKind::Bytes,  0, nullptr, false),
    Row("manufacturer",           ADAPTER(manufacturer),         FieldKind::Text,   0, nullptr, false),
    Row("model",                  ADAPTER(model),                FieldKind::Text,   0, nullptr, true),
    Row("description",            ADAPTER(description),          FieldKind::Text,   0, nullptr, false),
    Row("driver_name",            ADAPTER(driverName),           FieldKind::Text,   0, nullptr, false),
    Row("driver_version",         ADAPTER(driverVersion),        FieldKind::Text,   0, nullptr, true),
    Row("driver_build",           ADAPTER(driverBuild),          FieldKind::Text,   0, nullptr, true),
    Row("driver_build_number",    ADAPTER(driverBuildNumber),    FieldKind::Number, kAny32, nullptr, true),
    Row("firmware_version",       ADAPTER(firmwareVersion),      FieldKind::Text,   0, nullptr, true),
    Row("option_rom_version",     ADAPTER(optionRomVersion),     FieldKind::Text,   0, nullptr, true),
    Row("firmware_attributes",    ADAPTER(firmwareAttributes),   FieldKind::Code,   kAny32, nullptr, true),
    Row("activation_attributes",  ADAPTER(activationAttributes), FieldKind::Code,   kAny32, nullptr, true),
    Row("vendor_specific_id",     ADAPTER(vendorSpecificId),     FieldKind::Code,   kAny32, nullptr, true),
    Row("node_flags",             ADAPTER(nodeFlags),            FieldKind::Code,   kAny32, nullptr, true),
    Row("dump_words",             ADAPTER(dumpWords),            FieldKind::Number, kMaxDumpWords, nullptr, true),
    Row("dump_trace_words",       ADAPTER(dumpTraceWords),       FieldKind::Number, kMaxDumpWords, nullptr, true),
    Row("dump_fce_words",         ADAPTER(dumpFceWords),         FieldKind::Number, kMaxDumpWords, nullptr, true),
    Row("dump_queues",            ADAPTER(dumpQueues),           FieldKind::Number, kMaxDumpQueues, nullptr, true),
    Row("raw_dump_bytes",         ADAPTER(rawDumpBytes),         FieldKind::Number, kMaxDumpBytes, nullptr, true),
    Row("mpi_dump_bytes",         ADAPTER(mpiDumpBytes),         FieldKind::Number, kMaxDumpBytes, nullptr, true),
    Row("mctp_dump_bytes",        ADAPTER(mctpDumpBytes),        FieldKind::Number, kMaxDumpBytes, nullptr, true),
    Row("mini_dump_1_bytes",      ADAPTER(miniDumpBytes[0]),     FieldKind::Number, kMaxDumpBytes, nullptr, true),
    Row("mini_dump_2_bytes",      ADAPTER(miniDumpBytes[1]),     FieldKind::Number, kMaxDumpBytes, nullptr, true),
    Row("dump_present",           ADAPTER(dumpPresent),          FieldKind::Flag,   1, nullptr, true),
    Row("lockdown",               ADAPTER(lockdown),             FieldKind::Flag,   1, nullptr, true),
    Row("secure_updates",         ADAPTER(secureUpdates),        FieldKind::Flag,   1, nullptr, true),
    Row("lists_lost_targets",     ADAPTER(listsLostTargets),     FieldKind::Flag,   1, nullptr, true),
    Row("temperature",            ADAPTER(temperature),          FieldKind::Number, kMaxDegrees, nullptr, true),
    Row("temperature_warning",    ADAPTER(temperatureWarning),   FieldKind::Number, kMaxDegrees, nullptr, true),
    Row("temperature_critical",   ADAPTER(temperatureCritical),  FieldKind::Number, kMaxDegrees, nullptr, true),

    Row("scsi_port",              PORT(scsiPort),                FieldKind::Number, kMaxScsiPort, nullptr, false),
    Row("pci_function",           PORT(pciFunction),             FieldKind::Number, kMaxPciFunction, nullptr, false),
    Row("node_name",              PORT(nodeName),                FieldKind::Bytes,  0, nullptr, true),
    Row("port_name",              PORT(portName),                FieldKind::Bytes,  0, nullptr, false),
    Row("port_id",                PORT(portId),                  FieldKind::Bytes,  0, nullptr, true),
    Row("role",                   PORT(role),                    FieldKind::Number, kAny16, nullptr, true),
    Row("state",                  PORT(state),                   FieldKind::Choice, 0, kStates, true),
    Row("topology",               PORT(topology),                FieldKind::Choice, 0, kTopologies, true),
    Row("supported_fc4",          PORT(supportedFc4),            FieldKind::Code,   kAny8,  nullptr, true),
    Row("active_fc4",             PORT(activeFc4),               FieldKind::Code,   kAny8,  nullptr, true),
    Row("supported_speeds",       PORT(supportedSpeeds),         FieldKind::Number, kAny8,  nullptr, true),
    Row("current_speed",          PORT(currentSpeed),            FieldKind::Number, kAny8,  nullptr, true),
    Row("speed_flags",            PORT(speedFlags),              FieldKind::Code,   kAny16, nullptr, true),
    Row("max_frame_size",         PORT(maxFrameSize),            FieldKind::Number, kAny16, nullptr, true),
    Row("bb_credits",             PORT(bbCredits),               FieldKind::Number, kAny16, nullptr, true),
    Row("npiv_maximum",           PORT(npivMaximum),             FieldKind::Number, kAny16, nullptr, true),
    Row("npiv_in_use",            PORT(npivInUse),               FieldKind::Number, kMaxVirtualPorts, nullptr, true),
    Row("max_targets",            PORT(maxTargets),              FieldKind::Number, kAny16, nullptr, true),
    Row("max_luns_per_target",    PORT(maxLunsPerTarget),        FieldKind::Number, kAny16, nullptr, true),
    Row("execution_throttle",     PORT(executionThrottle),       FieldKind::Number, kAny16, nullptr, true),
    Row("login_timeout",          PORT(loginTimeout),            FieldKind::Number, kAny16, nullptr, true),
    Row("link_down_timeout",      PORT(linkDownTimeout),         FieldKind::Number, kAny16, nullptr, true),
    Row("port_down_retry",        PORT(portDownRetry),           FieldKind::Number, kAny16, nullptr, true),
    Row("transceiver_type",       PORT(transceiverType),         FieldKind::Bytes,  0, nullptr, true),
    Row("feature_mask",           PORT(featureMask),             FieldKind::Code,   kAny32, nullptr, true),
    Row("fec_active",             PORT(fecActive),               FieldKind::Flag,   1, nullptr, true),
    Row("protocol_flags",         PORT(protocolFlags),           FieldKind::Code,   kAny8,  nullptr, true),
    Row("trunk_state",            PORT(trunkState),              FieldKind::Number, kAny8,  nullptr, true),
    Row("diagnostic_state",       PORT(diagnosticState),         FieldKind::Number, kAny8,  nullptr, true),
    Row("port_disabled",          PORT(portDisabled),            FieldKind::Flag,   1, nullptr, true),
    Row("knows_sub_code_10",      PORT(knowsSubCode10),          FieldKind::Flag,   1, nullptr, true),
    Row("flash_region_flag",      PORT(flashRegionFlag),         FieldKind::Number, kAny8,  nullptr, true),
    Row("flash_region_code",      PORT(flashRegionCode),         FieldKind::Number, kAny8,  nullptr, true),
    Row("loopback_errors",        PORT(loopbackErrors),          FieldKind::Number, kAny8,  nullptr, true),
    Row("boots_from_san",         PORT(bootsFromSan),            FieldKind::Flag,   1, nullptr, true),
    Row("bbcr",                   PORT(bbcr),                    FieldKind::Number, kMaxCreditRecovery, nullptr, true),
    Row("bbcr_reason",            PORT(bbcrReason),              FieldKind::Choice, 0, kRefusals, true),
    Row("npiv_state",             PORT(npivState),               FieldKind::Choice, 0, kVirtualPortStates, true),
    Row("qos_enabled",            PORT(qosEnabled),              FieldKind::Flag,   1, nullptr, true),
    Row("scm",                    PORT(scm),                     FieldKind::Flag,   1, nullptr, true),
    Row("beacon_supported",       PORT(beaconSupported),         FieldKind::Flag,   1, nullptr, true),
    Row("transmit_fault",         PORT(transmitFault),           FieldKind::Flag,   1, nullptr, true),
    Row("received_power",         PORT(receivedPower),           FieldKind::Number, kMaxMicrowatts, nullptr, true),

    Row("node_name",              TARGET(nodeName),              FieldKind::Bytes,  0, nullptr, true),
    Row("port_name",              TARGET(portName),              FieldKind::Bytes,  0, nullptr, false),
    Row("port_id",                TARGET(portId),                FieldKind::Bytes,  0, nullptr, true),
    Row("role",                   TARGET(role),                  FieldKind::Choice, 0, kRoles, true),
    Row("seen_by",                TARGET(seenBy),                FieldKind::Number, kAny8,  nullptr, true),
    Row("present",                TARGET(present),               FieldKind::Flag,   1, nullptr, true),
    Row("refuses_report_luns",    TARGET(refusesReportLuns),     FieldKind::Flag,   1, nullptr, true),
    Row("binding_flags",          TARGET(bindingFlags),          FieldKind::Code,   kAny8,  nullptr, true),
    Row("bus",                    TARGET(bus),                   FieldKind::Number, kAny8,  nullptr, true),
    Row("target",                 TARGET(target),                FieldKind::Number, kAny8,  nullptr, true),
    Row("loop_id",                TARGET(loopId),                FieldKind::Number, kMaxLoopId, nullptr, true),
    Row("port_flags",             TARGET(portFlags),             FieldKind::Code,   kAny16, nullptr, true),
    Row("role_and_state",         TARGET(roleAndState),          FieldKind::Code,   kAny32, nullptr, true),
    Row("symbolic_name",          TARGET(symbolicName),          FieldKind::Text,   0, nullptr, true),
    Row("secured",                TARGET(secured),               FieldKind::Choice, 0, kSecurity, true),
    Row("nvme",                   TARGET(nvme),                  FieldKind::Flag,   1, nullptr, true),
    Row("highest_speed",          TARGET(highestSpeed),          FieldKind::Number, kAny8,  nullptr, true),

    Row("number",                 LUN(number),                   FieldKind::Number, kMaxLunNumber, nullptr, false),
    Row("device_type",            LUN(deviceType),               FieldKind::Number, kMaxDeviceType, nullptr, true),
    Row("block_size",             LUN(blockSize),                FieldKind::Choice, 0, kBlockSizes, true),
    Row("blocks",                 LUN(blocks),                   FieldKind::Number, kMaxBlocks, nullptr, true),
    Row("masked",                 LUN(masked),                   FieldKind::Flag,   1, nullptr, true),
    Row("vendor",                 LUN(vendor),                   FieldKind::Text,   0, nullptr, true),
    Row("product",                LUN(product),                  FieldKind::Text,   0, nullptr, true),
    Row("revision",               LUN(revision),                 FieldKind::Text,   0, nullptr, true),
    Row("serial",                 LUN(serial),                   FieldKind::Text,   0, nullptr, true),
};
// clang-format on

#undef ADAPTER
#undef PORT
#undef TARGET
#undef LUN

}  // namespace

FieldTable ProfileFields() {
    return {kFields, static_cast<uint32_t>(sizeof kFields / sizeof kFields[0])};
}

const Field* FindField(FieldScope scope, const char* name, size_t nameLength) {
    for (const Field& field : kFields) {
        const size_t length = std::strlen(field.name);
        if (field.scope == scope && length < nameLength &&
            std::memcmp(field.name, name, length + 1) == 0) {
            return &field;
        }
    }
    return nullptr;
}

const Field* FindBadField(FieldScope scope, const void* record) {
    for (const Field& field : kFields) {
        if (field.scope == scope &&
            !FieldValueValid(field, static_cast<const uint8_t*>(record) + field.offset)) {
            return &field;
        }
    }
    return nullptr;
}

uint64_t FieldNumber(const Field& field, const uint8_t* bytes) {
    uint64_t number = 0;
    for (uint32_t at = field.size; at-- > 0;) {
        number = (number << 8) | bytes[at];
    }
    return number;
}

bool FieldValueValid(const Field& field, const uint8_t* bytes) {
    switch (field.kind) {
        case FieldKind::Text:
            return IsText(reinterpret_cast<const char*>(bytes), field.size);
        case FieldKind::Number:
        case FieldKind::Code:
        case FieldKind::Flag:
            return FieldNumber(field, bytes) <= field.maximum;
        case FieldKind::Choice:
            for (const FieldChoice* choice = field.choices; choice->name != nullptr; ++choice) {
                if (choice->value == FieldNumber(field, bytes)) {
                    return true;
                }
            }
            return false;
        case FieldKind::Bytes:
            return true;
    }
    return false;
}

}  // namespace vxemu
