// The transceiver of an emulated port: its two memory pages as SFF-8472 has them.
#pragma once

#include <cstdint>

#include "formats/sfp_pages.h"
#include "model/profile/profile.h"

namespace vxemu {

void FillTransceiver(const AdapterProfile& adapter, const PortProfile& port,
                     formats::SfpIdentity& identity);
void FillTransceiver(formats::SfpDiagnostics& diagnostics);

// What a transceiver meets: whether there is light, how much, and whether its laser fails.
struct Signal {
    bool link = true;
    uint16_t receivedPower = 0;  // microwatts; 0 = as usual
    bool transmitFault = false;
};

// What the transceiver measures now, and what it says of it. Values move a little from turn to
// turn; without a link no light arrives.
void Measure(uint32_t turn, const Signal& signal, formats::SfpDiagnostics& diagnostics);

}  // namespace vxemu
