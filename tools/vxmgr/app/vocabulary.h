// The manager is written in the words of the tools' frame.
#pragma once

#include "common/fields.h"
#include "common/invocation.h"
#include "common/status_codes.h"

namespace vxmgr {

using namespace tools;

}  // namespace vxmgr
