// The counters of the emulated links.
#pragma once

#include <cstdint>

#include "model/port.h"

namespace vxemu {

// The counters of a port's own link.
HX_STATISTICS CountersOf(const Port& port);

// Link failure, loss of synchronisation, loss of signal, primitive sequence protocol error, invalid
// transmission word, invalid CRC.
inline constexpr uint32_t kLinkErrorCounters = 6;

// A remote port's counter: small numbers that differ from port to port.
uint32_t RemoteLinkErrors(const uint8_t* portName, uint32_t counter);

}  // namespace vxemu
