#include "vxmgr/targets/map_rows.h"

#include <algorithm>

#include "vxmgr/app/bytes.h"
#include "vxmgr/app/getters.h"

namespace vxmgr {
namespace {

constexpr std::string_view kDevicePrefix = "\\\\.\\";
constexpr std::string_view kDiskPrefix = "PhysicalDrive";

std::optional<Wwn> NameIn(const Wwn& name) {
    return name.IsZero() ? std::nullopt : std::optional(name);
}

// The unit of a target that told its name.
const MappedUnit* TargetOf(const MappedPlace& place) {
    return place.unit != nullptr && !place.unit->portName.IsZero() ? place.unit : nullptr;
}

const HX_OS_DEVICE* DeviceOf(const MappedPlace& place) {
    return place.unit != nullptr && place.unit->device ? &*place.unit->device : nullptr;
}

const HX_OS_DEVICE* DiskOf(const MappedPlace& place) {
    const HX_OS_DEVICE* const device = DeviceOf(place);
    return device != nullptr && device->type == HX_OS_DEVICE_DISK ? device : nullptr;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return EqualIgnoringCase(text.substr(0, prefix.size()), prefix);
}

}  // namespace

MappedUnit UnitOf(const HX_OS_DEVICE& device) {
    MappedUnit unit;
    if (device.discovered != 0) {
        unit.portName = Wwn::Of(device.portName);
        unit.nodeName = Wwn::Of(device.nodeName);
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
    const auto number = ParseNumber(text);
    return number && *number <= UINT32_MAX ? std::optional(static_cast<uint32_t>(*number))
                                           : std::nullopt;
}

const char* DeviceTypeText(uint32_t type) {
    return type != 0 && type <= std::size(kDeviceTypes) ? kDeviceTypes[type - 1] : nullptr;
}

const Fields<MappedPlace> kPlaceFields = {
    {"target_wwn", "Target", "TARGET", kWwn.OrNull(), Of(TargetOf, &MappedUnit::portName)},
    {"node_wwn", "Node name", kWwn.OrNull(),
     Of(&MappedPlace::unit, [](const MappedUnit& unit) { return NameIn(unit.nodeName); })},
    {"port_id", "Port identifier", Hexadecimal(6).OrNull(), Of(TargetOf, &MappedUnit::portId)},
    {"bus", "Bus", "BUS", kInteger.OrNull(), Of(&MappedPlace::unit, &MappedUnit::bus)},
    {"target", "Target", "ID", kInteger.OrNull(), Of(&MappedPlace::unit, &MappedUnit::target)},
    {"lun", "LUN", "LUN", kInteger.OrNull(), Of(&MappedPlace::unit, &MappedUnit::lun)},
    {"device", "Device", "DEVICE", kText.OrNull(), Of(DeviceOf, TextOf<&HX_OS_DEVICE::name>),
     "as it is opened; null: the operating system has none"},
    {"device_type", "Type", "TYPE", Choice(kDeviceTypes).OrNull(),
     Of(DeviceOf, [](const HX_OS_DEVICE& device) { return DeviceTypeText(device.type); })},
    {"disk", "Disk", kInteger.OrNull(), Of(DiskOf, Packed<&HX_OS_DEVICE::number>),
     "number of a disk"},
    {"volume", "Volume", kText.OrNull(), Of(&MappedPlace::volume, TextOf<&HX_VOLUME::name>),
     "the volume's own name; null: no volume is on the device"},
    {"mounted_at", "Mounted at", "MOUNTED AT", kText.OrNull(),
     Of(&MappedPlace::volume, TextOf<&HX_VOLUME::path>), "the first place"},
    {"bytes_on_disk", "Bytes on the disk", "BYTES", kInteger.OrNull(),
     Of(&MappedPlace::volume, Packed<&HX_VOLUME::bytesOnDisk>)},
    {"extents", "Extents", kInteger.OrNull(), Of(&MappedPlace::volume, Packed<&HX_VOLUME::extents>),
     "stretches of disk that the volume consists of"},
    {"extents_on_disk", "Extents on the disk", kInteger.OrNull(),
     Of(&MappedPlace::volume, Packed<&HX_VOLUME::extentsOnDisk>)},
};

std::vector<MappedPlace> PlacesOf(const MappedUnit& unit) {
    std::vector<MappedPlace> places;
    for (const HX_VOLUME& volume : unit.volumes) {
        places.push_back({&unit, &volume});
    }
    return places.empty() ? std::vector<MappedPlace>{{&unit}} : places;
}

std::string VolumesText(std::vector<MappedUnit> units) {
    constexpr size_t kMostShown = 8;
    std::erase_if(units, [](const MappedUnit& unit) { return !unit.device; });
    std::stable_partition(units.begin(), units.end(),
                          [](const MappedUnit& unit) { return !unit.volumes.empty(); });
    std::string text;
    for (size_t i = 0; i < units.size() && i < kMostShown; ++i) {
        std::string name = FieldText(units[i].device->name, sizeof units[i].device->name);
        if (StartsWith(name, kDevicePrefix)) {
            name.erase(0, kDevicePrefix.size());
        }
        std::string places;
        for (const HX_VOLUME& volume : units[i].volumes) {
            const std::string path = FieldText(volume.path, sizeof volume.path);
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
