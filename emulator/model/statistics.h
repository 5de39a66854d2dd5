// The counters of the emulated links.
#pragma once

#include <cstdint>

#include "model/port.h"

namespace vxemu {

// The counters of a port's own link, as they are and as words that wrap.
HX_PORT_STATISTICS WideCountersOf(const Port& port);
HX_STATISTICS CountersOf(const Port& port);
HX_STATISTICS Narrow(const HX_PORT_STATISTICS& counters);

// The port's counters begin: it has logged in to the fabric once.
void StartCounters(Port& port);

// Link failure, loss of synchronisation, loss of signal, primitive sequence protocol error, invalid
// transmission word, invalid CRC.
inline constexpr uint32_t kLinkErrorCounters = 6;

// What a port reads of a remote port's counters: small numbers that differ from port to port, and
// what was counted beside them. device is null for a port that is no device of the fabric.
uint64_t RemoteLinkErrors(const uint8_t* portName, uint32_t counter);
uint64_t RemoteLinkErrors(const Port& port, const TargetProfile& device, uint32_t counter);

// Takes note of a SCSI command that the port sent to a device, and of the data that it moved.
struct ScsiTraffic {
    bool out;  // the data goes to the device
    uint64_t bytes;
};
void CountScsi(Port& port, const TargetProfile& device, const ScsiTraffic& traffic);

}  // namespace vxemu
