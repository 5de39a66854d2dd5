// The update locks of this machine as they stand, and how that of a process that has ended is given
// back.
#pragma once

#include <memory>

#include "vxmgr/flash/flash_lock_table.h"

namespace vxmgr {

// A copy of the table; ends the command when it cannot be read.
std::unique_ptr<FlashLockArea> ReadLockTable(Invocation& invocation);

// The same; null when it cannot be read.
std::unique_ptr<FlashLockArea> CopyLockTable();

// A lock as it stands now.
struct LockState {
    bool held = false;
    uint32_t owner = 0;
    uint32_t heldSeconds = 0;
    bool ownerLives = false;
    bool expired = false;  // held for so long that anybody may take it over
};

LockState StateOf(const FlashLock& record);

inline constexpr const char* kLockEndCommand = "flash lock end";

// The call that ends a lock also terminates and closes the thread whose handle its record keeps.
// That handle was the owner's: here the number may stand for anything. So it is made by a process
// that has nothing to lose. Returns that process's exit code.
ExitCode EndLockInChild(Invocation& invocation, uint32_t portIndex, uint32_t owner);

}  // namespace vxmgr
