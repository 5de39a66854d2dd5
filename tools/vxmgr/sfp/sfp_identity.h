// The identity page of a transceiver, two-wire device A0h (SFF-8472). Free of platform headers.
#pragma once

#include <cstddef>

#include "formats/sfp_pages.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

using formats::kSfpPageBytes;
using formats::SfpIdentity;

// The year 20yy: "2024-01-31"; empty when it is no date.
std::string SfpDate(const char (&date)[8]);

extern const Fields<SfpIdentity> kSfpIdentityFields;

}  // namespace vxmgr
