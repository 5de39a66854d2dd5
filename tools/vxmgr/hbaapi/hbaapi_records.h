// What the standard HBA API says, as records.
#pragma once

#include "vxmgr/app/vocabulary.h"
#include "vxmgr/hbaapi/hbaapi_reader.h"

namespace vxmgr {

std::string HbaSerial(const HbaAdapter& adapter);  // empty: none, or not known

const Fields<HbaAdapter>& HbaSummaryFields();
const Fields<HbaAdapter>& HbaDetailFields();

}  // namespace vxmgr
