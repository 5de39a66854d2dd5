// The logical units that the targets of a port report, with the operating system's devices of them.
#pragma once

#include "vxmgr/app/port_walk.h"
#include "vxmgr/targets/map_units.h"
#include "vxmgr/targets/target_known.h"

namespace vxmgr {

// Puts the names of the target into the unit.
void TakeNames(const KnownTarget& target, MappedUnit* unit);

// Adds the units of the target, in order of their LUNs; none of one that the driver does not reach.
// Says what there is to say about them. The status: why the target does not report its LUNs.
HX_STATUS AddUnits(PortVisit& visit, const KnownTarget& target, const SystemDevices& system,
                   std::vector<MappedUnit>* units);

}  // namespace vxmgr
