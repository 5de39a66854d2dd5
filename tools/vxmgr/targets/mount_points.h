// Where volumes are mounted.
#pragma once

#include <string>
#include <vector>

#include "hxmgtapi.h"

namespace vxmgr {

// All places, as the operating system knows them now; the first alone where it does not tell.
std::vector<std::string> MountPointsOf(const HX_VOLUME& volume);

}  // namespace vxmgr
