// A look at the update locks of this machine, without touching them.
#pragma once

#include <cstdint>
#include <memory>

#include "common/invocation.h"
#include "vxmgr/flash/flash_lock_table.h"

namespace vxmgr {

// A copy of the table; ends the command when it cannot be read.
std::unique_ptr<FlashLockArea> ReadLockTable(tools::Invocation& invocation);

// A lock as it stands now.
struct LockState {
    bool held = false;
    uint32_t owner = 0;
    uint32_t heldSeconds = 0;
    bool ownerLives = false;
    bool expired = false;  // held for so long that anybody may take it over
};

LockState StateOf(const FlashLock& record);

}  // namespace vxmgr
