// The process that gives back the lock of another process that has ended.
#pragma once

#include <cstdint>

#include "common/invocation.h"

namespace vxmgr {

inline constexpr const char* kLockEndCommand = "flash lock end";

// The call that ends a lock also terminates and closes the thread whose handle its record keeps.
// That handle was the owner's: here the number may stand for anything. So it is made by a process
// that has nothing to lose. Returns that process's exit code.
tools::ExitCode EndLockInChild(tools::Invocation& invocation, uint32_t portIndex, uint32_t owner);

}  // namespace vxmgr
