#include "mapping/mapping.h"

#include <algorithm>
#include <cstring>

#include "frame/record_list.h"
#include "mapping/device_names.h"
#include "mapping/volumes.h"
#include "properties/generation.h"
#include "properties/target_address.h"

namespace mapping {
namespace {

template <typename Record>
HX_STATUS CheckCall(uint32_t handle, const void* named, const Record* records,
                    const uint32_t* count) {
    if (const HX_STATUS status = properties::CheckQuery(handle, named); status != HXMGT_SUCCESS) {
        return status;
    }
    return frame::CallerList<Record>::Accepts(records, count) ? HXMGT_SUCCESS
                                                              : HXMGT_INVALID_PARAMETER;
}

const HX_OS_DEVICE* FindDevice(std::span<const HX_OS_DEVICE> devices,
                               const HX_SCSI_ADDRESS& target) {
    for (const HX_OS_DEVICE& device : devices) {
        // Names and identifiers are those of a discovered port; zeros stand for none.
        const bool named = device.discovered != 0 || target.type == HX_ADDRESS_BUS_TARGET;
        if (named && device.lun == target.lun && properties::Names(target, device)) {
            return &device;
        }
    }
    return nullptr;
}

// Visits the number of each disk once, in the extents' order.
template <typename Visit>
void ForEachDisk(std::span<const HX_DISK_EXTENT> extents, Visit visit) {
    for (size_t i = 0; i < extents.size(); ++i) {
        const uint32_t disk = extents[i].disk;
        const auto isDisk = [disk](const HX_DISK_EXTENT& extent) { return extent.disk == disk; };
        const auto before = extents.first(i);
        if (std::none_of(before.begin(), before.end(), isDisk)) {
            visit(disk);
        }
    }
}

// What of the volume is on the disk.
HX_VOLUME Describe(const VolumeName& name, std::span<const HX_DISK_EXTENT> extents, uint32_t disk) {
    HX_VOLUME volume{};
    for (const HX_DISK_EXTENT& extent : extents) {
        ++volume.extents;
        if (extent.disk == disk) {
            ++volume.extentsOnDisk;
            volume.bytesOnDisk += extent.length;
        }
    }
    JoinText(FirstOf(name), {}, volume.name);
    PathOfVolume(name, volume.path);
    return volume;
}

// Visits every pair of a volume and a disk that it lives on and that the caller wants.
template <typename Wants, typename Visit>
void ForEachDiskVolume(Wants wants, Visit visit) {
    VolumeSearch search;
    VolumeName name;
    while (search.Next(name)) {
        VolumeExtents extents;
        // A volume that does not tell, such as an empty drive, is on no disk.
        if (extents.Fetch(name) == HXMGT_SUCCESS) {
            ForEachDisk(extents.Records(), [&](uint32_t disk) {
                if (wants(disk)) {
                    visit(disk, Describe(name, extents.Records(), disk));
                }
            });
        }
    }
}

}  // namespace

void NamePorts(const DiscoveredPorts& ports, std::span<HX_OS_DEVICE> devices) {
    for (HX_OS_DEVICE& device : devices) {
        if (const HX_DEVICE_RECORD* const port = ports.At(device.bus, device.target)) {
            std::memcpy(device.nodeName, port->nodeName, sizeof device.nodeName);
            std::memcpy(device.portName, port->portName, sizeof device.portName);
            std::memcpy(device.portId, port->portId, sizeof device.portId);
            device.discovered = 1;
        }
    }
}

HX_STATUS PortDevices::Fetch(uint32_t handle) {
    const std::optional<HXMGT_API_HANDLE> device = frame::CopyOfRecord(handle);
    if (!device) {
        return HXMGT_INVALID_HANDLE;
    }
    DiscoveredPorts ports;
    if (const HX_STATUS status = ports.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const HX_STATUS status = devices_.FetchBehind(handle, device->dwScsiPort);
    if (status == HXMGT_SUCCESS) {
        NamePorts(ports, devices_.Records());
    }
    return status;
}

HX_STATUS MapTargetToVolumes(uint32_t handle, const HX_SCSI_ADDRESS* target, HX_OS_DEVICE* device,
                             HX_VOLUME* volumes, uint32_t* count) {
    if (const HX_STATUS status = CheckCall(handle, target, volumes, count);
        status != HXMGT_SUCCESS) {
        return status;
    }
    frame::CallerList<HX_VOLUME> out(volumes, count);
    if (properties::KindOf(*target) == nullptr) {
        return HXMGT_INVALID_PARAMETER;
    }
    PortDevices devices;
    if (const HX_STATUS status = devices.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const HX_OS_DEVICE* const found = FindDevice(devices.Records(), *target);
    if (found == nullptr) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    if (device != nullptr) {
        *device = *found;
    }
    if (found->type == HX_OS_DEVICE_DISK) {
        ForEachDiskVolume([&](uint32_t disk) { return disk == found->number; },
                          [&](uint32_t, const HX_VOLUME& volume) { out.Add(volume); });
    }
    return out.Close();
}

HX_STATUS MapVolumeToTargets(uint32_t handle, const char* volume, HX_OS_DEVICE* devices,
                             uint32_t* count) {
    if (const HX_STATUS status = CheckCall(handle, volume, devices, count);
        status != HXMGT_SUCCESS) {
        return status;
    }
    frame::CallerList<HX_OS_DEVICE> out(devices, count);
    VolumeName name;
    if (const HX_STATUS status = NameVolume(volume, name); status != HXMGT_SUCCESS) {
        return status;
    }
    VolumeExtents extents;
    if (const HX_STATUS status = extents.Fetch(name); status != HXMGT_SUCCESS) {
        return status;
    }
    PortDevices behindPort;
    if (const HX_STATUS status = behindPort.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    ForEachDisk(extents.Records(), [&](uint32_t disk) {
        const auto known = behindPort.Records();
        const auto device =
            std::find_if(known.begin(), known.end(), [disk](const HX_OS_DEVICE& candidate) {
                return candidate.type == HX_OS_DEVICE_DISK && candidate.number == disk;
            });
        if (device != known.end()) {
            out.Add(*device);
        }
    });
    return out.Found() != 0 ? out.Close() : HX_STATUS{HXMGT_DEVICE_NOT_FOUND};
}

HX_STATUS GetDiskExtents(const char* volume, HX_DISK_EXTENT* extents, uint32_t* count) {
    if (!frame::CallerList<HX_DISK_EXTENT>::Accepts(extents, count)) {
        return HXMGT_INVALID_PARAMETER;
    }
    frame::CallerList<HX_DISK_EXTENT> out(extents, count);
    VolumeName name;
    if (const HX_STATUS status = NameVolume(volume, name); status != HXMGT_SUCCESS) {
        return status;
    }
    VolumeExtents found;
    const HX_STATUS status = found.Fetch(name);
    if (status != HXMGT_SUCCESS) {
        return status;
    }
    for (const HX_DISK_EXTENT& extent : found.Records()) {
        out.Add(extent);
    }
    return out.Close();
}

HX_STATUS ListOsDevices(HX_OS_DEVICE* devices, uint32_t* count) {
    if (!frame::CallerList<HX_OS_DEVICE>::Accepts(devices, count)) {
        return HXMGT_INVALID_PARAMETER;
    }
    frame::CallerList<HX_OS_DEVICE> out(devices, count);
    OsDevices found;
    if (const HX_STATUS status = found.FetchAll(); status != HXMGT_SUCCESS) {
        return status;
    }
    for (const HX_OS_DEVICE& device : found.Records()) {
        out.Add(device);
    }
    return out.Close();
}

HX_STATUS ListDiskVolumes(HX_DISK_VOLUME* volumes, uint32_t* count) {
    if (!frame::CallerList<HX_DISK_VOLUME>::Accepts(volumes, count)) {
        return HXMGT_INVALID_PARAMETER;
    }
    frame::CallerList<HX_DISK_VOLUME> out(volumes, count);
    ForEachDiskVolume([](uint32_t) { return true; },
                      [&](uint32_t disk, const HX_VOLUME& volume) {
                          out.Add({disk, 0, volume});
                      });
    return out.Close();
}

}  // namespace mapping
