// The keys "HARDWARE\DEVICEMAP\Scsi\Scsi Port N", where programs find the driver of a SCSI port.
#pragma once

#include "devices.h"

namespace driver {

// Names the driver of a port of the model. A key that another driver wrote is left alone.
void MapPort(Shared& shared, uint32_t port);

// Removes what MapPort wrote for a SCSI port, and for all of them.
void UnmapPort(Shared& shared, uint32_t number);
void UnmapPorts(Shared& shared);

}  // namespace driver
