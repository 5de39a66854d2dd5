#include "model/fabric/os_disks.h"

#include <cstring>

namespace vxemu {
namespace {

constexpr uint8_t kDisk = 0;  // SCSI peripheral device type

}  // namespace

bool FindOsDisk(const Port& port, const DiskKey& key, OsDisk& disk) {
    const TargetProfile* device = FindByPortName(port, key.portName);
    const LunProfile* lun =
        device != nullptr && IsTarget(*device) ? VisibleLun(port, *device, key.lun) : nullptr;
    if (lun == nullptr || lun->deviceType != kDisk || lun->number > UINT8_MAX) {
        return false;
    }
    const Attachment& attachment = AttachmentOf(port, *device);
    if (attachment.target > UINT8_MAX) {
        return false;
    }
    disk.scsiPort = port.profile->scsiPort;
    disk.bus = attachment.bus;
    disk.target = static_cast<uint8_t>(attachment.target);
    disk.lun = static_cast<uint8_t>(lun->number);
    disk.blockSize = lun->blockSize;
    disk.blocks = lun->blocks;
    return true;
}

uint32_t CountDiskKeys(const Fabric& fabric) {
    return fabric.profile->lunCount;
}

bool GetDiskKey(const Port& port, uint32_t index, DiskKey& key) {
    const Profile& profile = *port.fabric->profile;
    if (index >= profile.lunCount) {
        return false;
    }
    const LunProfile& lun = profile.luns[index];
    const TargetProfile& device = profile.targets[lun.target];
    const bool seen = device.seenBy == kSeenByAllPorts || device.seenBy == port.profile->scsiPort;
    if (!seen || lun.deviceType != kDisk || lun.number > UINT8_MAX) {
        return false;
    }
    key = DiskOf(*port.fabric, lun);
    return true;
}

}  // namespace vxemu
