// What the standard HBA API says, as records.
#pragma once

#include "common/fields.h"
#include "vxmgr/hbaapi/hbaapi_reader.h"

namespace vxmgr {

std::string HbaSerial(const HbaAdapter& adapter);  // empty: none, or not known

const tools::Fields<HbaAdapter>& HbaSummaryFields();
const tools::Fields<HbaAdapter>& HbaDetailFields();

}  // namespace vxmgr
