// port database: the remote ports that a port's driver knows.
#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/fc_els.h"
#include "vxmgr/ports/remote_ports.h"
#include "vxmgr/sfp/sfp_diagnostics.h"

namespace vxmgr {
namespace {

using RemoteRecord = HX_REMOTE_PORT;

struct NameOfBit {
    unsigned bit;
    const char* name;
};
constexpr NameOfBit kRemoteRoles[] = {
    {HX_ROLE_FCP_TARGET, "fcp"},
    {HX_ROLE_FCP_INITIATOR, "fcp_initiator"},
    {HX_ROLE_NVME_SUBSYSTEM, "nvme"},
    {HX_ROLE_NVME_HOST, "nvme_host"},
    {HX_ROLE_NVME_DISCOVERY, "nvme_discovery"},
};
constexpr const char* kRemoteRoleNames[] = {"fcp", "fcp_initiator", "nvme", "nvme_host",
                                            "nvme_discovery"};
constexpr const char* kRemoteStates[] = {"online", "lost", "not_logged_in"};
constexpr const char* kSecureStates[] = {"plain", "authenticating", "secured", "failed"};
constexpr const char* kAuthentications[] = {"none", "dh_chap", "fcap", "fcpap", "ikev2"};
constexpr const char* kEncryptions[] = {"none", "aes_gcm_128", "aes_gcm_256"};
constexpr const char* kLightStates[] = {"normal", "warning", "alarm"};

// Null for a number without a name.
// A remote port, or a port that failed.
struct RemoteRow {
    const Port* port;
    const RemotePort* remote = nullptr;

    const RemoteRecord* Record() const { return remote != nullptr ? &remote->record : nullptr; }
    // What an older driver does not say.
    const RemoteRecord* Told() const {
        return remote != nullptr && !remote->brief ? &remote->record : nullptr;
    }
    // It has an address on the bus.
    const RemoteRecord* OnBus() const {
        if (remote == nullptr || remote->brief) {
            return Record();
        }
        const bool isTarget = (remote->record.roles & HX_ROLE_FCP_TARGET) != 0;
        return isTarget && remote->record.state == HX_REMOTE_PORT_ONLINE ? Record() : nullptr;
    }
    // It answered for its link.
    const RemoteRecord* Diagnosed() const {
        return remote != nullptr && (remote->record.flags & HX_REMOTE_PORT_DIAGNOSED) != 0
                   ? &remote->record
                   : nullptr;
    }
    const HX_SECURE_PORT* Security() const {
        return remote != nullptr && remote->security ? &*remote->security : nullptr;
    }
};

std::vector<std::string> RolesOf(const RemoteRecord& record) {
    std::vector<std::string> names;
    for (const NameOfBit& role : kRemoteRoles) {
        if (record.roles & role.bit) {
            names.push_back(role.name);
        }
    }
    return names;
}

// Older drivers give none.
std::optional<std::vector<std::string>> RolesOfRow(const RemoteRow& row) {
    return row.remote != nullptr && (!row.remote->brief || row.remote->record.roles != 0)
               ? std::optional(RolesOf(row.remote->record))
               : std::nullopt;
}

Value RemoteState(const RemoteRecord& record) {
    const bool online = record.state == HX_REMOTE_PORT_ONLINE;
    const char* const state = NameAt(kRemoteStates, record.state, HX_REMOTE_PORT_ONLINE);
    return (state != nullptr ? Value::Text(state) : Value())
        .In(online ? Tone::Good : Tone::Warning);
}

// Zero where the driver does not tell.
template <auto member>
Value NumberOrNull(const RemoteRecord& record) {
    const auto number = Packed<member>(record);
    return number != 0 ? Value::Number(number) : Value();
}

Value LoopIdentifier(const RemoteRecord& record) {
    return record.loopId != kNoLoopId ? Value::Number(record.loopId) : Value();
}

LinkErrors ErrorsOf(const RemoteRecord& record) {
    HX_LINK_ERRORS errors;
    std::memcpy(&errors, &record.errors, sizeof errors);
    return {errors.linkFailures,
            errors.lossesOfSync,
            errors.lossesOfSignal,
            errors.primitiveSequenceErrors,
            errors.invalidTransmissionWords,
            errors.invalidCrcs};
}

uint64_t ErrorSum(const RemoteRecord& record) {
    const LinkErrors errors = ErrorsOf(record);
    return errors.linkFailures + errors.lossesOfSync + errors.lossesOfSignal +
           errors.protocolErrors + errors.invalidWords + errors.crcErrors;
}

const Fields<RemoteRecord> kRemoteFecFields = {
    {"corrected", "Blocks corrected", kInteger, Packed<&RemoteRecord::correctedFecBlocks>},
    {"uncorrectable", "Blocks uncorrectable", kInteger,
     Packed<&RemoteRecord::uncorrectableFecBlocks>},
};

template <SfpQuantity quantity, auto member>
Value LightReading(const RemoteRecord& record) {
    constexpr double kScales[] = {1.0 / 256, 0.0001, 0.002, 0.0001, 0.0001};
    return ReadingValue(quantity, Packed<member>(record) * kScales[static_cast<size_t>(quantity)]);
}

template <auto member>
Value LightPower(const RemoteRecord& record) {
    return DecibelValue(Packed<member>(record) * 0.0001);
}

Value LightState(const RemoteRecord& record) {
    constexpr uint16_t kWarnings = 0x001F;
    constexpr uint16_t kAlarms = 0x1F00;
    const uint16_t flags = record.transceiverFlags;
    return (flags & kAlarms) != 0     ? Value::Text(kLightStates[2]).In(Tone::Bad)
           : (flags & kWarnings) != 0 ? Value::Text(kLightStates[1]).In(Tone::Warning)
                                      : Value::Text(kLightStates[0]).In(Tone::Good);
}

constexpr auto kDecimal = kText.OrNull();
const Fields<RemoteRecord> kRemoteTransceiverFields = {
    {"temperature_c", "Temperature", kDecimal,
     LightReading<SfpQuantity::Temperature, &RemoteRecord::temperature>},
    {"voltage_v", "Supply voltage", kDecimal,
     LightReading<SfpQuantity::Voltage, &RemoteRecord::voltage>},
    {"bias_ma", "Laser bias", kDecimal, LightReading<SfpQuantity::Bias, &RemoteRecord::bias>},
    {"tx_power_mw", "Sent power", kDecimal,
     LightReading<SfpQuantity::SentPower, &RemoteRecord::txPower>},
    {"tx_power_dbm", "Sent power", kDecimal, LightPower<&RemoteRecord::txPower>, "null: no light"},
    {"rx_power_mw", "Received power", kDecimal,
     LightReading<SfpQuantity::ReceivedPower, &RemoteRecord::rxPower>},
    {"rx_power_dbm", "Received power", "RX POWER", kDecimal, LightPower<&RemoteRecord::rxPower>,
     "null: no light"},
    {"state", "State", Choice(kLightStates), LightState, "the worst of the five quantities"},
};

const Fields<HX_SECURE_PORT> kSecurityFields = {
    {"state", "State", Choice(kSecureStates).OrNull(),
     [](const HX_SECURE_PORT& port) { return NameAt(kSecureStates, port.state); }},
    {"authentication", "Authentication", Choice(kAuthentications).OrNull(),
     [](const HX_SECURE_PORT& port) { return NameAt(kAuthentications, port.authentication); }},
    {"encryption", "Encryption", Choice(kEncryptions).OrNull(),
     [](const HX_SECURE_PORT& port) { return NameAt(kEncryptions, port.encryption); }},
    {"encrypts_tx", "Encrypts what is sent", kFlag,
     [](const HX_SECURE_PORT& port) { return (port.directions & HX_SECURE_TX) != 0; }},
    {"encrypts_rx", "Encrypts what is received", kFlag,
     [](const HX_SECURE_PORT& port) { return (port.directions & HX_SECURE_RX) != 0; }},
    {"tx_bytes", "Bytes sent", kCounter, Packed<&HX_SECURE_PORT::txBytes>},
    {"rx_bytes", "Bytes received", kCounter, Packed<&HX_SECURE_PORT::rxBytes>},
    {"rekeys", "Rekeyed", kInteger, Packed<&HX_SECURE_PORT::rekeys>},
    {"seconds_since_rekey", "Since then", Integer("s"), Packed<&HX_SECURE_PORT::secondsSinceRekey>},
    {"failures", "Failures", kInteger, Packed<&HX_SECURE_PORT::failures>},
    {"frames_refused", "Frames refused", kInteger, Packed<&HX_SECURE_PORT::framesRefused>},
};

const Fields<RemoteRow> kRemotePortRow = {
    {PortKeys(kPortIndex | kOldSerialKey), &RemoteRow::port},
    {"target_wwn", "Port name", "PORT NAME", kWwn.OrNull(),
     Of(&RemoteRow::Record, [](const RemoteRecord& one) { return Wwn::Of(one.portName); }),
     "of the remote port; null in the row of a port that failed"},
    {"node_wwn", "Node name", kWwn.OrNull(),
     Of(&RemoteRow::Record, [](const RemoteRecord& one) { return Wwn::Of(one.nodeName); })},
    {"port_id", "Port ID", "PORT ID", Hexadecimal(6).OrNull(),
     Of(&RemoteRow::Record, [](const RemoteRecord& one) { return PortIdOf(one.portId); })},
    {"roles", "Roles", "ROLES", Choices(kRemoteRoleNames).OrNull(), RolesOfRow,
     "fcp, nvme: a target or subsystem of that protocol"},
    {"state", "State", "STATE", Choice(kRemoteStates).OrNull(), Of(&RemoteRow::Told, RemoteState)},
    {"speed_gbit", "Speed", "SPEED", kInteger.OrNull(),
     Of(&RemoteRow::Told, [](const RemoteRecord& one) { return SpeedValue(one.speed); })},
    {"max_speed_gbit", "Highest speed", kInteger.OrNull(),
     Of(&RemoteRow::Told, [](const RemoteRecord& one) { return SpeedValue(one.highestSpeed); })},
    {"bus", "Bus", "BUS", kInteger.OrNull(), Of(&RemoteRow::OnBus, Packed<&RemoteRecord::bus>)},
    {"target", "Target", "ID", kInteger.OrNull(),
     Of(&RemoteRow::OnBus, Packed<&RemoteRecord::target>), "target ID"},
    {"loop_id", "Loop identifier", kInteger.OrNull(), Of(&RemoteRow::Record, LoopIdentifier),
     "null: no loop"},
    {"loop_position", "Place on the loop", "LOOP", kInteger.OrNull(),
     [](const RemoteRow& row) {
         return row.remote != nullptr ? row.remote->loopPosition : std::nullopt;
     },
     "places behind the port's own; null: no loop, or not on it"},
    {"max_frame_size", "Largest frame", Integer("bytes").OrNull(),
     Of(&RemoteRow::Told, NumberOrNull<&RemoteRecord::maxFrameSize>)},
    {"bb_credits", "Buffer credits", kInteger.OrNull(),
     Of(&RemoteRow::Told, NumberOrNull<&RemoteRecord::bbCredits>)},
    {"seconds_online", "Online for", Integer("s").OrNull(),
     Of(&RemoteRow::Told, Packed<&RemoteRecord::secondsOnline>)},
    {"secured", "Secured", "SECURED", kFlag.OrNull(),
     Of(&RemoteRow::Told,
        [](const RemoteRecord& one) { return (one.flags & HX_REMOTE_PORT_SECURED) != 0; }),
     "authenticated, and encrypted where that was agreed"},
    {"error_count", "Link errors", "ERRORS", kInteger.OrNull(), Of(&RemoteRow::Diagnosed, ErrorSum),
     "the sum of errors"},
    {"errors", "Link errors", kLinkErrorsFields, Of(&RemoteRow::Diagnosed, ErrorsOf),
     "of the remote port's own link, as it answered", kGroup.OrNull()},
    {"fec", "Forward error correction", kRemoteFecFields, &RemoteRow::Diagnosed, "",
     kGroup.OrNull()},
    {"transceiver", "Transceiver", kRemoteTransceiverFields, &RemoteRow::Diagnosed,
     "of the remote port; decimal numbers", kGroup.OrNull()},
    {"security", "Security", kSecurityFields, &RemoteRow::Security,
     "null: neither authenticated nor encrypted", kGroup.OrNull()},
    {"symbolic_name", "Name", "NAME", kText.OrNull(),
     Of(&RemoteRow::Record, TextOf<&RemoteRecord::symbolicName>)},
    {kPortStatus, &RemoteRow::port},
};
const auto kRemotePortList =
    ListOf("remote_ports", "Remote ports", kRemotePortRow, "No remote ports.");

ExitCode PortDatabase(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const auto answers = ForEachPort<std::vector<RemotePort>>(
        invocation, SelectPorts(invocation, ports), ReadRemotePorts);
    const ExitCode exit = ReportAnswers(invocation, answers);
    std::vector<RemoteRow> rows;
    for (const auto& one : answers) {
        for (const RemotePort& remote : one.answer) {
            rows.push_back({one.port, &remote});
        }
        if (one.answer.empty() && one.status != HXMGT_SUCCESS) {
            rows.push_back({one.port});
        }
    }
    invocation.Result() = kRemotePortList.Make(rows);
    return exit;
}

}  // namespace

CommandRows DatabaseCommands() {
    static const Command kCommands[] = {
        {.path = "port database",
         .help = "list the remote ports that the ports' drivers know",
         .run = PortDatabase,
         .example = "port database -p scsi:3",
         .result = ShapeOf<kRemotePortList>},
    };
    return kCommands;
}

}  // namespace vxmgr
