#include "events/event_ring.h"

#include <algorithm>
#include <cstring>

namespace events {
namespace {

using frame::EventRecord;
using frame::EventSlot;
using frame::kHandleRecords;
using frame::kRingCapacity;

struct EventTypeRow {
    uint32_t driverCode;
    uint32_t type;
};

constexpr EventTypeRow kEventTypes[] = {
    {0x8010, HX_EVENT_LIP},
    {0x8011, HX_EVENT_LINK_UP},
    {0x8012, HX_EVENT_LINK_DOWN},
    {0x8013, HX_EVENT_LIP_RESET},
    {0x8014, HX_EVENT_PORT_UPDATE},  // this one and the next are
                                     // crossed: intended
    {0x8015, HX_EVENT_RSCN},
    {0x8080, HX_EVENT_TEST},
};

static_assert(sizeof(HX_EVENT) == sizeof(EventRecord));

// One ring of a slot, with its indexes forced into bounds.
class Ring {
  public:
    Ring(EventSlot& slot, uint32_t handle)
        : queue_(slot.queue[handle]),
          write_(slot.writeIndex[handle]),
          read_(slot.readIndex[handle]),
          capacity_(std::min(slot.capacity[handle], kRingCapacity)) {
        if (write_ >= capacity_) {
            write_ = 0;
        }
        if (read_ >= capacity_) {
            read_ = 0;
        }
    }

    bool Enabled() const { return capacity_ != 0; }

    void Store(const EventRecord& event) {
        queue_[write_] = event;
        write_ = Next(write_);
        if (write_ == read_) {
            read_ = Next(read_);  // the ring is full: its oldest record goes
        }
    }

    void DeliverAll(Delivery& delivery) {
        while (read_ != write_ && delivery.Room() != 0) {
            delivery.Deliver(queue_[read_]);
            read_ = Next(read_);
        }
    }

  private:
    uint32_t Next(uint32_t index) const { return index + 1 == capacity_ ? 0 : index + 1; }

    EventRecord* queue_;
    uint32_t& write_;
    uint32_t& read_;
    uint32_t capacity_;
};

}  // namespace

void Delivery::Deliver(const EventRecord& event) {
    ++consumed_;
    for (const EventTypeRow& row : kEventTypes) {
        if (row.driverCode == event.code) {
            HX_EVENT& out = room_[delivered_++];
            out.type = row.type;
            std::memcpy(out.data, event.data, sizeof out.data);
            return;
        }
    }
}

void EnableRing(EventSlot& slot, uint32_t handle, uint32_t adapterIndex) {
    slot.readIndex[handle] = 0;
    slot.writeIndex[handle] = 0;
    slot.capacity[handle] = kRingCapacity;
    slot.adapterIndex[handle] = adapterIndex;
}

void DisableRing(EventSlot& slot, uint32_t handle) {
    slot.readIndex[handle] = 0;
    slot.writeIndex[handle] = 0;
    slot.capacity[handle] = 0;
    slot.adapterIndex[handle] = 0;
}

void DeliverQueued(EventSlot& slot, uint32_t handle, Delivery& delivery) {
    Ring ring(slot, handle);
    if (ring.Enabled()) {
        ring.DeliverAll(delivery);
    }
}

void FanOut(frame::EventArea& area, const EventSlot& own, uint32_t adapterIndex,
            std::span<const EventRecord> fetched, uint32_t deliveredToCaller) {
    for (EventSlot& slot : area.slots) {
        if (slot.inUse == 0) {
            continue;
        }
        const size_t first =
            &slot == &own ? std::min<size_t>(deliveredToCaller, fetched.size()) : 0;
        for (uint32_t handle = 0; handle < kHandleRecords; ++handle) {
            if (slot.adapterIndex[handle] != adapterIndex) {
                continue;
            }
            Ring ring(slot, handle);
            if (ring.Enabled()) {
                for (const EventRecord& event : fetched.subspan(first)) {
                    ring.Store(event);
                }
            }
        }
    }
}

}  // namespace events
