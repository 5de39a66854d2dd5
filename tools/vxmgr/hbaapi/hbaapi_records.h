// What the standard HBA API says, as records.
#pragma once

#include "vxmgr/app/vocabulary.h"
#include "vxmgr/hbaapi/hbaapi_reader.h"

namespace vxmgr {

std::string HbaSerial(const HbaAdapter& adapter);  // empty: none, or not known

extern const Fields<HbaAdapter> kHbaSummaryFields;
extern const Fields<HbaAdapter> kHbaDetailFields;

}  // namespace vxmgr
