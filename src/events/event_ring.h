// The event queues of the shared area: storing, delivering, fanning out. Pure code over the shared
// records, which other processes write too, also while it runs: every index is copied, forced into
// bounds and stored back once. Free of platform headers.
#pragma once

#include <cstdint>
#include <span>

#include "frame/shared_area.h"
#include "hxmgtapi.h"

namespace events {

// Events on their way to the caller: room for records and their number so far.
class Delivery {
  public:
    explicit Delivery(std::span<HX_EVENT> room) : room_(room) {}

    // Hands one driver event over; one with an unknown code is dropped but uses up room.
    void Deliver(const frame::EventRecord& event);

    uint32_t Room() const { return static_cast<uint32_t>(room_.size()) - consumed_; }
    uint32_t Delivered() const { return delivered_; }

  private:
    std::span<HX_EVENT> room_;
    uint32_t consumed_ = 0;
    uint32_t delivered_ = 0;
};

void EnableRing(frame::EventSlot& slot, uint32_t handle, uint32_t adapterIndex);
void DisableRing(frame::EventSlot& slot, uint32_t handle);

// Delivers what the ring of this handle holds, oldest first, as far as there is room.
void DeliverQueued(frame::EventSlot& slot, uint32_t handle, Delivery& delivery);

// Stores new driver events in every ring of this adapter; in the caller's own slot without the
// first deliveredToCaller of them.
void FanOut(frame::EventArea& area, const frame::EventSlot& own, uint32_t adapterIndex,
            std::span<const frame::EventRecord> fetched, uint32_t deliveredToCaller);

}  // namespace events
