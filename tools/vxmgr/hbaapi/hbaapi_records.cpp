#include "vxmgr/hbaapi/hbaapi_records.h"

#include "vxmgr/app/getters.h"
#include "vxmgr/hbaapi/hbaapi_texts.h"

namespace vxmgr {
namespace {

using Attributes = HBA_ADAPTERATTRIBUTES;
using PortAttributes = HBA_PORTATTRIBUTES;
using Statistics = HBA_PORTSTATISTICS;
using Management = HBA_MGMTINFO;
using Mapping = HBA_FCPSCSIENTRY;

constexpr auto kNumberOrNull = kInteger.OrNull();
constexpr auto kCounterOrNull = kCounter.OrNull();
constexpr auto kNameOrNull = kWwn.OrNull();
constexpr auto kTextOrNull = kText.OrNull();

// Getters of records.
std::optional<Wwn> NameUnlessZero(const HBA_WWN& name) {
    const Wwn wwn = Wwn::Of(name.wwn);
    return wwn.IsZero() ? std::nullopt : std::optional(wwn);
}

template <auto member>
constexpr auto kNameOf = [](const auto& record) { return NameUnlessZero(record.*member); };

template <auto member, auto textOf>
constexpr auto kWordsOf = [](const auto& record) { return textOf(record.*member); };

template <auto member, int digits>
constexpr auto kHexOf = [](const auto& record) { return Hex(record.*member, digits); };

// Counters below zero are those that the library does not count.
template <auto member>
constexpr auto kCounterOf = [](const Statistics& statistics) {
    const HBA_INT64 value = statistics.*member;
    return value < 0 ? std::nullopt : std::optional(static_cast<uint64_t>(value));
};

// The getter for an answer: null unless it holds.
auto Held(auto get) {
    return [get](const auto& answer) {
        return answer.Holds() ? std::optional(std::invoke(get, answer.record)) : std::nullopt;
    };
}

// The same for an answer of the adapter.
auto HeldOf(auto answer, auto get) {
    return [answer, held = Held(get)](const HbaAdapter& adapter) { return held(adapter.*answer); };
}

Value StatusOf(HBA_STATUS status) {
    return Value::Text(HbaStatusText(status))
        .In(status == HBA_STATUS_OK ? Tone::Plain : Tone::Warning);
}

// The state of an adapter as a whole.
Value ConditionOf(const HbaAdapter& adapter) {
    const auto failure = adapter.Failure();
    if (!failure) {
        return Value::Text("not_opened").Shown("not opened").In(Tone::Bad);
    }
    return StatusOf(*failure);
}

std::optional<uint32_t> ScsiPortOf(const HbaAdapter& adapter) {
    const PortAttributes& port = adapter.port.record;
    return adapter.port.Holds() ? ScsiPortOfDevice(port.OSDeviceName, sizeof port.OSDeviceName)
                                : std::nullopt;
}

template <class Row>
Fields<HbaAnswer<Row>> WithStatus(const Fields<HbaAnswer<Row>>& fields) {
    return {
        {fields, [](const HbaAnswer<Row>& answer) { return &answer; }},
        {"status", "Status", kText,
         [](const HbaAnswer<Row>& answer) { return StatusOf(answer.status); }},
    };
}

const Fields<HbaAnswer<Attributes>> kHeldAttributeFields = {
    {"manufacturer", "Manufacturer", kTextOrNull, Held(TextOf<&Attributes::Manufacturer>)},
    {"serial", "Serial number", "SERIAL", kSerial.OrNull(),
     Held(TextOf<&Attributes::SerialNumber>)},
    {"model", "Model", "MODEL", kTextOrNull, Held(TextOf<&Attributes::Model>)},
    {"model_description", "Description", kTextOrNull, Held(TextOf<&Attributes::ModelDescription>)},
    {"node_wwn", "Node name", kNameOrNull, Held(kNameOf<&Attributes::NodeWWN>)},
    {"node_symbolic_name", "Symbolic node name", kTextOrNull,
     Held(TextOf<&Attributes::NodeSymbolicName>)},
    {"hardware_version", "Hardware", kTextOrNull, Held(TextOf<&Attributes::HardwareVersion>)},
    {"driver_version", "Driver", kTextOrNull, Held(TextOf<&Attributes::DriverVersion>)},
    {"option_rom_version", "Option ROM", kTextOrNull, Held(TextOf<&Attributes::OptionROMVersion>)},
    {"firmware_version", "Firmware", kTextOrNull, Held(TextOf<&Attributes::FirmwareVersion>)},
    {"vendor_specific_id", "Vendor specific", kTextOrNull,
     Held(kHexOf<&Attributes::VendorSpecificID, 8>)},
    {"number_of_ports", "Ports", kNumberOrNull, Held(&Attributes::NumberOfPorts)},
    {"driver_name", "Driver file", kTextOrNull, Held(TextOf<&Attributes::DriverName>)},
};
const auto kAttributesFields = WithStatus(kHeldAttributeFields);

// The same for the adapter's own port and for those that it discovered.
const Fields<HbaAnswer<PortAttributes>>& RemotePortFields() {
    using Port = PortAttributes;
    constexpr auto kFc4 = HbaFc4TypesText;
    constexpr auto kSpeed = HbaSpeedsText;
    static const Fields<HbaAnswer<Port>> kFields = {
        {"port_wwn", "Port name", "PORT NAME", kNameOrNull, Held(kNameOf<&Port::PortWWN>)},
        {"node_wwn", "Node name", kNameOrNull, Held(kNameOf<&Port::NodeWWN>)},
        {"fc_id", "Port identifier", "FC ID", kTextOrNull, Held(kHexOf<&Port::PortFcId, 6>)},
        {"type", "Type", "TYPE", kTextOrNull, Held(kWordsOf<&Port::PortType, HbaPortTypeText>)},
        {"state", "State", "STATE", kTextOrNull,
         Held(kWordsOf<&Port::PortState, HbaPortStateText>)},
        {"os_device", "System device", "DEVICE", kTextOrNull, Held(TextOf<&Port::OSDeviceName>)},
        {"symbolic_name", "Symbolic name", kTextOrNull, Held(TextOf<&Port::PortSymbolicName>)},
        {"classes_of_service", "Classes of service", kTextOrNull,
         Held(kHexOf<&Port::PortSupportedClassofService, 8>)},
        {"supported_fc4", "FC-4 types", kTextOrNull,
         Held(kWordsOf<&Port::PortSupportedFc4Types, kFc4>)},
        {"active_fc4", "FC-4 types in use", kTextOrNull,
         Held(kWordsOf<&Port::PortActiveFc4Types, kFc4>)},
        {"supported_speeds", "Speeds", kTextOrNull,
         Held(kWordsOf<&Port::PortSupportedSpeed, kSpeed>)},
        {"speed", "Speed", kTextOrNull, Held(kWordsOf<&Port::PortSpeed, kSpeed>)},
        {"max_frame_size", "Largest frame", Integer("bytes").OrNull(),
         Held(&Port::PortMaxFrameSize)},
        {"fabric_name", "Fabric name", kNameOrNull, Held(kNameOf<&Port::FabricName>)},
        {"discovered_ports", "Discovered ports", kNumberOrNull,
         Held(&Port::NumberofDiscoveredPorts)},
    };
    return kFields;
}

const auto kOwnPortFields = WithStatus(RemotePortFields());

const Fields<HbaAnswer<Statistics>> kHeldStatisticsFields = {
    {"seconds", "Since the last reset", kCounterOrNull,
     Held(kCounterOf<&Statistics::SecondsSinceLastReset>)},
    {"tx_frames", "Frames sent", kCounterOrNull, Held(kCounterOf<&Statistics::TxFrames>)},
    {"tx_words", "Words sent", kCounterOrNull, Held(kCounterOf<&Statistics::TxWords>)},
    {"rx_frames", "Frames received", kCounterOrNull, Held(kCounterOf<&Statistics::RxFrames>)},
    {"rx_words", "Words received", kCounterOrNull, Held(kCounterOf<&Statistics::RxWords>)},
    {"lips", "Loop initialisations", kCounterOrNull, Held(kCounterOf<&Statistics::LIPCount>)},
    {"nos", "NOS events", kCounterOrNull, Held(kCounterOf<&Statistics::NOSCount>)},
    {"error_frames", "Frames with errors", kCounterOrNull,
     Held(kCounterOf<&Statistics::ErrorFrames>)},
    {"dumped_frames", "Frames lost", kCounterOrNull, Held(kCounterOf<&Statistics::DumpedFrames>)},
    {"link_failures", "Link failures", kCounterOrNull,
     Held(kCounterOf<&Statistics::LinkFailureCount>)},
    {"losses_of_sync", "Losses of synchronisation", kCounterOrNull,
     Held(kCounterOf<&Statistics::LossOfSyncCount>)},
    {"losses_of_signal", "Losses of signal", kCounterOrNull,
     Held(kCounterOf<&Statistics::LossOfSignalCount>)},
    {"sequence_errors", "Primitive sequence errors", kCounterOrNull,
     Held(kCounterOf<&Statistics::PrimitiveSeqProtocolErrCount>)},
    {"invalid_words", "Invalid transmission words", kCounterOrNull,
     Held(kCounterOf<&Statistics::InvalidTxWordCount>)},
    {"invalid_crcs", "CRC errors", kCounterOrNull, Held(kCounterOf<&Statistics::InvalidCRCCount>)},
};
const auto kStatisticsFields = WithStatus(kHeldStatisticsFields);

std::string AddressOf(const Management& info) {
    return HbaAddressText(info.IPVersion, info.IPAddress);
}

const Fields<HbaAnswer<Management>> kHeldManagementFields = {
    {"wwn", "Name", kNameOrNull, Held(kNameOf<&Management::wwn>)},
    {"unit_type", "Unit type", kNumberOrNull, Held(&Management::unittype)},
    {"port_number", "Port number", kNumberOrNull, Held(&Management::PortId)},
    {"attached_nodes", "Attached nodes", kNumberOrNull, Held(&Management::NumberOfAttachedNodes)},
    {"ip_version", "IP version", kNumberOrNull, Held(&Management::IPVersion)},
    {"ip_address", "IP address", kTextOrNull, Held(AddressOf)},
    {"udp_port", "UDP port", kNumberOrNull, Held(&Management::UDPPort)},
    {"topology_discovery_flags", "Discovery flags", kNumberOrNull,
     Held(&Management::TopologyDiscoveryFlags)},
};
const auto kManagementFields = WithStatus(kHeldManagementFields);

const Fields<Mapping> kMappingFields = {
    {"os_device", "Device", "DEVICE", kTextOrNull,
     [](const Mapping& entry) { return TextOf<&HBA_SCSIID::OSDeviceName>(entry.ScsiId); }},
    {"bus", "Bus", "BUS", kInteger,
     [](const Mapping& entry) { return entry.ScsiId.ScsiBusNumber; }},
    {"target", "Target", "ID", kInteger,
     [](const Mapping& entry) { return entry.ScsiId.ScsiTargetNumber; }},
    {"lun", "LUN", "LUN", kInteger, [](const Mapping& entry) { return entry.ScsiId.ScsiOSLun; }},
    {"fc_id", "Port identifier", "FC ID", kText,
     [](const Mapping& entry) { return Hex(entry.FcpId.FcId, 6); }},
    {"port_wwn", "Port name", "PORT NAME", kNameOrNull,
     [](const Mapping& entry) { return NameUnlessZero(entry.FcpId.PortWWN); }},
    {"node_wwn", "Node name", kNameOrNull,
     [](const Mapping& entry) { return NameUnlessZero(entry.FcpId.NodeWWN); }},
    {"fcp_lun", "FCP LUN", "FCP LUN", kText,
     [](const Mapping& entry) { return HbaFcpLunText(entry.FcpId.FcpLun); },
     "a number, or the eight bytes when they address the unit in another way"},
};

}  // namespace

std::string HbaSerial(const HbaAdapter& adapter) {
    return HeldOf(&HbaAdapter::attributes, TextOf<&Attributes::SerialNumber>)(adapter).value_or("");
}

constexpr auto kAttributes = &HbaAdapter::attributes;
constexpr auto kPort = &HbaAdapter::port;
const Fields<HbaAdapter> kHbaSummaryFields = {
    {"index", "Adapter", "ADAPTER", kInteger, &HbaAdapter::index},
    {"port", "", kNumberOrNull, &HbaAdapter::managedPort,
     "index of the port in the other commands"},
    {"scsi_port", "", kNumberOrNull, ScsiPortOf},
    {"adapter_serial", "", kSerial.OrNull(), HbaSerial},
    {"name", "Name", "NAME", kTextOrNull, &HbaAdapter::name},
    {"serial", "Serial number", "SERIAL", kSerial.OrNull(), HbaSerial},
    {"model", "Model", "MODEL", kTextOrNull, HeldOf(kAttributes, TextOf<&Attributes::Model>)},
    {"port_wwn", "Port name", "PORT NAME", kNameOrNull,
     HeldOf(kPort, kNameOf<&PortAttributes::PortWWN>)},
    {"fc_id", "Port identifier", "FC ID", kTextOrNull,
     HeldOf(kPort, kHexOf<&PortAttributes::PortFcId, 6>)},
    {"state", "State", "STATE", kTextOrNull,
     HeldOf(kPort, kWordsOf<&PortAttributes::PortState, HbaPortStateText>)},
    {"speed", "Speed", "SPEED", kTextOrNull,
     HeldOf(kPort, kWordsOf<&PortAttributes::PortSpeed, HbaSpeedsText>)},
    {"firmware_version", "Firmware", "FIRMWARE", kTextOrNull,
     HeldOf(kAttributes, TextOf<&Attributes::FirmwareVersion>)},
    {"driver_version", "Driver", "DRIVER", kTextOrNull,
     HeldOf(kAttributes, TextOf<&Attributes::DriverVersion>)},
    {"status", "Status", "STATUS", kText, ConditionOf,
     "the standard API's name of a status, a number that is none of its own, or not_opened"},
};

template <auto member>
constexpr auto kPartOf = [](const HbaAdapter& adapter) { return &(adapter.*member); };

std::string TitleOf(const HbaAdapter& adapter) {
    return adapter.name.empty() ? "Adapter " + std::to_string(adapter.index) : adapter.name;
}

const Fields<HbaAdapter> kHbaDetailFields(
    TitleOf,
    {
        {"index", "", "ADAPTER", kInteger, &HbaAdapter::index},
        {"scsi_port", "", kNumberOrNull, ScsiPortOf},
        {"port_wwn", "", kNameOrNull, HeldOf(&HbaAdapter::port, kNameOf<&PortAttributes::PortWWN>)},
        {"adapter_serial", "", kSerial.OrNull(), HbaSerial},
        {"name", "", "NAME", kTextOrNull, &HbaAdapter::name},
        {"status", "Status", "STATUS", kText, ConditionOf,
         "as in hbaapi.list; the groups have the statuses of their own handlers"},
        {"attributes", "Adapter attributes", kAttributesFields, kPartOf<&HbaAdapter::attributes>,
         "", kGroup},
        {"port", "Port attributes", kOwnPortFields, kPartOf<&HbaAdapter::port>, "", kGroup},
        {"statistics", "Port statistics", kStatisticsFields, kPartOf<&HbaAdapter::statistics>,
         "null: the library does not count it", kGroup},
        {"management", "Management information", kManagementFields,
         kPartOf<&HbaAdapter::management>, "", kGroup},
        {"discovered_status", "Discovered ports", kText,
         [](const HbaAdapter& adapter) { return StatusOf(adapter.discoveredEnd); }},
        {"discovered", "Discovered ports", RemotePortFields(), &HbaAdapter::discovered,
         "no discovered ports"},
        {"mapping_status", "Target mapping", kText,
         [](const HbaAdapter& adapter) { return StatusOf(adapter.mapping.status); }},
        {"mapping", "Target mapping", kMappingFields,
         [](const HbaAdapter& adapter) { return adapter.mapping.record; }, "no devices"},
    });

}  // namespace vxmgr
