// What the library knows of logical units, devices and volumes, read with as much room as it takes.
#pragma once

#include <string>
#include <vector>

#include "vxmgr/targets/map_rows.h"

namespace vxmgr {

// The device of a logical unit and the volumes on it; the unit's names and numbers stay as they
// are. A unit without a device is no failure.
HX_STATUS ReadDevice(uint32_t handle, const HX_SCSI_ADDRESS& address, MappedUnit* unit);

// The units behind the port that a volume lives on, each with all of its volumes. A volume that is
// on none of them is no failure.
HX_STATUS ReadUnitsOfVolume(uint32_t handle, const std::string& volume,
                            std::vector<MappedUnit>* units);

// Numbers of the disks that a volume lives on, each once.
HX_STATUS ReadDisksOfVolume(const std::string& volume, std::vector<uint32_t>* disks);

}  // namespace vxmgr
