// Starting what an adapter has in its flash: which versions run afterwards.
#pragma once

#include "model/port.h"
#include "model/storage/flash.h"

namespace vxemu {

// Starts the written firmware while the adapter runs. FirmwareState when it is damaged: what runs
// goes on then.
transport::DriverStatus ActivateFirmware(Port& port);

// Power comes back, or is cut and comes back: everything starts from the flash, with the recovery
// firmware where the other one is damaged.
void PowerCycle(Port& port);

}  // namespace vxemu
