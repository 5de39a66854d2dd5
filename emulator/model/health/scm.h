// SAN congestion management: what the fabric tells a port with FPINs and signals, and how the port
// holds back when it is told to.
#pragma once

#include <cstdint>

#include "model/port.h"

namespace vxemu {

// Takes note of n FPINs whose counter stands at that offset of HX_FPIN_COUNTERS; about a device,
// or the port itself when it is null.
void TakeFpins(Port& port, const TargetProfile* about, uint32_t offset, uint64_t n);

// The same of congestion signals, by the offset in CongestionState.
void TakeSignals(Port& port, uint32_t offset, uint64_t n);

// To be called before and after whatever begins or ends the throttling.
void LookAtThrottle(Port& port);

void ResetCongestion(Port& port);

// The page of counters about a remote port, or about the port itself when device is null.
HX_PORT_SCM_STATISTICS CongestionPage(Port& port, const TargetProfile* device);

}  // namespace vxemu
