// The disks of the emulated targets as "\\.\PhysicalDriveN", as far as programs need them to find
// out which LUN of which port a disk is: address, number, length and geometry. They hold no data
// for the operating system; SCSI pass-through reads and writes it.
//
// A device is made with its port for every disk that the port can see. It opens while the port sees
// it.
#pragma once

#include "devices.h"

namespace driver {

void CreateDisks(DRIVER_OBJECT* driver, Shared& shared, uint32_t port);

// What a port lists of its units (IOCTL_SCSI_GET_INQUIRY_DATA): the disks that it sees.
NTSTATUS ListUnits(const DeviceExtension& port, IRP* irp);

// To be called for each device before it is deleted, or once it is gone.
void UnlinkDisk(const DeviceExtension& extension);

// Whether a disk can be opened now; within its port.
bool IsDiskThere(const DeviceExtension& extension);

NTSTATUS DiskControl(const DeviceExtension& extension, IRP* irp);

}  // namespace driver
