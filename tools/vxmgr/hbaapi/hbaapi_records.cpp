#include "vxmgr/hbaapi/hbaapi_records.h"

#include <cstddef>
#include <cstring>

#include "common/text.h"
#include "vxmgr/hbaapi/hbaapi_texts.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Value;

template <size_t Size>
Value TextOf(const char (&field)[Size]) {
    return Value::TextOrNull(tools::FieldText(field, Size));
}

Value NameOf(const HBA_WWN& name) {
    const tools::Wwn wwn = tools::Wwn::Of(name.wwn);
    return wwn.IsZero() ? Value() : Value::Name(wwn);
}

Value FcIdOf(HBA_UINT32 id) {
    return Value::Text(tools::Hex(id, 6));
}

// Null unless the answer holds.
template <typename Row, typename Make>
Value Of(const HbaAnswer<Row>& answer, Make make) {
    return answer.Holds() ? make(answer.record) : Value();
}

Value StatusOf(HBA_STATUS status) {
    return Value::Text(HbaStatusText(status))
        .In(status == HBA_STATUS_OK ? tools::Tone::Plain : tools::Tone::Warning);
}

// The state of an adapter as a whole, for lists.
Value ConditionOf(const HbaAdapter& adapter) {
    const auto failure = adapter.Failure();
    if (!failure) {
        return Value::Text("not_opened").Shown("not opened").In(tools::Tone::Bad);
    }
    return StatusOf(*failure);
}

using Attributes = HBA_ADAPTERATTRIBUTES;
using PortAttributes = HBA_PORTATTRIBUTES;

Value SerialOf(const HbaAdapter& adapter) {
    return Value::Serial(HbaSerial(adapter));
}

Record AttributesGroup(const HbaAdapter& adapter) {
    const auto& answer = adapter.attributes;
    const auto text = [&](auto field) {
        return Of(answer, [&](const Attributes& record) { return TextOf(record.*field); });
    };
    Record group;
    group.Add("manufacturer", "Manufacturer", text(&Attributes::Manufacturer));
    group.Add("serial", "Serial number", SerialOf(adapter), "SERIAL");
    group.Add("model", "Model", text(&Attributes::Model), "MODEL");
    group.Add("model_description", "Description", text(&Attributes::ModelDescription));
    group.Add("node_wwn", "Node name",
              Of(answer, [](const Attributes& record) { return NameOf(record.NodeWWN); }));
    group.Add("node_symbolic_name", "Symbolic node name", text(&Attributes::NodeSymbolicName));
    group.Add("hardware_version", "Hardware", text(&Attributes::HardwareVersion));
    group.Add("driver_version", "Driver", text(&Attributes::DriverVersion));
    group.Add("option_rom_version", "Option ROM", text(&Attributes::OptionROMVersion));
    group.Add("firmware_version", "Firmware", text(&Attributes::FirmwareVersion));
    group.Add("vendor_specific_id", "Vendor specific", Of(answer, [](const Attributes& record) {
                  return Value::Text(tools::Hex(record.VendorSpecificID, 8));
              }));
    group.Add("number_of_ports", "Ports", Of(answer, [](const Attributes& record) {
                  return Value::Number(record.NumberOfPorts);
              }));
    group.Add("driver_name", "Driver file", text(&Attributes::DriverName));
    group.Add("status", "Status", StatusOf(answer.status));
    return group;
}

// The same for the adapter's own port and for those that it discovered.
void AddPort(Record& record, const HbaAnswer<PortAttributes>& answer) {
    const auto of = [&](auto make) { return Of(answer, make); };
    record.Add("port_wwn", "Port name",
               of([](const PortAttributes& port) { return NameOf(port.PortWWN); }), "PORT NAME");
    record.Add("node_wwn", "Node name",
               of([](const PortAttributes& port) { return NameOf(port.NodeWWN); }));
    record.Add("fc_id", "Port identifier",
               of([](const PortAttributes& port) { return FcIdOf(port.PortFcId); }), "FC ID");
    record.Add("type", "Type", of([](const PortAttributes& port) {
                   return Value::Text(HbaPortTypeText(port.PortType));
               }),
               "TYPE");
    record.Add("state", "State", of([](const PortAttributes& port) {
                   return Value::Text(HbaPortStateText(port.PortState));
               }),
               "STATE");
    record.Add("os_device", "System device",
               of([](const PortAttributes& port) { return TextOf(port.OSDeviceName); }), "DEVICE");
    record.Add("symbolic_name", "Symbolic name",
               of([](const PortAttributes& port) { return TextOf(port.PortSymbolicName); }));
    record.Add("classes_of_service", "Classes of service", of([](const PortAttributes& port) {
                   return Value::Text(tools::Hex(port.PortSupportedClassofService, 8));
               }));
    record.Add("supported_fc4", "FC-4 types", of([](const PortAttributes& port) {
                   return Value::TextOrNull(HbaFc4TypesText(port.PortSupportedFc4Types));
               }));
    record.Add("active_fc4", "FC-4 types in use", of([](const PortAttributes& port) {
                   return Value::TextOrNull(HbaFc4TypesText(port.PortActiveFc4Types));
               }));
    record.Add("supported_speeds", "Speeds", of([](const PortAttributes& port) {
                   return Value::TextOrNull(HbaSpeedsText(port.PortSupportedSpeed));
               }));
    record.Add("speed", "Speed", of([](const PortAttributes& port) {
                   return Value::TextOrNull(HbaSpeedsText(port.PortSpeed));
               }));
    record.Add("max_frame_size", "Largest frame", of([](const PortAttributes& port) {
                   return Value::Number(port.PortMaxFrameSize, "bytes");
               }));
    record.Add("fabric_name", "Fabric name",
               of([](const PortAttributes& port) { return NameOf(port.FabricName); }));
    record.Add("discovered_ports", "Discovered ports", of([](const PortAttributes& port) {
                   return Value::Number(port.NumberofDiscoveredPorts);
               }));
}

struct CounterRow {
    const char* key;
    const char* label;
    HBA_INT64 HBA_PORTSTATISTICS::*value;
};
constexpr CounterRow kCounters[] = {
    {"seconds", "Since the last reset", &HBA_PORTSTATISTICS::SecondsSinceLastReset},
    {"tx_frames", "Frames sent", &HBA_PORTSTATISTICS::TxFrames},
    {"tx_words", "Words sent", &HBA_PORTSTATISTICS::TxWords},
    {"rx_frames", "Frames received", &HBA_PORTSTATISTICS::RxFrames},
    {"rx_words", "Words received", &HBA_PORTSTATISTICS::RxWords},
    {"lips", "Loop initialisations", &HBA_PORTSTATISTICS::LIPCount},
    {"nos", "NOS events", &HBA_PORTSTATISTICS::NOSCount},
    {"error_frames", "Frames with errors", &HBA_PORTSTATISTICS::ErrorFrames},
    {"dumped_frames", "Frames lost", &HBA_PORTSTATISTICS::DumpedFrames},
    {"link_failures", "Link failures", &HBA_PORTSTATISTICS::LinkFailureCount},
    {"losses_of_sync", "Losses of synchronisation", &HBA_PORTSTATISTICS::LossOfSyncCount},
    {"losses_of_signal", "Losses of signal", &HBA_PORTSTATISTICS::LossOfSignalCount},
    {"sequence_errors", "Primitive sequence errors",
     &HBA_PORTSTATISTICS::PrimitiveSeqProtocolErrCount},
    {"invalid_words", "Invalid transmission words", &HBA_PORTSTATISTICS::InvalidTxWordCount},
    {"invalid_crcs", "CRC errors", &HBA_PORTSTATISTICS::InvalidCRCCount},
};

Record StatisticsGroup(const HbaAnswer<HBA_PORTSTATISTICS>& answer) {
    Record group;
    for (const CounterRow& row : kCounters) {
        group.Add(row.key, row.label, Of(answer, [&](const HBA_PORTSTATISTICS& statistics) {
                      const HBA_INT64 value = statistics.*row.value;
                      return value < 0 ? Value() : Value::Number(static_cast<uint64_t>(value));
                  }));
    }
    group.Add("status", "Status", StatusOf(answer.status));
    return group;
}

Record ManagementGroup(const HbaAnswer<HBA_MGMTINFO>& answer) {
    const auto number = [&](auto field) {
        return Of(answer, [&](const HBA_MGMTINFO& info) { return Value::Number(info.*field); });
    };
    Record group;
    group.Add("wwn", "Name", Of(answer, [](const HBA_MGMTINFO& info) { return NameOf(info.wwn); }));
    group.Add("unit_type", "Unit type", number(&HBA_MGMTINFO::unittype));
    group.Add("port_number", "Port number", number(&HBA_MGMTINFO::PortId));
    group.Add("attached_nodes", "Attached nodes", number(&HBA_MGMTINFO::NumberOfAttachedNodes));
    group.Add("ip_version", "IP version", number(&HBA_MGMTINFO::IPVersion));
    group.Add("ip_address", "IP address", Of(answer, [](const HBA_MGMTINFO& info) {
                  return Value::TextOrNull(HbaAddressText(info.IPVersion, info.IPAddress));
              }));
    group.Add("udp_port", "UDP port", number(&HBA_MGMTINFO::UDPPort));
    group.Add("topology_discovery_flags", "Discovery flags",
              number(&HBA_MGMTINFO::TopologyDiscoveryFlags));
    group.Add("status", "Status", StatusOf(answer.status));
    return group;
}

Record DiscoveredRow(const HBA_PORTATTRIBUTES& port) {
    HbaAnswer<HBA_PORTATTRIBUTES> answer;
    answer.status = HBA_STATUS_OK;
    answer.record = port;
    Record row;
    AddPort(row, answer);
    return row;
}

Record MappingRow(const HBA_FCPSCSIENTRY& entry) {
    Record row;
    row.Add("os_device", "Device", TextOf(entry.ScsiId.OSDeviceName), "DEVICE");
    row.Add("bus", "Bus", Value::Number(entry.ScsiId.ScsiBusNumber), "BUS");
    row.Add("target", "Target", Value::Number(entry.ScsiId.ScsiTargetNumber), "ID");
    row.Add("lun", "LUN", Value::Number(entry.ScsiId.ScsiOSLun), "LUN");
    row.Add("fc_id", "Port identifier", FcIdOf(entry.FcpId.FcId), "FC ID");
    row.Add("port_wwn", "Port name", NameOf(entry.FcpId.PortWWN), "PORT NAME");
    row.Add("node_wwn", "Node name", NameOf(entry.FcpId.NodeWWN));
    row.Add("fcp_lun", "FCP LUN", Value::Text(HbaFcpLunText(entry.FcpId.FcpLun)), "FCP LUN");
    return row;
}

}  // namespace

std::string HbaSerial(const HbaAdapter& adapter) {
    return adapter.attributes.Holds()
               ? tools::FieldText(adapter.attributes.record.SerialNumber,
                                  sizeof adapter.attributes.record.SerialNumber)
               : std::string();
}

Record HbaSummary(const HbaAdapter& adapter) {
    const auto& attributes = adapter.attributes;
    const auto& port = adapter.port;
    const auto text = [&](auto field) {
        return Of(attributes, [&](const Attributes& record) { return TextOf(record.*field); });
    };
    Record row;
    row.Add("index", "Adapter", Value::Number(adapter.index), "ADAPTER");
    row.Add("name", "Name", Value::TextOrNull(adapter.name), "NAME");
    row.Add("serial", "Serial number", SerialOf(adapter), "SERIAL");
    row.Add("model", "Model", text(&Attributes::Model), "MODEL");
    row.Add("port_wwn", "Port name",
            Of(port, [](const PortAttributes& record) { return NameOf(record.PortWWN); }),
            "PORT NAME");
    row.Add("fc_id", "Port identifier",
            Of(port, [](const PortAttributes& record) { return FcIdOf(record.PortFcId); }),
            "FC ID");
    row.Add("state", "State",
            Of(port,
               [](const PortAttributes& record) {
                   return Value::Text(HbaPortStateText(record.PortState));
               }),
            "STATE");
    row.Add("speed", "Speed",
            Of(port,
               [](const PortAttributes& record) {
                   return Value::TextOrNull(HbaSpeedsText(record.PortSpeed));
               }),
            "SPEED");
    row.Add("firmware_version", "Firmware", text(&Attributes::FirmwareVersion), "FIRMWARE");
    row.Add("driver_version", "Driver", text(&Attributes::DriverVersion), "DRIVER");
    row.Add("status", "Status", ConditionOf(adapter), "STATUS");
    return row;
}

Record HbaDetail(const HbaAdapter& adapter) {
    Record detail;
    detail.title = adapter.name.empty() ? "Adapter " + std::to_string(adapter.index) : adapter.name;
    detail.Add("index", "", Value::Number(adapter.index), "ADAPTER");
    detail.Add("name", "", Value::TextOrNull(adapter.name), "NAME");
    detail.Add("status", "Status", ConditionOf(adapter), "STATUS");
    detail.AddGroup("attributes", "Adapter attributes", AttributesGroup(adapter));
    Record port;
    AddPort(port, adapter.port);
    port.Add("status", "Status", StatusOf(adapter.port.status));
    detail.AddGroup("port", "Port attributes", std::move(port));
    detail.AddGroup("statistics", "Port statistics", StatisticsGroup(adapter.statistics));
    detail.AddGroup("management", "Management information", ManagementGroup(adapter.management));
    std::vector<Record> discovered;
    for (const HBA_PORTATTRIBUTES& remote : adapter.discovered) {
        discovered.push_back(DiscoveredRow(remote));
    }
    detail.Add("discovered_status", "Discovered ports", StatusOf(adapter.discoveredEnd));
    detail.AddList("discovered", "Discovered ports", tools::ListLayout::Table, DiscoveredRow({}),
                   "no discovered ports", std::move(discovered));
    std::vector<Record> mapping;
    for (const HBA_FCPSCSIENTRY& entry : adapter.mapping.record) {
        mapping.push_back(MappingRow(entry));
    }
    detail.Add("mapping_status", "Target mapping", StatusOf(adapter.mapping.status));
    detail.AddList("mapping", "Target mapping", tools::ListLayout::Table, MappingRow({}),
                   "no devices", std::move(mapping));
    return detail;
}

}  // namespace vxmgr
