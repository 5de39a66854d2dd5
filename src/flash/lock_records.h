// The update locks in shared memory, by adapter. Every process writes there: what is read is a
// copy, and the copy is what is checked and used.
#pragma once

#include <cstdint>
#include <optional>

#include "frame/shared_area.h"

namespace flash {

// Number of the lock record of a handle's adapter; nothing when it has none or cannot be asked. An
// adapter without a serial number has none.
std::optional<uint32_t> FindLock(uint32_t handle);

// The same; an adapter without one is given the first that is unassigned, for the life of the
// shared area.
std::optional<uint32_t> FindOrAssignLock(uint32_t handle);

frame::FlashLock CopyOfLock(uint32_t number);

// Takes the lock, unless another process has changed its owner since it was seen: false then.
bool HoldLock(uint32_t number, const frame::FlashLock& seen, uint32_t owner, uint32_t startTick);
void NoteWatchdog(uint32_t number, uint64_t thread);
// The start tick stays.
void FreeLock(uint32_t number);

}  // namespace flash
