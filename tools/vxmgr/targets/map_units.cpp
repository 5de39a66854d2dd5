#include "vxmgr/targets/map_units.h"

#include <algorithm>
#include <iterator>

#include "vxmgr/app/answer_memory.h"

namespace vxmgr {
namespace {

// Room that is mostly enough: a second turn asks the system for everything again.
constexpr uint32_t kDevicesAtFirst = 2048;
constexpr uint32_t kVolumesAtFirst = 256;
constexpr uint32_t kExtentsAtFirst = 16;
constexpr int kMostTurns = 4;  // of a list that is longer whenever it is asked for

// Calls read(records, &count) with more room until everything fits.
template <typename Row, typename Read>
HX_STATUS ReadList(std::vector<Row>* rows, uint32_t roomAtFirst, Read read) {
    uint32_t count = roomAtFirst;
    HX_STATUS status = HXMGT_BUFFER_TOO_SMALL;
    for (int turn = 0; turn < kMostTurns && status == HXMGT_BUFFER_TOO_SMALL; ++turn) {
        rows->assign(count, Row{});
        status = read(rows->data(), &count);
    }
    rows->resize(status == HXMGT_SUCCESS ? std::min<size_t>(count, rows->size()) : 0);
    return status;
}

bool IsDiskBehind(const HX_OS_DEVICE& device, uint32_t scsiPort, uint32_t number) {
    return device.scsiPort == scsiPort && device.type == HX_OS_DEVICE_DISK &&
           device.number == number;
}

}  // namespace

HX_STATUS SystemDevices::Read() {
    HX_STATUS status = ReadList(&devices_, kDevicesAtFirst, HXListOsDevices);
    if (status == HXMGT_SUCCESS) {
        status = ReadList(&volumes_, kVolumesAtFirst, HXListDiskVolumes);
    }
    return status;
}

const HX_OS_DEVICE* SystemDevices::At(uint32_t scsiPort, uint32_t bus, uint32_t target,
                                      uint32_t lun) const {
    const auto found =
        std::find_if(devices_.begin(), devices_.end(), [&](const HX_OS_DEVICE& device) {
            return device.scsiPort == scsiPort && device.bus == bus && device.target == target &&
                   device.lun == lun;
        });
    return found != devices_.end() ? &*found : nullptr;
}

std::vector<HX_VOLUME> SystemDevices::VolumesOn(const HX_OS_DEVICE& device) const {
    std::vector<HX_VOLUME> volumes;
    for (const HX_DISK_VOLUME& volume : volumes_) {
        if (device.type == HX_OS_DEVICE_DISK && volume.disk == device.number) {
            volumes.push_back(volume.volume);
        }
    }
    return volumes;
}

std::vector<MappedUnit> SystemDevices::UnitsBehind(uint32_t scsiPort) const {
    std::vector<MappedUnit> units;
    for (const HX_OS_DEVICE& device : devices_) {
        if (device.scsiPort == scsiPort) {
            MappedUnit& unit = units.emplace_back();
            unit.device = device;
            unit.volumes = VolumesOn(device);
        }
    }
    return units;
}

std::vector<HX_OS_DEVICE> SystemDevices::DisksBehind(uint32_t scsiPort, uint32_t number) const {
    std::vector<HX_OS_DEVICE> disks;
    std::copy_if(
        devices_.begin(), devices_.end(), std::back_inserter(disks),
        [&](const HX_OS_DEVICE& device) { return IsDiskBehind(device, scsiPort, number); });
    return disks;
}

void SystemDevices::Complete(uint32_t scsiPort, MappedUnit* unit) const {
    if (const HX_OS_DEVICE* const device = At(scsiPort, unit->bus, unit->target, unit->lun)) {
        unit->device = *device;
        unit->volumes = VolumesOn(*device);
    }
}

HX_STATUS ReadSystemDevices(SharedDevices* devices) {
    struct Answer {
        HX_STATUS status = HXMGT_SUCCESS;
        SharedDevices devices;
    };
    static AnswerMemory<int, Answer> memory;
    const Answer answer = memory.Get(0, [] {
        const auto read = std::make_shared<SystemDevices>();
        const HX_STATUS status = read->Read();
        return Answer{status, read};
    });
    *devices = answer.devices;
    return answer.status;
}

HX_STATUS ReadDisksOfVolume(const std::string& volume, std::vector<uint32_t>* disks) {
    std::vector<HX_DISK_EXTENT> extents;
    const HX_STATUS status =
        ReadList(&extents, kExtentsAtFirst, [&](HX_DISK_EXTENT* records, uint32_t* count) {
            return HXGetDiskExtents(volume.c_str(), records, count);
        });
    for (const HX_DISK_EXTENT& extent : extents) {
        if (std::find(disks->begin(), disks->end(), extent.disk) == disks->end()) {
            disks->push_back(extent.disk);
        }
    }
    return status;
}

}  // namespace vxmgr
