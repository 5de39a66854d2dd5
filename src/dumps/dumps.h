// Firmware dumps: taking them, fetching them in pieces, writing them as text.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace dumps {

HX_STATUS ForceFirmwareDump(uint32_t handle);

HX_STATUS GetRawFirmwareDump(uint32_t handle, void* buffer);
HX_STATUS GetRawMpiDump(uint32_t handle, void* buffer);
HX_STATUS GetMctpDump(uint32_t handle, void* buffer, uint32_t* size);
HX_STATUS GetMiniDump(uint32_t handle, void* buffer, uint32_t* size);

HX_STATUS WriteFirmwareDumpText(uint32_t handle, const char* fileName);

}  // namespace dumps
