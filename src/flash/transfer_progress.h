// Who is told how far a transfer of a flash region has come.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace flash {

HX_STATUS SetProgress(uint32_t handle, HX_FLASH_PROGRESS progress, void* context);

// For a handle that is being closed: its number goes to somebody else.
void ForgetProgress(uint32_t handle);

// Before each piece of a transfer, and behind the last one. Any status but success ends it.
HX_STATUS TellProgress(uint32_t handle, uint32_t region, uint32_t done, uint32_t total);

}  // namespace flash
