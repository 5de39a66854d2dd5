// The lock that keeps two processes from updating one adapter.
#pragma once

#include <cstdint>

namespace flash {

// True when this process holds the update lock of the handle's adapter.
bool HoldsUpdateLock(uint32_t handle);

// Ends the watchdogs of this process's locks, whose code is about to go. Called while the library
// unloads, before the locks are given back; waits for nothing.
void StopWatchdogsAtUnload();

}  // namespace flash
