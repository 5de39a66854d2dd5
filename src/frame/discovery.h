// Which SCSI ports carry an adapter of the family, and what kind of driver serves it.
#pragma once

#include <cstdint>
#include <span>

#include "hxmgtapi.h"

namespace frame {

inline constexpr char kScsiPortPath[] = "\\\\.\\scsi%d:";

// Room for a driver name or a driver parameter string with its terminator.
inline constexpr size_t kDiscoveryTextSize = 256;

// The calling thread's text buffer: driver names and driver parameter strings share it.
std::span<char> DiscoveryText();

// Driver service name that the registry gives the port, in DiscoveryText; empty when it has none.
const char* DriverNameOfPort(uint32_t port);

// Whether the port's driver answers as one of the family. Asks the port each time, and nobody else:
// counting needs no names.
bool IsFamilyPort(uint32_t port);

// The driver name of such a port, else null.
const char* FamilyDriverName(uint32_t port);

uint32_t CountAdapters();

// The ports that the registry knows; no driver is asked.
HX_STATUS ListScsiPorts(HX_SCSI_PORT* ports, uint32_t* count);

// 0 or 1, or kDriverTypeUnknown.
inline constexpr uint8_t kDriverTypeUnknown = 2;
uint8_t GetDriverType(uint32_t handle);

}  // namespace frame
