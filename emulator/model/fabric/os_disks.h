// The disks that the operating system makes of the targets' LUNs: what it knows about each.
#pragma once

#include <cstdint>

#include "model/fabric/fabric.h"

namespace vxemu {

struct OsDisk {
    uint8_t scsiPort;
    uint8_t bus;
    uint8_t target;
    uint8_t lun;
    uint32_t blockSize;
    uint64_t blocks;
};

// A disk by its LUN, as the port sees it now; false when it does not (the link is down, the target
// is gone, the LUN is masked) or when its address has no room in the operating system's.
bool FindOsDisk(const Port& port, const DiskKey& key, OsDisk& disk);

// LUNs of the fabric; and the key of one, false when it is no disk of a target that the port can
// ever see.
uint32_t CountDiskKeys(const Fabric& fabric);
bool GetDiskKey(const Port& port, uint32_t index, DiskKey& key);

}  // namespace vxemu
