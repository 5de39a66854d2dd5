// Restarting the firmware of ports.
#pragma once

#include "flash/flash_records.h"
#include "hxmgtapi.h"

namespace flash {

// Restarts the firmware behind one handle.
HX_STATUS RestartPort(uint32_t handle, Restart kind);

// Starts the written firmware on every open port of the adapter; the first failure ends it.
HX_STATUS ResetAdapterPorts(uint32_t handle);

}  // namespace flash
