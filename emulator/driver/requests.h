// The driver's dispatch functions.
#pragma once

#include "kernel.h"

namespace driver {

NTSTATUS NTAPI OpenOrClose(DEVICE_OBJECT* device, IRP* irp);
NTSTATUS NTAPI DeviceControl(DEVICE_OBJECT* device, IRP* irp);

}  // namespace driver
