// The ports of the running driver as records of a result.
#pragma once

#include "common/record.h"
#include "model/control.h"

namespace vxemu {

void AddPortList(const StatusReply& status, tools::Record& result);

}  // namespace vxemu
