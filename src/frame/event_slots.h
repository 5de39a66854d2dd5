// Who has which slot of the event area.
#pragma once

#include <cstdint>

#include "frame/shared_area.h"

namespace frame {

inline constexpr uint32_t kNoSlot = kProcessSlots;

// Takes a slot for this process, with empty rings: a free one, else one whose owner is gone;
// kNoSlot when there is neither.
uint32_t ClaimSlot(EventArea& area);

// Frees this process's slot, unless somebody else has it by now.
void ReleaseSlot(EventArea& area, uint32_t slot);

}  // namespace frame
