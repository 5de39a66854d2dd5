// adapter list|show, port list|show.
#include <algorithm>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_answers.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/ports/credit_recovery.h"

namespace vxmgr {
namespace {

constexpr FieldType kPciId = Hexadecimal(4).OrNull();
constexpr FieldType kSeconds = Integer("s").OrNull();
constexpr char kAnswersAbout[] =
    "false: the port did not answer in time, or could not be opened; it keeps its index";

using Chip = HX_CHIP_PROPERTY;
using Node = HX_NODE_PROPERTY;
using Properties = HX_PORT_PROPERTY;

template <auto member>
constexpr auto kNodeText = Of(&Port::node, TextOf<member>);

// Four characters and a terminator are the version; what follows has no meaning.
std::string OptionRomVersion(const Port& port) {
    return port.node ? FieldText(port.node->optionRomVersion, 4) : std::string();
}

template <auto member>
constexpr auto kChipNumber = Of(&Port::chip, Packed<member>);

// Records of the current generation, and of the second version, have numbers that others lack.
const Properties* CurrentProperties(const Port& port) {
    return port.port && port.IsCurrentGeneration() ? &*port.port : nullptr;
}
const Properties* SecondProperties(const Port& port) {
    return port.port && port.hasSecondVersion ? &*port.port : nullptr;
}

template <auto member>
constexpr auto kPortNumber = Of(&Port::port, Packed<member>);
template <auto member>
constexpr auto kCurrentNumber = Of(CurrentProperties, Packed<member>);
template <auto member>
constexpr auto kSecondNumber = Of(SecondProperties, Packed<member>);
template <auto member>
constexpr auto kSecondFlag = Of(SecondProperties, [](const Properties& properties) {
    return properties.*member != 0;
});

template <auto member>
constexpr auto kSpeed = Of(&Port::port, [](const Properties& properties) {
    return SpeedValue(properties.*member);
});

std::string FirmwareVersion(const Port& port) {
    return port.firmware ? TextOf<&HX_FIRMWARE_PROPERTY::version>(*port.firmware)
                         : kNodeText<&Node::firmwareVersion>(port).value_or("");
}

std::optional<Wwn> NodeNameOf(const Port& port) {
    return port.node ? std::optional(Wwn::Of(port.node->nodeName)) : std::nullopt;
}

std::string SystemDeviceOf(const Port& port) {
    return port.scsiPort ? "\\\\.\\Scsi" + std::to_string(*port.scsiPort) + ":" : std::string();
}

// Older drivers say nothing about the slot.
const Chip* SlotOf(const Port& port) {
    return port.chip && port.IsCurrentGeneration() ? &*port.chip : nullptr;
}
template <auto word>
constexpr auto kLink = Of(SlotOf,
                          [](const Chip& chip) { return LinkText(LinkOf(Packed<word>(chip))); });
template <auto word, auto part>
constexpr auto kLinkPart = Of(SlotOf, [](const Chip& chip) {
    const uint32_t number = LinkOf(Packed<word>(chip)).*part;
    return number != 0 ? Value::Number(number) : Value();
});

// A port in a list; among its adapter's own ones the table need not repeat the adapter.
Fields<Port> SummaryFields(bool withAdapter) {
    return {
        {"index", "", kInteger, &Port::index, "the same as port"},
        {"port", "Port", "PORT", kInteger, &Port::index},
        {"scsi_port", "SCSI port", "SCSI", kInteger.OrNull(), &Port::scsiPort},
        {"adapter_serial", "Adapter serial", withAdapter ? "ADAPTER" : "", kSerial.OrNull(),
         &Port::Serial},
        {kPortSerialAlias, std::identity()},
        {"model", "Model", withAdapter ? "MODEL" : "", kText.OrNull(), kNodeText<&Node::model>},
        {"port_wwn", "Port name", "PORT NAME", kWwn.OrNull(), PortNameOf},
        {"node_wwn", "Node name", kWwn.OrNull(), NodeNameOf},
        {"port_id", "Port ID", "PORT ID", kText.OrNull(), PortIdValue},
        {"state", "State", "STATE", Choice(kPortStates).OrNull(), StateValue},
        {"answers", "", kFlag, &Port::answers, kAnswersAbout},
        {"speed_gbit", "Speed", "SPEED", kInteger.OrNull(), kSpeed<&Properties::currentSpeed>},
        {"topology", "Topology", "TOPOLOGY", Choice(kTopologies).OrNull(), TopologyValue},
        {"discovered_targets", "Targets", "TARGETS", kInteger.OrNull(),
         kPortNumber<&Properties::discoveredTargets>},
        {"firmware", "Firmware", "FIRMWARE", kText.OrNull(), FirmwareVersion},
        {kPortStatus, std::identity()},
    };
}

const Fields<Port> kIdentityFields = {
    {"port_wwn", "Port name", "PORT NAME", kWwn.OrNull(), PortNameOf},
    {"node_wwn", "Node name", kWwn.OrNull(), NodeNameOf},
    {"serial", "Adapter serial", "ADAPTER", kSerial.OrNull(), &Port::Serial},
    {"model", "Model", "MODEL", kText.OrNull(), kNodeText<&Node::model>},
    {"model_description", "Description", kText.OrNull(), kNodeText<&Node::modelDescription>},
};

const Fields<Port> kPortLinkFields = {
    {"state", "State", "STATE", Choice(kPortStates).OrNull(), StateValue},
    {"disabled", "Port disabled", kFlag.OrNull(), &Port::disabled},
    {"speed_gbit", "Speed", "SPEED", kInteger.OrNull(), kSpeed<&Properties::currentSpeed>},
    {"max_speed_gbit", "Highest speed", kInteger.OrNull(), kSpeed<&Properties::supportedSpeeds>},
    {"topology", "Topology", Choice(kTopologies).OrNull(), TopologyValue},
    {"port_id", "Port ID", "PORT ID", kText.OrNull(), PortIdValue},
    {"role", "Role", Choice(kPortRoles).OrNull(), RoleValue},
};

const Fields<Port> kFibreChannelFields = {
    {"discovered_devices", "Discovered devices", kInteger.OrNull(),
     kPortNumber<&Properties::discoveredDevices>},
    {"discovered_targets", "Discovered targets", kInteger.OrNull(),
     kPortNumber<&Properties::discoveredTargets>},
    {"max_frame_size", "Largest frame", Integer("bytes").OrNull(),
     kCurrentNumber<&Properties::maxFrameSize>},
    {"bb_credits", "Buffer credits", kInteger.OrNull(), kCurrentNumber<&Properties::bbCredits>},
    {"npiv_in_use", "NPIV ports in use", kInteger.OrNull(), kCurrentNumber<&Properties::npivInUse>},
    {"npiv_maximum", "NPIV ports at most", kInteger.OrNull(),
     kCurrentNumber<&Properties::npivMaximum>},
    {"fcp", "FCP", kFlag.OrNull(), kSecondFlag<&Properties::fcpEnabled>},
    {"nvme", "NVMe", kFlag.OrNull(), kSecondFlag<&Properties::nvmeEnabled>},
    {"fec", "Forward error correction", kFlag.OrNull(), kSecondFlag<&Properties::fecActive>},
    {"trunk_state", "Trunk state", kInteger.OrNull(), kSecondNumber<&Properties::trunkState>},
    {"diagnostic_state", "Diagnostic state", kInteger.OrNull(),
     kSecondNumber<&Properties::diagnosticState>},
    {"smartsan", "SmartSAN", kFlag.OrNull(), SmartSanValue},
};

const Fields<Port> kLimitsFields = {
    {"max_targets", "Targets at most", kInteger.OrNull(), kSecondNumber<&Properties::maxTargets>},
    {"max_luns_per_target", "LUNs per target", kInteger.OrNull(),
     kSecondNumber<&Properties::maxLunsPerTarget>},
    {"execution_throttle", "Execution throttle", kInteger.OrNull(),
     kSecondNumber<&Properties::executionThrottle>},
    {"login_timeout_s", "Login time-out", kSeconds, kSecondNumber<&Properties::loginTimeout>},
    {"link_down_timeout_s", "Link-down time-out", kSeconds,
     kSecondNumber<&Properties::linkDownTimeout>},
    {"port_down_retry_s", "Port-down retry", kSeconds, kSecondNumber<&Properties::portDownRetry>},
};

const Fields<Port> kVersionsFields = {
    {"firmware", "Firmware", "FIRMWARE", kText.OrNull(), FirmwareVersion},
    {"driver", "Driver", kText.OrNull(), kNodeText<&Node::driverVersion>},
    {"driver_service", "Driver service", kText.OrNull(), &Port::driverService},
    {"option_rom", "Option ROM", kText.OrNull(), OptionRomVersion},
};

const Fields<Port> kPciFields = {
    {"location", "Location", "PCI", kText.OrNull(), Of(SlotOf, PciLocationValue)},
    {"function", "", kInteger.OrNull(),
     Of(SlotOf, [](const Chip& chip) { return chip.functionBits >> 5; })},
    {"vendor_id", "Vendor ID", kPciId, kChipNumber<&Chip::vendorId>},
    {"device_id", "Device ID", kPciId, kChipNumber<&Chip::deviceId>},
    {"subsystem_vendor_id", "Subsystem vendor ID", kPciId, kChipNumber<&Chip::subsystemVendorId>},
    {"subsystem_device_id", "Subsystem device ID", kPciId, kChipNumber<&Chip::subsystemDeviceId>},
    {"revision", "Revision", kPciId, kChipNumber<&Chip::revision>},
    {"link", "Link", "PCI LINK", kText.OrNull(), kLink<&Chip::linkStatus>},
    {"link_maximum", "Link at most", kText.OrNull(), kLink<&Chip::linkCapabilities>},
    {"link_generation", "", kInteger.OrNull(), kLinkPart<&Chip::linkStatus, &PcieLink::generation>},
    {"link_width", "", kInteger.OrNull(), kLinkPart<&Chip::linkStatus, &PcieLink::width>},
    {"link_maximum_generation", "", kInteger.OrNull(),
     kLinkPart<&Chip::linkCapabilities, &PcieLink::generation>},
    {"link_maximum_width", "", kInteger.OrNull(),
     kLinkPart<&Chip::linkCapabilities, &PcieLink::width>},
};

const Fields<Port> kDetailFields = {
    {"index", "", kInteger, &Port::index, "the same as port"},
    {PortKeys((kPortIndex & kPortColumns) | kScsiPort), std::identity()},
    {"os_device", "System device", kText.OrNull(), SystemDeviceOf},
    {"answers", "", kFlag, &Port::answers, kAnswersAbout},
    {"status", "Status", "STATUS", kText.OrNull().Quiet(),
     [](const Port& port) { return StatusValue(port.failure); }, kPortStatusAbout},
    {"identity", "Identity", kIdentityFields},
    {"link", "Link", kPortLinkFields},
    {"fibre_channel", "Fibre Channel", kFibreChannelFields},
    {"limits", "Limits", kLimitsFields},
    {"versions", "Versions", kVersionsFields},
    {"pci", "PCI", kPciFields},
};

// A port with what is asked of it alone, not when all ports are read.
struct PortInDetail {
    const Port* port;
    std::optional<HX_BBCR_DATA> creditRecovery;
};

const Fields<PortInDetail> kPortInDetailFields = {
    [](const PortInDetail& detail) { return "Port " + std::to_string(detail.port->index); },
    {
        {kDetailFields, &PortInDetail::port},
        {"credit_recovery", "Credit recovery", kCreditRecoveryFields, &PortInDetail::creditRecovery,
         "of buffer-to-buffer credits; null: not known", kGroup.OrNull()},
    }};

// What one port tells of its adapter.
const Fields<Port> kSpeakerFields = {
    {"adapter_serial", "Serial number", "SERIAL", kSerial.OrNull(), &Port::Serial},
    {kPortSerialAlias, std::identity()},
    {"manufacturer", "Manufacturer", kText.OrNull(), kNodeText<&Node::manufacturer>},
    {"model", "Model", "MODEL", kText.OrNull(), kNodeText<&Node::model>},
    {"model_description", "Description", "DESCRIPTION", kText.OrNull(),
     kNodeText<&Node::modelDescription>},
    {"vendor_id", "PCI vendor ID", kPciId, kChipNumber<&Chip::vendorId>},
    {"device_id", "PCI device ID", "DEVICE", kPciId, kChipNumber<&Chip::deviceId>},
    {"subsystem_vendor_id", "Subsystem vendor ID", kPciId, kChipNumber<&Chip::subsystemVendorId>},
    {"subsystem_device_id", "Subsystem device ID", kPciId, kChipNumber<&Chip::subsystemDeviceId>},
    {"firmware", "Firmware", "FIRMWARE", kText.OrNull(), kNodeText<&Node::firmwareVersion>},
    {"driver", "Driver", "DRIVER", kText.OrNull(), kNodeText<&Node::driverVersion>},
    {"driver_service", "Driver service", kText.OrNull(), &Port::driverService},
    {"option_rom", "Option ROM", "OPTION ROM", kText.OrNull(), OptionRomVersion},
    {"smartsan", "SmartSAN", kFlag.OrNull(), SmartSanValue},
};

// The first port whose node record could be read.
const Port& SpeakerOf(const Adapter& adapter) {
    const auto found = std::ranges::find_if(
        adapter.ports, [](const Port* port) { return port->node.has_value(); });
    return found != adapter.ports.end() ? **found : adapter.First();
}

Value OnlinePorts(const Adapter& adapter) {
    const auto online = std::ranges::count_if(adapter.ports, [](const Port* port) {
        return port->port && port->port->state == HX_PORT_STATE_ONLINE &&
               !port->disabled.value_or(false);
    });
    const auto all = static_cast<ptrdiff_t>(adapter.ports.size());
    return Value::Number(static_cast<uint64_t>(online))
        .Shown(std::to_string(online) + " of " + std::to_string(all))
        .In(online == all ? Tone::Good
            : online == 0 ? Tone::Bad
                          : Tone::Warning);
}

Value AdapterStatus(const Adapter& adapter) {
    const auto failed = std::ranges::find_if(
        adapter.ports, [](const Port* port) { return port->failure != HXMGT_SUCCESS; });
    return failed != adapter.ports.end() ? StatusValue((*failed)->failure) : Value();
}

const Fields<Adapter> kAdapterFields = {
    {"index", "", "ADAPTER", kInteger, &Adapter::index},
    {kSpeakerFields, SpeakerOf},
    {"port_count", "", kInteger, [](const Adapter& adapter) { return adapter.ports.size(); }},
    {"ports_online", "Ports online", "ONLINE", kInteger, OnlinePorts},
    {"status", "Status", kText.OrNull().Quiet(), AdapterStatus,
     "null, or the status of the first port that failed"},
};

const Fields<Port> kAdapterPorts = SummaryFields(false);
const Fields<Adapter> kAdapterDetailFields = {
    [](const Adapter& adapter) { return "Adapter " + std::to_string(adapter.index); },
    {
        {kAdapterFields, std::identity()},
        {"ports", "Ports", kAdapterPorts, &Adapter::ports},
    }};

using AdapterRows = std::vector<const Adapter*>;
using PortRows = std::vector<const Port*>;

const auto kAdapterList =
    ListOf<AdapterRows>("adapters", "Adapters", kAdapterFields, "No adapters.");

const auto kAdapterDetails = ListOf<AdapterRows>("adapters", "Adapters", kAdapterDetailFields,
                                                 ListLayout::Sections, "No adapters.");

const Fields<Port> kPortInList = SummaryFields(true);
const auto kPortList = ListOf<PortRows>("ports", "Ports", kPortInList, "No ports.");

using PortDetailRows = std::vector<PortInDetail>;

const auto kPortDetails =
    ListOf("ports", "Ports", kPortInDetailFields, ListLayout::Sections, "No ports.");

template <const auto& fields>
ExitCode ShowAdapters(Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    const AdapterRows rows = SelectAdapters(invocation, adapters);
    PortRows shown;
    for (const Adapter* adapter : rows) {
        shown.insert(shown.end(), adapter->ports.begin(), adapter->ports.end());
    }
    invocation.Result() = fields.Make(rows);
    return ReportFailures(invocation, shown);
}

ExitCode ListPorts(Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const PortRows shown = SelectPorts(invocation, ports);
    invocation.Result() = kPortList.Make(shown);
    return ReportFailures(invocation, shown);
}

HX_STATUS AskCreditRecovery(PortVisit& visit, std::optional<HX_BBCR_DATA>* recovery) {
    visit.query = "credit recovery";
    HX_BBCR_DATA record{};
    const HX_STATUS status = HXGetBBCRData(visit.Handle(), &record);
    if (status == HXMGT_SUCCESS) {
        *recovery = record;
    }
    return status;
}

ExitCode ShowPorts(Invocation& invocation) {
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    PortDetailRows rows;
    for (const auto& one :
         ForEachPort<std::optional<HX_BBCR_DATA>>(invocation, selected, AskCreditRecovery)) {
        // The first failure is the one that tells.
        if (one.status != HXMGT_SUCCESS && !CannotTell(one.status) &&
            one.port->failure == HXMGT_SUCCESS) {
            one.port->failure = one.status;
            one.port->failedQuery = one.query;
        }
        rows.push_back({one.port, one.answer});
    }
    invocation.Result() = kPortDetails.Make(rows);
    return ReportFailures(invocation, selected);
}

}  // namespace

CommandRows AdapterAndPortCommands() {
    static const Command kCommands[] = {
        {.path = "adapter list",
         .help = "list the adapters",
         .run = ShowAdapters<kAdapterList>,
         .example = "adapter list",
         .result = ShapeOf<kAdapterList>},
        {.path = "adapter show",
         .help = "show adapters in detail, with their ports",
         .run = ShowAdapters<kAdapterDetails>,
         .example = "adapter show -a serial:EMU7740A0001",
         .result = ShapeOf<kAdapterDetails>},
        {.path = "port list",
         .help = "list the ports",
         .run = ListPorts,
         .example = "port list -o csv",
         .result = ShapeOf<kPortList>},
        {.path = "port show",
         .help = "show ports in detail",
         .run = ShowPorts,
         .example = "port show -p scsi:3",
         .result = ShapeOf<kPortDetails>},
    };
    return kCommands;
}

}  // namespace vxmgr
