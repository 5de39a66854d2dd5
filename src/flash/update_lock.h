// The lock that keeps two processes from updating one adapter.
#pragma once

#include <cstdint>

namespace flash {

// True when this process holds the update lock of the handle's adapter.
bool HoldsUpdateLock(uint32_t handle);

}  // namespace flash
