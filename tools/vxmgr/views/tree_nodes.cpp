#include "vxmgr/views/tree_nodes.h"

#include "vxmgr/app/bytes.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/targets/mount_points.h"

namespace vxmgr {
namespace {

Value FailureValue(HX_STATUS status) {
    return status == HXMGT_SUCCESS
               ? Value()
               : Value::Text(StatusText(status)).Shown(StatusMessage(status)).In(Tone::Bad);
}

Value MountPointsValue(const HX_VOLUME& volume) {
    const std::vector<std::string> places = MountPointsOf(volume);
    return Value::Texts(places).Shown(places.empty() ? "mounted nowhere"
                                                     : TextsJoined(places, ", "));
}

const Fields<HX_VOLUME> kVolumeNode = {
    {"mount_points", "Mounted at", "MOUNTED AT", {.array = true}, MountPointsValue},
    {"volume", "Volume", "VOLUME", kText, TextOf<&HX_VOLUME::name>, "the volume's own name"},
    {"bytes_on_disk", "Bytes on the disk", kInteger,
     [](const HX_VOLUME& volume) { return SizeValue(Packed<&HX_VOLUME::bytesOnDisk>(volume)); }},
};

// People know it without the prefix.
Value DeviceValue(const MappedUnit& unit) {
    constexpr std::string_view kPrefix = "\\\\.\\";
    if (!unit.device) {
        return {};
    }
    const std::string name = TextOf<&HX_OS_DEVICE::name>(*unit.device);
    return Value::Text(name).Shown(name.starts_with(kPrefix) ? name.substr(kPrefix.size()) : name);
}

std::optional<uint32_t> DiskNumber(const MappedUnit& unit) {
    return unit.device && unit.device->type == HX_OS_DEVICE_DISK
               ? std::optional(Packed<&HX_OS_DEVICE::number>(*unit.device))
               : std::nullopt;
}

const Fields<MappedUnit> kUnitNode = {
    {"lun", "LUN", "LUN", kInteger, &MappedUnit::lun},
    {"device", "Device", "DEVICE", kText.OrNull(), DeviceValue,
     "as it is opened; null: the operating system has none"},
    {"device_type", "", Choice(kDeviceTypes).OrNull(),
     Of(&MappedUnit::device,
        [](const HX_OS_DEVICE& device) { return DeviceTypeText(device.type); })},
    {"disk", "", kInteger.OrNull(), DiskNumber, "number of a disk"},
    {"volumes", "Volumes", kVolumeNode, &MappedUnit::volumes, ListLayout::Tree},
};

template <auto member>
constexpr auto kOfRecord =
    [](const TreeTarget& target) { return Packed<member>(target.known.record); };

std::optional<Wwn> NodeOf(const TreeTarget& target) {
    const Wwn name = target.known.NodeName();
    return name.IsZero() ? std::nullopt : std::optional(name);
}

const Fields<TreeTarget> kTargetNode = {
    {"target_wwn", "Port name", "TARGET", kWwn,
     [](const TreeTarget& target) { return target.known.PortName(); }},
    {"present", "Reached now", "REACHED", kFlag,
     [](const TreeTarget& target) {
         const bool present = target.known.present;
         return Value::Flag(present)
             .Shown(present ? "reached" : "away")
             .In(present ? Tone::Good : Tone::Bad);
     },
     "the driver reaches it now"},
    {"symbolic_name", "Name", "NAME", kText.OrNull(),
     [](const TreeTarget& target) {
         return TextOf<&HX_DEVICE_RECORD::symbolicName>(target.known.record);
     }},
    {"node_wwn", "", kWwn.OrNull(), NodeOf},
    {"port_id", "", Hexadecimal(6),
     [](const TreeTarget& target) { return PortIdOf(target.known.record.portId); }},
    {"bus", "", kInteger, kOfRecord<&HX_DEVICE_RECORD::bus>},
    {"target", "", kInteger, kOfRecord<&HX_DEVICE_RECORD::target>, "target ID"},
    {"status", "Status", kText.OrNull(),
     [](const TreeTarget& target) { return FailureValue(target.status); },
     "null, or the status with which it did not report its LUNs"},
    {"luns", "LUNs", kUnitNode, &TreeTarget::units, ListLayout::Tree},
};

const Fields<Port> kPortNode = {
    {"port", "Port", "PORT", kInteger, &Port::index},
    {"state", "State", "STATE", Choice(kPortStates).OrNull(), StateValue},
    {"speed_gbit", "Speed", kInteger.OrNull(),
     Of(&Port::port,
        [](const HX_PORT_PROPERTY& properties) { return SpeedValue(properties.currentSpeed); })},
    {"scsi_port", "SCSI port", "SCSI", kInteger.OrNull(),
     [](const Port& port) {
         return port.scsiPort
                    ? Value::Number(*port.scsiPort).Shown("scsi:" + std::to_string(*port.scsiPort))
                    : Value();
     }},
    {"port_wwn", "Port name", kWwn.OrNull(), PortNameOf},
    {"adapter_serial", "", kSerial.OrNull(), &Port::Serial},
    {"answers", "", kFlag, &Port::answers, "false: the port did not answer"},
    {"status", "Status", "STATUS", kText.OrNull(),
     [](const Port& port) { return FailureValue(port.failure); }, kPortStatusAbout},
};

const Fields<TreePort> kTreePortNode = {
    {kPortNode, &TreePort::port},
    {"targets", "Targets", kTargetNode, &TreePort::targets, ListLayout::Tree},
};

Value SerialValue(const TreeAdapter& adapter) {
    const std::string serial = adapter.speaker->Serial();
    return serial.empty() ? Value().Shown("adapter without a serial number")
                          : Value::Serial(serial);
}

const Fields<TreeAdapter> kAdapterNode = {
    {"adapter_serial", "Serial number", "ADAPTER", kSerial.OrNull(), SerialValue},
    {"model", "Model", kText.OrNull(),
     [](const TreeAdapter& adapter) {
         return adapter.speaker->node ? TextOf<&HX_NODE_PROPERTY::model>(*adapter.speaker->node)
                                      : std::string();
     }},
    {"ports", "Ports", kTreePortNode, &TreeAdapter::ports, ListLayout::Tree},
};

}  // namespace

const Fields<std::vector<TreeAdapter>> kTreeFields =
    ListOf("adapters", "Adapters", kAdapterNode, ListLayout::Tree, "no adapters",
           "tables and CSV have a row for each end of a branch: a volume, or a logical unit, a "
           "target or a port that has nothing below it");

}  // namespace vxmgr
