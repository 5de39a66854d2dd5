// Status of the management API as a status of the standard API.
#pragma once

#include "hbaapi.h"
#include "hxtypes.h"

namespace hbaapi {

HBA_STATUS MapStatus(HX_STATUS status);

// Checks handle and record of a handler, mapped.
HBA_STATUS CheckCall(HBA_HANDLE handle, const void* record);

}  // namespace hbaapi
