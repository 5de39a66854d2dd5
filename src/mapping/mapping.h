// Target logical units as devices of the operating system, and the volumes on them.
#pragma once

#include <cstdint>
#include <span>

#include "hxmapping.h"
#include "mapping/discovered_ports.h"
#include "mapping/os_devices.h"

namespace mapping {

HX_STATUS MapTargetToVolumes(uint32_t handle, const HX_SCSI_ADDRESS* target, HX_OS_DEVICE* device,
                             HX_VOLUME* volumes, uint32_t* count);
HX_STATUS MapVolumeToTargets(uint32_t handle, const char* volume, HX_OS_DEVICE* devices,
                             uint32_t* count);
HX_STATUS GetDiskExtents(const char* volume, HX_DISK_EXTENT* extents, uint32_t* count);
HX_STATUS ListOsDevices(HX_OS_DEVICE* devices, uint32_t* count);
HX_STATUS ListDiskVolumes(HX_DISK_VOLUME* volumes, uint32_t* count);

// Puts the names of the port at each device's bus and target into the device.
void NamePorts(const DiscoveredPorts& ports, std::span<HX_OS_DEVICE> devices);

// The devices behind an open handle's port, ascending by bus, target and LUN, with their ports.
class PortDevices {
  public:
    HX_STATUS Fetch(uint32_t handle);
    std::span<const HX_OS_DEVICE> Records() const { return devices_.Records(); }

  private:
    OsDevices devices_;
};

}  // namespace mapping
