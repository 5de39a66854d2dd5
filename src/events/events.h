// Asynchronous events of adapters, shared among the processes that ask for them.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace events {

HX_STATUS EnableAen(uint32_t handle);
HX_STATUS DisableAen(uint32_t handle);
HX_STATUS GetAen(uint32_t handle, uint8_t* buffer, uint32_t bufferBytes, uint32_t* count);
HX_STATUS ForceEvent(uint32_t handle);

}  // namespace events
