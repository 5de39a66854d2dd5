// The driver's device objects: one per emulated port, one per disk and the
// control device.
#pragma once

#include "delayed_completion.h"
#include "flash_files.h"
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
    FlashFiles flashFiles;
    uint64_t mapped;   // bit n: the key of SCSI port n was written by this driver
    uint64_t devices;  // bit n: port n of the model has its device
    uint32_t portsMade;
    uint32_t nextDisk;  // numbers of disks below are taken
};

enum class DeviceKind : uint32_t { Control, Port, Disk };

struct DeviceExtension {
    Shared* shared;
    DeviceKind kind;
    uint32_t port;        // of the model's ports
    vxemu::DiskKey disk;  // of a disk
    uint32_t number;      // N of "\\.\scsiN:" or "\\.\PhysicalDriveN"
    uint32_t handles;     // that are open
    // The adapter was removed: nobody can open the device any more, and those who have it open meet
    // a missing device. Its port of the model may be another one by now. Written alone.
    bool gone;
};

inline DeviceExtension& ExtensionOf(DEVICE_OBJECT* device) {
    return *static_cast<DeviceExtension*>(device->DeviceExtension);
}

// Creates the control device, and what stands for the ports of the model. On failure the caller
// removes what was made.
NTSTATUS CreateDevices(DRIVER_OBJECT* driver, Shared* shared);

// After adapters came or went; to be called alone. Ports that the model no longer has lose their
// devices and disks, and each that is new gets what its driver would give it: what is stored for
// it, its device and disks with their links, its key. A port whose number another driver has is
// none: its adapter is removed again.
NTSTATUS FollowModel(DRIVER_OBJECT* driver, Shared& shared);

// Removes every device of the driver and its link.
void RemoveDevices(DRIVER_OBJECT* driver);

}  // namespace driver
