// Parameters of a driver service: the string value "DriverParameter" that the driver reads at its
// start.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace frame {

// Value of a parameter, in a buffer of the calling thread, or null when it is absent or empty. A
// driver name is cut at its first dot.
const char* DriverParameter(const char* driverName, const char* name);

// The value as a decimal number, or -1 when the parameter is absent.
int32_t DriverParameterNumber(const char* driverName, const char* name);

// Sets the parameter, or removes it when value is null. A missing key is created when there is
// something to write. HXMGT_INVALID_PARAMETER for texts that the string cannot carry,
// HXMGT_REGISTRY_INVALID when the key cannot be written or holds something that is not a text.
HX_STATUS SetDriverParameter(const char* driverName, const char* name, const char* value);

// The same for the driver behind a handle.
HX_STATUS GetDriverParameter(uint32_t handle, const char* name, char* value, uint32_t valueSize);
HX_STATUS SetDriverParameter(uint32_t handle, const char* name, const char* value);

}  // namespace frame
