// Buffer-to-buffer credit recovery of a port's link.
#pragma once

#include "common/fields.h"
#include "hxhealth.h"

namespace vxmgr {

const tools::Fields<HX_BBCR_DATA>& CreditRecoveryFields();

}  // namespace vxmgr
