// nvme list: controllers behind the ports, and their namespaces.
#include <algorithm>
#include <limits>

#include "vxmgr/app/bytes.h"
#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/nvme_controllers.h"

namespace vxmgr {
namespace {

using NvmeTarget = HX_NVME_TARGET;
using NvmeNamespace = HX_NVME_NAMESPACE;

constexpr Argument kNvmeListArguments[] = {
    FlagOption("--namespaces", "one row for each namespace"),
};

constexpr const char* kNvmeKinds[] = {"discovery", "nvm"};
constexpr const char* kNvmeStates[] = {"not_connected", "connecting", "live", "reconnecting"};
constexpr const char* kAnaStates[] = {"optimized", "non_optimized", "inaccessible", "lost"};
constexpr const char* kAllAnaStates[] = {kAnaStates[0], kAnaStates[1], kAnaStates[2], kAnaStates[3],
                                         "changing"};

// Nothing where no number of 64 bits holds it: then the driver is wrong.
std::optional<uint64_t> BytesIn(const NvmeNamespace& one, uint64_t blocks) {
    const auto size = Packed<&NvmeNamespace::blockSize>(one);
    return size == 0 || blocks <= std::numeric_limits<uint64_t>::max() / size
               ? std::optional(blocks * size)
               : std::nullopt;
}

// A number of bytes as people read it.
Value SizeIn(std::optional<uint64_t> bytes) {
    return bytes ? SizeValue(*bytes) : Value();
}

template <auto blocks>
Value BlocksValue(const NvmeNamespace& one) {
    return SizeIn(BytesIn(one, Packed<blocks>(one)));
}

// Hexadecimal digits; nothing for an identifier of zeros. The names of a target are often in it.
template <auto member>
std::optional<std::string> IdentifierOf(const NvmeNamespace& one) {
    const Bytes bytes(one.*member);
    const bool none =
        std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
    return none ? std::nullopt : std::optional(HexDigits(bytes));
}

const char* AnaStateOf(const NvmeNamespace& one) {
    return one.anaState == HX_ANA_CHANGING ? kAllAnaStates[4]
                                           : NameAt(kAnaStates, one.anaState, HX_ANA_OPTIMIZED);
}

constexpr FieldType kManyBytes = {
    .base = FieldType::Base::Integer, .nullable = true, .large = true};
const Fields<NvmeNamespace> kNamespaceFields = {
    {"id", "Namespace", "NAMESPACE", kInteger, Packed<&NvmeNamespace::id>},
    {"block_size", "Block size", "BLOCK SIZE", Integer("bytes"), Packed<&NvmeNamespace::blockSize>},
    {"blocks", "Blocks", kCounter, Packed<&NvmeNamespace::blocks>},
    {"capacity_bytes", "Capacity", "CAPACITY", kManyBytes, BlocksValue<&NvmeNamespace::capacity>},
    {"used_bytes", "Used", "USED", kManyBytes, BlocksValue<&NvmeNamespace::used>},
    {"nguid", "NGUID", "NGUID", kSerial.OrNull(), IdentifierOf<&NvmeNamespace::nguid>},
    {"eui64", "EUI-64", kSerial.OrNull(), IdentifierOf<&NvmeNamespace::eui64>},
    {"ana_group", "ANA group", "ANA GROUP", kInteger, Packed<&NvmeNamespace::anaGroup>},
    {"ana_state", "ANA state", "ANA STATE", Choice(kAllAnaStates).OrNull(), AnaStateOf},
    {"shared", "Shared", "SHARED", kFlag, Bit<&NvmeNamespace::flags, HX_NAMESPACE_SHARED>},
    {"write_protected", "Write protected", "PROTECTED", kFlag,
     Bit<&NvmeNamespace::flags, HX_NAMESPACE_WRITE_PROTECTED>},
};

struct ControllerRow {
    const Port* port = nullptr;
    const FoundController* found = nullptr;  // null: a port that failed

    const NvmeTarget* Record() const {
        return found != nullptr && found->record ? &*found->record : nullptr;
    }
    std::vector<NvmeNamespace> Namespaces() const {
        return found != nullptr ? found->namespaces : std::vector<NvmeNamespace>();
    }
};

std::optional<uint64_t> CapacityOf(const FoundController& found) {
    uint64_t sum = 0;
    for (const NvmeNamespace& one : found.namespaces) {
        const auto bytes = BytesIn(one, Packed<&NvmeNamespace::capacity>(one));
        if (!bytes || *bytes > std::numeric_limits<uint64_t>::max() - sum) {
            return std::nullopt;
        }
        sum += *bytes;
    }
    return found.record ? std::optional(sum) : std::nullopt;
}

Value ControllerStateValue(const NvmeTarget& controller) {
    static constexpr Tone kTones[] = {Tone::Bad, Tone::Warning, Tone::Good, Tone::Warning};
    static constexpr const char* kShown[] = {"not connected", "connecting", "live", "reconnecting"};
    const char* const state = NameAt(kNvmeStates, controller.state);
    return state == nullptr
               ? Value()
               : Value::Text(state).Shown(kShown[controller.state]).In(kTones[controller.state]);
}

// "1.4"
std::string NvmeVersionOf(const NvmeTarget& controller) {
    const auto version = Packed<&NvmeTarget::version>(controller);
    return version == 0 ? ""
                        : std::to_string(version >> 16) + "." + std::to_string(version >> 8 & 0xFF);
}

// What a row says in both forms; the other columns are those of controllers alone.
Fields<ControllerRow> ControllerFields(bool namespaces) {
    using Row = ControllerRow;
    const auto of = [](auto get) { return Of(&Row::Record, get); };
    const auto column = [namespaces](const char* text) { return namespaces ? "" : text; };
    constexpr auto kNumber = kInteger.OrNull();
    constexpr auto kTextOrNull = kText.OrNull();
    return {
        {PortKeys(), &Row::port},
        {"target_wwn", "Target", "TARGET", kWwn.OrNull(),
         Of(&Row::found, &FoundController::remotePort), "port name"},
        {"index", "Index", kNumber, Of(&Row::found, &FoundController::place),
         "of the controller at its port"},
        {"controller_id", "Controller", "CONTROLLER", kNumber,
         of(Packed<&NvmeTarget::controllerId>)},
        {"kind", "Kind", Choice(kNvmeKinds).OrNull(), of([](const NvmeTarget& one) {
             return NameAt(kNvmeKinds, one.kind, HX_NVME_KIND_DISCOVERY);
         })},
        {"subsystem_nqn", "Subsystem", column("SUBSYSTEM"), kTextOrNull,
         of(TextOf<&NvmeTarget::subsystemNqn>)},
        {"host_nqn", "Host", kTextOrNull, of(TextOf<&NvmeTarget::hostNqn>)},
        {"state", "State", column("STATE"), Choice(kNvmeStates).OrNull(), of(ControllerStateValue)},
        {"model", "Model", kTextOrNull, of(TextOf<&NvmeTarget::model>)},
        {"serial", "Serial", kSerial.OrNull(), of(TextOf<&NvmeTarget::serial>),
         "of the controller"},
        {"firmware", "Firmware", kTextOrNull, of(TextOf<&NvmeTarget::firmware>)},
        {"nvme_version", "NVM Express", kTextOrNull, of(NvmeVersionOf)},
        {"io_queues", "I/O queues", kNumber, of(Packed<&NvmeTarget::ioQueues>)},
        {"queue_depth", "Queue depth", kNumber, of(Packed<&NvmeTarget::queueDepth>)},
        {"keep_alive_ms", "Keep-alive", Integer("ms").OrNull(), of(Packed<&NvmeTarget::keepAlive>)},
        {"reconnects", "Reconnects", kNumber, of(Packed<&NvmeTarget::reconnects>)},
        {"namespace_count", "Namespaces", column("NAMESPACES"), kNumber,
         of(Packed<&NvmeTarget::namespaces>)},
        {"capacity_bytes", "Capacity", column("CAPACITY"), kManyBytes,
         [](const Row& row) {
             return SizeIn(row.found != nullptr ? CapacityOf(*row.found) : std::nullopt);
         },
         "of all its namespaces"},
        {"namespaces", "Namespaces", kNamespaceFields, &Row::Namespaces},
        {"status", "Status", kText.OrNull().Quiet(),
         [](const Row& row) {
             return StatusValue(row.found != nullptr ? row.found->status : row.port->failure);
         },
         "null, or the status that the controller or the port failed with"},
    };
}

template <bool namespaces>
const Fields<std::vector<ControllerRow>>& ControllerList() {
    static const auto kRows = ControllerFields(namespaces);
    static const auto kFields =
        ListOf("controllers", "Controllers", kRows,
               namespaces ? ListLayout::Inner : ListLayout::Table, "no controllers");
    return kFields;
}

ExitCode NvmeList(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const AskPort<std::vector<FoundController>> find =
        [](PortVisit& visit, std::vector<FoundController>* controllers) {
            return FindControllers(visit, Namespaces::Too, controllers);
        };
    const auto answers = ForEachPort(invocation, SelectPorts(invocation, ports), find);
    const ExitCode exit = ReportAnswers(invocation, answers);
    std::vector<ControllerRow> rows;
    for (const auto& one : answers) {
        for (const FoundController& found : one.answer) {
            rows.push_back({one.port, &found});
        }
        if (one.answer.empty() && one.status != HXMGT_SUCCESS) {
            rows.push_back({one.port, nullptr});
        }
    }
    invocation.Result() = invocation.Given().Has("namespaces") ? ControllerList<true>().Make(rows)
                                                               : ControllerList<false>().Make(rows);
    return exit;
}

}  // namespace

CommandRows NvmeCommands() {
    static const Command kCommands[] = {
        {.path = "nvme list",
         .help = "list the NVMe controllers that the ports reach",
         .arguments = kNvmeListArguments,
         .run = NvmeList,
         .example = "nvme list --namespaces -p scsi:3",
         .result = ShapeOf<ControllerList<false>>},
    };
    return kCommands;
}

}  // namespace vxmgr
