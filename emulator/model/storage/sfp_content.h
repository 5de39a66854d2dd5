// The transceiver of an emulated port: its two memory pages as SFF-8472 has them.
#pragma once

#include <cstdint>

#include "formats/sfp_pages.h"
#include "model/profile/profile.h"

namespace vxemu {

void FillTransceiver(const AdapterProfile& adapter, const PortProfile& port,
                     formats::SfpIdentity& identity);
void FillTransceiver(formats::SfpDiagnostics& diagnostics);

// What the transceiver measures now. Values move a little from turn to turn; without a link no
// light arrives.
void Measure(uint32_t turn, bool link, formats::SfpDiagnostics& diagnostics);

}  // namespace vxemu
