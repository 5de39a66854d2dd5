// What the standard HBA API says, as records.
#pragma once

#include "common/record.h"
#include "vxmgr/hbaapi/hbaapi_reader.h"

namespace vxmgr {

std::string HbaSerial(const HbaAdapter& adapter);  // empty: none, or not known

tools::Record HbaSummary(const HbaAdapter& adapter);
tools::Record HbaDetail(const HbaAdapter& adapter);

}  // namespace vxmgr
