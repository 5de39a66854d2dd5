// The driver's device objects: one per emulated port, one per disk and the
// control device.
#pragma once

#include "delayed_completion.h"
#include "kernel.h"
#include "locks.h"
#include "model/access.h"
#include "model/model.h"

namespace driver {

// What all devices share; lives as long as the driver.
struct Shared {
    vxemu::Model* model;
    vxemu::AccessLocks<Resource, FastMutex> access;  // to the model
    bool stopping;  // written alone; requests are refused from now on
    DelayedCompletions delayed;
    uint64_t mapped;  // bit n: the key of SCSI port n was written by this driver
};

enum class DeviceKind : uint32_t { Control, Port, Disk };

struct DeviceExtension {
    Shared* shared;
    DeviceKind kind;
    uint32_t port;        // index into the model's ports
    vxemu::DiskKey disk;  // of a disk
    uint32_t diskNumber;  // N of "\\.\PhysicalDriveN"
};

inline DeviceExtension& ExtensionOf(DEVICE_OBJECT* device) {
    return *static_cast<DeviceExtension*>(device->DeviceExtension);
}

// Creates the control device, a device per port and the disks, each with its link. On failure the
// caller removes what was made.
NTSTATUS CreateDevices(DRIVER_OBJECT* driver, Shared* shared);

// Removes every device of the driver and its link.
void RemoveDevices(DRIVER_OBJECT* driver);

}  // namespace driver
