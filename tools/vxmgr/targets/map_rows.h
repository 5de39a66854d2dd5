// Logical units, the operating system's devices of them and the volumes on those, as rows.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

struct MappedUnit {
    Wwn portName;  // of the target; zero: not told
    Wwn nodeName;
    uint32_t portId = 0;
    uint16_t bus = 0;
    uint16_t target = 0;
    uint16_t lun = 0;
    std::optional<HX_OS_DEVICE> device;  // empty: the operating system has none
    std::vector<HX_VOLUME> volumes;

    bool IsDisk(uint32_t number) const {
        return device && device->type == HX_OS_DEVICE_DISK && device->number == number;
    }
};

MappedUnit UnitOf(const HX_OS_DEVICE& device);

// "5", "PhysicalDrive5" or "\\\\.\\PhysicalDrive5", in any letter case.
std::optional<uint32_t> ParseDisk(std::string_view text);

inline constexpr const char* kDeviceTypes[] = {"disk", "tape", "changer"};
const char* DeviceTypeText(uint32_t type);  // null for a type that is none

// A unit, and a volume that is on it. Without a unit: a port that failed.
struct MappedPlace {
    const MappedUnit* unit = nullptr;
    const HX_VOLUME* volume = nullptr;
};
extern const Fields<MappedPlace> kPlaceFields;

// A place per volume, one for a unit without volumes.
std::vector<MappedPlace> PlacesOf(const MappedUnit& unit);

// The disks and tapes among the units, with the places where their volumes are mounted, those
// first; empty when there is none.
std::string VolumesText(std::vector<MappedUnit> units);

}  // namespace vxmgr
