#include "vxmgr/targets/map_units.h"

#include <algorithm>
#include <cstring>

namespace vxmgr {
namespace {

constexpr uint32_t kFirstRoom = 8;
constexpr int kMostTurns = 4;  // of a list that is longer whenever it is asked for

// Calls read(records, &count) with more room until everything fits.
template <typename Row, typename Read>
HX_STATUS ReadList(std::vector<Row>* rows, Read read) {
    uint32_t count = kFirstRoom;
    HX_STATUS status = HXMGT_BUFFER_TOO_SMALL;
    for (int turn = 0; turn < kMostTurns && status == HXMGT_BUFFER_TOO_SMALL; ++turn) {
        rows->assign(count, Row{});
        status = read(rows->data(), &count);
    }
    rows->resize(status == HXMGT_SUCCESS ? std::min<size_t>(count, rows->size()) : 0);
    return status;
}

HX_SCSI_ADDRESS AddressOf(const HX_OS_DEVICE& device) {
    HX_SCSI_ADDRESS address{};
    address.type = HX_ADDRESS_BUS_TARGET;
    const uint16_t numbers[] = {device.bus, device.target};
    std::memcpy(address.address, numbers, sizeof numbers);
    address.lun = device.lun;
    return address;
}

}  // namespace

HX_STATUS ReadDevice(uint32_t handle, const HX_SCSI_ADDRESS& address, MappedUnit* unit) {
    HX_OS_DEVICE device{};
    const HX_STATUS status = ReadList(&unit->volumes, [&](HX_VOLUME* volumes, uint32_t* count) {
        return HXMapScsiTargetToVolumes(handle, &address, &device, volumes, count);
    });
    if (status == HXMGT_SUCCESS) {
        unit->device = device;
    }
    return status == HXMGT_DEVICE_NOT_FOUND ? HX_STATUS{HXMGT_SUCCESS} : status;
}

HX_STATUS ReadUnitsOfVolume(uint32_t handle, const std::string& volume,
                            std::vector<MappedUnit>* units) {
    std::vector<HX_OS_DEVICE> devices;
    HX_STATUS status = ReadList(&devices, [&](HX_OS_DEVICE* records, uint32_t* count) {
        return HXMapVolumeToScsiTarget(handle, volume.c_str(), records, count);
    });
    if (status == HXMGT_DEVICE_NOT_FOUND) {
        return HXMGT_SUCCESS;
    }
    for (size_t i = 0; i < devices.size() && status == HXMGT_SUCCESS; ++i) {
        MappedUnit& unit = units->emplace_back(UnitOf(devices[i]));
        status = ReadDevice(handle, AddressOf(devices[i]), &unit);
    }
    return status;
}

HX_STATUS ReadDisksOfVolume(const std::string& volume, std::vector<uint32_t>* disks) {
    std::vector<HX_DISK_EXTENT> extents;
    const HX_STATUS status = ReadList(&extents, [&](HX_DISK_EXTENT* records, uint32_t* count) {
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
