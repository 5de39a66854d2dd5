// The counters of the emulated links.
#pragma once

#include <cstdint>

namespace vxemu {

// Link failure, loss of synchronisation, loss of signal, primitive sequence protocol error, invalid
// transmission word, invalid CRC.
inline constexpr uint32_t kLinkErrorCounters = 6;

// A remote port's counter: small numbers that differ from port to port.
uint32_t RemoteLinkErrors(const uint8_t* portName, uint32_t counter);

}  // namespace vxemu
