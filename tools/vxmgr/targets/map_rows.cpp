#include "vxmgr/targets/map_rows.h"

#include <algorithm>

#include "common/text.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_id.h"

namespace vxmgr {
namespace {

using tools::kInteger;
using tools::kText;

constexpr std::string_view kDevicePrefix = "\\\\.\\";
constexpr std::string_view kDiskPrefix = "PhysicalDrive";

std::optional<tools::Wwn> NameIn(const tools::Wwn& name) {
    return name.IsZero() ? std::nullopt : std::optional(name);
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
    return type != 0 && type <= std::size(kDeviceTypes) ? kDeviceTypes[type - 1] : nullptr;
}

const tools::Fields<MappedPlace>& PlaceFields() {
    using Place = MappedPlace;
    static const auto kHasDevice = [](const Place& at) { return at.unit && at.unit->device; };
    static const tools::Fields<Place> kFields = {
        {"target_wwn", "Target", "TARGET", tools::kWwn.OrNull(),
         When(&Place::unit, [](const Place& at) { return NameIn(at.unit->portName); })},
        {"node_wwn", "Node name", tools::kWwn.OrNull(),
         When(&Place::unit, [](const Place& at) { return NameIn(at.unit->nodeName); })},
        {"port_id", "Port identifier", tools::Hexadecimal(6).OrNull(),
         When([](const Place& at) { return at.unit && !at.unit->portName.IsZero(); },
              [](const Place& at) { return at.unit->portId; })},
        {"bus", "Bus", "BUS", kInteger.OrNull(),
         When(&Place::unit, [](const Place& at) { return at.unit->bus; })},
        {"target", "Target", "ID", kInteger.OrNull(),
         When(&Place::unit, [](const Place& at) { return at.unit->target; })},
        {"lun", "LUN", "LUN", kInteger.OrNull(),
         When(&Place::unit, [](const Place& at) { return at.unit->lun; })},
        {"device", "Device", "DEVICE", kText.OrNull(),
         When(kHasDevice,
              [](const Place& at) { return TextIn(at.unit->device, &HX_OS_DEVICE::name); }),
         "as it is opened; null: the operating system has none"},
        {"device_type", "Type", "TYPE", tools::Choice(kDeviceTypes).OrNull(),
         When(kHasDevice, [](const Place& at) { return DeviceTypeText(at.unit->device->type); })},
        {"disk", "Disk", kInteger.OrNull(),
         When(
             [](const Place& at) {
                 return kHasDevice(at) && at.unit->IsDisk(at.unit->device->number);
             },
             [](const Place& at) { return at.unit->device->number; }),
         "number of a disk"},
        {"volume", "Volume", kText.OrNull(),
         When(&Place::volume,
              [](const Place& at) {
                  return tools::FieldText(at.volume->name, sizeof at.volume->name);
              }),
         "the volume's own name; null: no volume is on the device"},
        {"mounted_at", "Mounted at", "MOUNTED AT", kText.OrNull(),
         When(&Place::volume,
              [](const Place& at) {
                  return tools::FieldText(at.volume->path, sizeof at.volume->path);
              }),
         "the first place"},
        {"bytes_on_disk", "Bytes on the disk", "BYTES", kInteger.OrNull(),
         When(&Place::volume, [](const Place& at) { return at.volume->bytesOnDisk; })},
        {"extents", "Extents", kInteger.OrNull(),
         When(&Place::volume, [](const Place& at) { return at.volume->extents; }),
         "stretches of disk that the volume consists of"},
        {"extents_on_disk", "Extents on the disk", kInteger.OrNull(),
         When(&Place::volume, [](const Place& at) { return at.volume->extentsOnDisk; })},
    };
    return kFields;
}

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
