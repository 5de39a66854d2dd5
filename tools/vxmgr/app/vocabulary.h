// The manager is written in the words of the tools' frame, and of the standard types that go with
// them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/invocation.h"
#include "common/status_codes.h"
#include "records/fields.h"

namespace vxmgr {

using namespace tools;

}  // namespace vxmgr
