// Texts of world wide names, and small services around device names and remote port keys.
#pragma once

#include <cstdint>

#include "hxmgtapi.h"

namespace frame {

// "%02x-%02x-%02x-%02x-%02x-%02x-%02x-%02x" with its terminator.
using WwnText = char[24];
void WriteWwn(const uint8_t* wwn, WwnText& text);

uint32_t GetVersion(char* buffer, uint32_t length);
HX_STATUS GetDeviceNumber(const char* name, void* out, uint32_t outLength);
HX_STATUS RemoveDevice(const uint8_t* portName, const char* driverSuffix, int32_t confirm);

}  // namespace frame
