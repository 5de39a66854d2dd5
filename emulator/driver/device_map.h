// The keys "HARDWARE\DEVICEMAP\Scsi\Scsi Port N", where programs find the driver of a SCSI port.
#pragma once

#include "devices.h"

namespace driver {

// Names the driver of every port. A key that another driver wrote is left alone.
void WriteDeviceMap(Shared& shared);

// Removes what WriteDeviceMap wrote.
void RemoveDeviceMap(Shared& shared);

}  // namespace driver
