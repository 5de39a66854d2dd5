// The watchdogs of this process: threads that free a lock which nobody has ended in 15 minutes.
// What a watchdog is, is known here alone; the thread handle in a lock's shared record is written
// for others to see and is never used.
#pragma once

#include <cstdint>

namespace flash {

// Starts the watchdog of a lock that this process has taken. It looks the lock of the handle's
// adapter up by itself. Returns its thread handle, 0 when it could not be started.
uint64_t StartWatchdog(uint32_t lock, uint32_t handle);

// Ends the lock's latest watchdog; earlier ones go on. One that is asking its driver is waited for.
void StopWatchdog(uint32_t lock);

// Ends all of them, whoever has their locks by now, since their code is about to go. One that is
// asking its driver holds the library in memory instead, so that there is none left by then. Called
// under the loader's lock.
void StopWatchdogsAtUnload();

}  // namespace flash
