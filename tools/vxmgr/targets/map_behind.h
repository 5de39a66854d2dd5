// What stands behind a port, for the question before I/O through it stops.
#pragma once

#include "vxmgr/app/inventory.h"

namespace vxmgr {

// A line with the disks that the port leads to and where their volumes are mounted; none when there
// are no disks, or nothing is known of them. Asks the operating system alone.
std::vector<std::string> DescribeVolumes(const Port& port);

}  // namespace vxmgr
