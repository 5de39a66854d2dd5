// What this machine is called.
#pragma once

#include <string>

namespace vxmgr {

std::string HostName();  // without its domain

}  // namespace vxmgr
