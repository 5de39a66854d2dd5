// What the operating system and the library know of logical units, devices and volumes, read with
// as much room as it takes.
#pragma once

#include <memory>

#include "vxmgr/targets/map_rows.h"

namespace vxmgr {

// The operating system's devices and volumes, listed once for all units that are looked up in it.
class SystemDevices {
  public:
    // Asks the system anew.
    HX_STATUS Read();

    // Null: the operating system has none.
    const HX_OS_DEVICE* At(uint32_t scsiPort, uint32_t bus, uint32_t target, uint32_t lun) const;
    std::vector<HX_VOLUME> VolumesOn(const HX_OS_DEVICE& device) const;
    // The devices behind the port, with their volumes.
    std::vector<MappedUnit> UnitsBehind(uint32_t scsiPort) const;

    // Disks of the number behind the port: one, unless the system is odd.
    std::vector<HX_OS_DEVICE> DisksBehind(uint32_t scsiPort, uint32_t number) const;

    // Puts the unit's device and its volumes into it; its names and numbers stay as they are.
    void Complete(uint32_t scsiPort, MappedUnit* unit) const;

  private:
    std::vector<HX_OS_DEVICE> devices_;
    std::vector<HX_DISK_VOLUME> volumes_;
};

// Shared with threads that may be left behind.
using SharedDevices = std::shared_ptr<const SystemDevices>;

// What the system has now; the same for all commands that run inside a collection or report.
HX_STATUS ReadSystemDevices(SharedDevices* devices);

// Numbers of the disks that a volume lives on, each once.
HX_STATUS ReadDisksOfVolume(const std::string& volume, std::vector<uint32_t>* disks);

}  // namespace vxmgr
