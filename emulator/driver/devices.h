// The driver's device objects: one per emulated port and the control device.
#pragma once

#include "delayed_completion.h"
#include "kernel.h"
#include "model/model.h"

namespace driver {

// What all devices share; lives as long as the driver.
struct Shared {
    vxemu::Model* model;
    FAST_MUTEX lock;  // guards the model
    bool stopping;    // guarded by lock; requests are refused from now on
    DelayedCompletions delayed;
    uint64_t mapped;  // bit n: the key of SCSI port n was written by this driver
};

inline constexpr uint32_t kControlDevice = 0xFFFFFFFF;

struct DeviceExtension {
    Shared* shared;
    uint32_t port;  // index into the model's ports, or kControlDevice
};

inline DeviceExtension& ExtensionOf(DEVICE_OBJECT* device) {
    return *static_cast<DeviceExtension*>(device->DeviceExtension);
}

// Creates the control device and a device per port, each with its link. On failure the caller
// removes what was made.
NTSTATUS CreateDevices(DRIVER_OBJECT* driver, Shared* shared);

// Removes every device of the driver and its link.
void RemoveDevices(DRIVER_OBJECT* driver);

}  // namespace driver
