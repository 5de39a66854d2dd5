// Buffer-to-buffer credit recovery of a port's link.
#pragma once

#include "hxhealth.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

extern const Fields<HX_BBCR_DATA> kCreditRecoveryFields;

}  // namespace vxmgr
