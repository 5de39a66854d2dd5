#include "vxmgr/app/values.h"
#include "vxmgr/ports/records.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Value;

// A number of the port record; null when the record, or the part of it, was not given.
Value Counter(bool given, uint64_t number, std::string_view unit = {}) {
    return given ? Value::Number(number, unit) : Value();
}

Value Switch(bool given, uint8_t state) {
    return given ? Value::Flag(state != 0) : Value();
}

template <typename Optional>
Value FlagOrNull(const Optional& flag) {
    return flag ? Value::Flag(*flag) : Value();
}

const HX_PORT_PROPERTY& PropertiesOf(const Port& port) {
    static constexpr HX_PORT_PROPERTY kNone{};
    return port.port ? *port.port : kNone;
}

Value PortName(const Port& port) {
    return port.port ? Value::Name(tools::Wwn::Of(port.port->portName)) : Value();
}

Value NodeName(const Port& port) {
    return port.node ? Value::Name(tools::Wwn::Of(port.node->nodeName)) : Value();
}

Value ScsiPort(const Port& port) {
    return port.scsiPort ? Value::Number(*port.scsiPort) : Value();
}

Value Model(const Port& port) {
    return port.node ? FieldValue(port.node->model, sizeof port.node->model) : Value();
}

Value FirmwareVersion(const Port& port) {
    if (port.firmware) {
        return FieldValue(port.firmware->version, sizeof port.firmware->version);
    }
    return port.node ? FieldValue(port.node->firmwareVersion, sizeof port.node->firmwareVersion)
                     : Value();
}

Record IdentityGroup(const Port& port) {
    Record group;
    group.Add("port_wwn", "Port name", PortName(port), "PORT NAME");
    group.Add("node_wwn", "Node name", NodeName(port));
    group.Add("serial", "Adapter serial", Value::Serial(port.Serial()), "ADAPTER");
    group.Add("model", "Model", Model(port), "MODEL");
    const bool hasNode = port.node.has_value();
    group.Add("model_description", "Description",
              hasNode ? FieldValue(port.node->modelDescription, sizeof port.node->modelDescription)
                      : Value());
    return group;
}

Record LinkGroup(const Port& port) {
    const HX_PORT_PROPERTY& properties = PropertiesOf(port);
    Record group;
    group.Add("state", "State", StateValue(port), "STATE");
    group.Add("disabled", "Port disabled", FlagOrNull(port.disabled));
    group.Add("speed_gbit", "Speed", SpeedValue(properties.currentSpeed), "SPEED");
    group.Add("max_speed_gbit", "Highest speed", SpeedValue(properties.supportedSpeeds));
    group.Add("topology", "Topology", TopologyValue(port));
    group.Add("port_id", "Port ID", PortIdValue(port), "PORT ID");
    group.Add("role", "Role", RoleValue(port));
    return group;
}

Record FibreChannelGroup(const Port& port) {
    const HX_PORT_PROPERTY& properties = PropertiesOf(port);
    const bool any = port.port.has_value();
    const bool current = any && port.IsCurrentGeneration();
    const bool second = port.hasSecondVersion;
    Record group;
    group.Add("discovered_devices", "Discovered devices",
              Counter(any, properties.discoveredDevices));
    group.Add("discovered_targets", "Discovered targets",
              Counter(any, properties.discoveredTargets));
    group.Add("max_frame_size", "Largest frame",
              Counter(current, properties.maxFrameSize, "bytes"));
    group.Add("bb_credits", "Buffer credits", Counter(current, properties.bbCredits));
    group.Add("npiv_in_use", "NPIV ports in use", Counter(current, properties.npivInUse));
    group.Add("npiv_maximum", "NPIV ports at most", Counter(current, properties.npivMaximum));
    group.Add("fcp", "FCP", Switch(second, properties.fcpEnabled));
    group.Add("nvme", "NVMe", Switch(second, properties.nvmeEnabled));
    group.Add("fec", "Forward error correction", Switch(second, properties.fecActive));
    group.Add("trunk_state", "Trunk state", Counter(second, properties.trunkState));
    group.Add("diagnostic_state", "Diagnostic state", Counter(second, properties.diagnosticState));
    group.Add("smartsan", "SmartSAN", SmartSanValue(port));
    return group;
}

Record LimitsGroup(const Port& port) {
    const HX_PORT_PROPERTY& properties = PropertiesOf(port);
    const bool second = port.hasSecondVersion;
    Record group;
    group.Add("max_targets", "Targets at most", Counter(second, properties.maxTargets));
    group.Add("max_luns_per_target", "LUNs per target",
              Counter(second, properties.maxLunsPerTarget));
    group.Add("execution_throttle", "Execution throttle",
              Counter(second, properties.executionThrottle));
    group.Add("login_timeout_s", "Login time-out", Counter(second, properties.loginTimeout, "s"));
    group.Add("link_down_timeout_s", "Link-down time-out",
              Counter(second, properties.linkDownTimeout, "s"));
    group.Add("port_down_retry_s", "Port-down retry",
              Counter(second, properties.portDownRetry, "s"));
    return group;
}

Record VersionsGroup(const Port& port) {
    Record group;
    group.Add("firmware", "Firmware", FirmwareVersion(port), "FIRMWARE");
    group.Add("driver", "Driver",
              port.node ? FieldValue(port.node->driverVersion, sizeof port.node->driverVersion)
                        : Value());
    group.Add("driver_service", "Driver service", Value::TextOrNull(port.driverService));
    // Four characters and a terminator are the version; what follows has no meaning.
    group.Add("option_rom", "Option ROM",
              port.node ? FieldValue(port.node->optionRomVersion, 4) : Value());
    return group;
}

Record PciGroup(const Port& port) {
    const HX_CHIP_PROPERTY chip = port.chip.value_or(HX_CHIP_PROPERTY{});
    const auto hex = [&](uint32_t number) { return port.chip ? HexValue(number, 4) : Value(); };
    // Older drivers say nothing about the slot.
    const bool slot = port.chip && port.IsCurrentGeneration();
    const PcieLink link = LinkOf(chip.linkStatus);
    const PcieLink most = LinkOf(chip.linkCapabilities);
    const auto part = [&](uint32_t number) {
        return slot && number != 0 ? Value::Number(number) : Value();
    };
    Record group;
    group.Add("location", "Location", slot ? PciLocationValue(chip) : Value(), "PCI");
    group.Add("function", "", slot ? Value::Number(chip.functionBits >> 5) : Value());
    group.Add("vendor_id", "Vendor ID", hex(chip.vendorId));
    group.Add("device_id", "Device ID", hex(chip.deviceId));
    group.Add("subsystem_vendor_id", "Subsystem vendor ID", hex(chip.subsystemVendorId));
    group.Add("subsystem_device_id", "Subsystem device ID", hex(chip.subsystemDeviceId));
    group.Add("revision", "Revision", hex(chip.revision));
    group.Add("link", "Link", slot ? LinkText(link) : Value(), "PCI LINK");
    group.Add("link_maximum", "Link at most", slot ? LinkText(most) : Value());
    group.Add("link_generation", "", part(link.generation));
    group.Add("link_width", "", part(link.width));
    group.Add("link_maximum_generation", "", part(most.generation));
    group.Add("link_maximum_width", "", part(most.width));
    return group;
}

Value OsDevice(const Port& port) {
    return port.scsiPort ? Value::Text("\\\\.\\Scsi" + std::to_string(*port.scsiPort) + ":")
                         : Value();
}

}  // namespace

Record PortSummary(const Port& port, bool withAdapter) {
    const HX_PORT_PROPERTY& properties = PropertiesOf(port);
    Record row;
    row.Add("index", "Port", Value::Number(port.index), "PORT");
    row.Add("scsi_port", "SCSI port", ScsiPort(port), "SCSI");
    row.Add("serial", "Adapter serial", Value::Serial(port.Serial()), withAdapter ? "ADAPTER" : "");
    row.Add("model", "Model", Model(port), withAdapter ? "MODEL" : "");
    row.Add("port_wwn", "Port name", PortName(port), "PORT NAME");
    row.Add("node_wwn", "Node name", NodeName(port));
    row.Add("port_id", "Port ID", PortIdValue(port), "PORT ID");
    row.Add("state", "State", StateValue(port), "STATE");
    row.Add("answers", "", Value::Flag(port.answers));
    row.Add("speed_gbit", "Speed", SpeedValue(properties.currentSpeed), "SPEED");
    row.Add("topology", "Topology", TopologyValue(port), "TOPOLOGY");
    row.Add("discovered_targets", "Targets",
            Counter(port.port.has_value(), properties.discoveredTargets), "TARGETS");
    row.Add("firmware", "Firmware", FirmwareVersion(port), "FIRMWARE");
    row.Add("status", "Status", StatusValue(port.failure));
    return row;
}

Record PortDetail(const Port& port) {
    Record detail;
    detail.title = "Port " + std::to_string(port.index);
    detail.Add("index", "", Value::Number(port.index), "PORT");
    detail.Add("scsi_port", "SCSI port", ScsiPort(port), "SCSI");
    detail.Add("os_device", "System device", OsDevice(port));
    detail.Add("answers", "", Value::Flag(port.answers));
    detail.Add("status", port.failure == HXMGT_SUCCESS ? "" : "Status", StatusValue(port.failure),
               "STATUS");
    detail.AddGroup("identity", "Identity", IdentityGroup(port));
    detail.AddGroup("link", "Link", LinkGroup(port));
    detail.AddGroup("fibre_channel", "Fibre Channel", FibreChannelGroup(port));
    detail.AddGroup("limits", "Limits", LimitsGroup(port));
    detail.AddGroup("versions", "Versions", VersionsGroup(port));
    detail.AddGroup("pci", "PCI", PciGroup(port));
    return detail;
}

}  // namespace vxmgr
