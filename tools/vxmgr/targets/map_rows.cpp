#include "vxmgr/targets/map_rows.h"

#include <algorithm>

#include "common/text.h"
#include "vxmgr/app/port_id.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Value;

constexpr std::string_view kDevicePrefix = "\\\\.\\";
constexpr std::string_view kDiskPrefix = "PhysicalDrive";

Value NameValue(const tools::Wwn& name) {
    return name.IsZero() ? Value() : Value::Name(name);
}

Value TextValue(const char* field, size_t size) {
    return Value::TextOrNull(tools::FieldText(field, size));
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return tools::EqualIgnoringCase(text.substr(0, prefix.size()), prefix);
}

}  // namespace

MappedUnit UnitOf(const HX_OS_DEVICE& device) {
    MappedUnit unit;
    if (device.discovered != 0) {
        unit.portName = tools::Wwn::Of(device.portName);
        unit.nodeName = tools::Wwn::Of(device.nodeName);
        unit.portId = PortIdOf(device.portId);
    }
    unit.bus = device.bus;
    unit.target = device.target;
    unit.lun = device.lun;
    unit.device = device;
    return unit;
}

std::optional<uint32_t> ParseDisk(std::string_view text) {
    if (StartsWith(text, kDevicePrefix)) {
        text.remove_prefix(kDevicePrefix.size());
        if (!StartsWith(text, kDiskPrefix)) {
            return std::nullopt;
        }
    }
    if (StartsWith(text, kDiskPrefix)) {
        text.remove_prefix(kDiskPrefix.size());
    }
    // Decimal digits alone: a device name has no other numbers.
    if (text.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    const auto number = tools::ParseNumber(text);
    return number && *number <= UINT32_MAX ? std::optional(static_cast<uint32_t>(*number))
                                           : std::nullopt;
}

const char* DeviceTypeText(uint32_t type) {
    constexpr const char* kTypes[] = {nullptr, "disk", "tape", "changer"};
    return type < std::size(kTypes) ? kTypes[type] : nullptr;
}

Record MapRow(const MapPort& port, const MappedUnit* unit, const HX_VOLUME* volume) {
    static const MappedUnit kNone;
    const MappedUnit& at = unit != nullptr ? *unit : kNone;
    const auto known = [&](Value value) { return unit != nullptr ? value : Value(); };
    const HX_OS_DEVICE device = at.device.value_or(HX_OS_DEVICE{});
    const char* type = DeviceTypeText(device.type);
    Record row;
    row.Add("port", "Port", Value::Number(port.index), "PORT");
    row.Add("scsi_port", "SCSI port", port.scsiPort ? Value::Number(*port.scsiPort) : Value(),
            "SCSI");
    row.Add("serial", "Adapter", Value::Serial(port.serial));
    row.Add("target_wwn", "Target", NameValue(at.portName), "TARGET");
    row.Add("node_wwn", "Node name", NameValue(at.nodeName));
    row.Add("port_id", "Port identifier",
            at.portName.IsZero() ? Value() : Value::Text(tools::Hex(at.portId, 6)));
    row.Add("bus", "Bus", known(Value::Number(at.bus)), "BUS");
    row.Add("target", "Target", known(Value::Number(at.target)), "ID");
    row.Add("lun", "LUN", known(Value::Number(at.lun)), "LUN");
    row.Add("device", "Device", TextValue(device.name, sizeof device.name), "DEVICE");
    row.Add("device_type", "Type", type != nullptr ? Value::Text(type) : Value(), "TYPE");
    row.Add("disk", "Disk", at.IsDisk(device.number) ? Value::Number(device.number) : Value());
    row.Add("volume", "Volume",
            volume != nullptr ? TextValue(volume->name, sizeof volume->name) : Value());
    row.Add("mounted_at", "Mounted at",
            volume != nullptr ? TextValue(volume->path, sizeof volume->path) : Value(),
            "MOUNTED AT");
    row.Add("bytes_on_disk", "Bytes on the disk",
            volume != nullptr ? Value::Number(volume->bytesOnDisk) : Value(), "BYTES");
    row.Add("extents", "Extents", volume != nullptr ? Value::Number(volume->extents) : Value());
    row.Add("extents_on_disk", "Extents on the disk",
            volume != nullptr ? Value::Number(volume->extentsOnDisk) : Value());
    row.Add("status", "Status", port.status);
    return row;
}

std::vector<Record> MapRows(const MapPort& port, const MappedUnit& unit) {
    std::vector<Record> rows;
    for (const HX_VOLUME& volume : unit.volumes) {
        rows.push_back(MapRow(port, &unit, &volume));
    }
    if (rows.empty()) {
        rows.push_back(MapRow(port, &unit, nullptr));
    }
    return rows;
}

std::string VolumesText(std::vector<MappedUnit> units) {
    constexpr size_t kMostShown = 8;
    std::erase_if(units, [](const MappedUnit& unit) { return !unit.device; });
    std::stable_partition(units.begin(), units.end(),
                          [](const MappedUnit& unit) { return !unit.volumes.empty(); });
    std::string text;
    for (size_t i = 0; i < units.size() && i < kMostShown; ++i) {
        std::string name = tools::FieldText(units[i].device->name, sizeof units[i].device->name);
        if (StartsWith(name, kDevicePrefix)) {
            name.erase(0, kDevicePrefix.size());
        }
        std::string places;
        for (const HX_VOLUME& volume : units[i].volumes) {
            const std::string path = tools::FieldText(volume.path, sizeof volume.path);
            places += (places.empty() ? "" : ", ") +
                      (path.empty() ? std::string("a volume that is mounted nowhere") : path);
        }
        text += (text.empty() ? "" : ", ") + name + (places.empty() ? "" : " (" + places + ")");
    }
    if (units.size() > kMostShown) {
        text += " and " + std::to_string(units.size() - kMostShown) + " more";
    }
    return text;
}

}  // namespace vxmgr
