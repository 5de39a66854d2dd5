#include "events/event_ring.h"

#include <algorithm>
#include <cstring>

namespace events {
namespace {

using frame::EventRecord;
using frame::EventSlot;
using frame::kHandleRecords;
using frame::kRingCapacity;
using frame::ReadOnce;
using frame::WriteOnce;

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

// A queued record as it stands at this moment.
EventRecord CopyOf(const EventRecord& queued) {
    return {ReadOnce(queued.code),
            {ReadOnce(queued.data[0]), ReadOnce(queued.data[1]), ReadOnce(queued.data[2])}};
}

// One ring of a slot: copies of its indexes, forced into bounds.
class Ring {
  public:
    Ring(EventSlot& slot, uint32_t handle)
        : slot_(slot),
          handle_(handle),
          capacity_(std::min(ReadOnce(slot.capacity[handle]), kRingCapacity)),
          write_(InBounds(ReadOnce(slot.writeIndex[handle]))),
          read_(InBounds(ReadOnce(slot.readIndex[handle]))) {}

    bool Enabled() const { return capacity_ != 0; }
    // Looks at the adapter after the capacity, since an enable writes them the other way round.
    bool Takes(uint32_t adapterIndex) const {
        return Enabled() && ReadOnce(slot_.adapterIndex[handle_]) == adapterIndex;
    }

    void StoreAll(std::span<const EventRecord> events) {
        for (const EventRecord& event : events) {
            slot_.queue[handle_][write_] = event;
            write_ = Next(write_);
            if (write_ == read_) {
                read_ = Next(read_);  // the ring is full: its oldest record goes
            }
        }
        WriteOnce(slot_.writeIndex[handle_], write_);
        WriteOnce(slot_.readIndex[handle_], read_);
    }

    void DeliverAll(Delivery& delivery) {
        while (read_ != write_ && delivery.Room() != 0) {
            delivery.Deliver(CopyOf(slot_.queue[handle_][read_]));
            read_ = Next(read_);
        }
        WriteOnce(slot_.readIndex[handle_], read_);
    }

  private:
    uint32_t InBounds(uint32_t index) const { return index < capacity_ ? index : 0; }
    uint32_t Next(uint32_t index) const { return index + 1 == capacity_ ? 0 : index + 1; }

    EventSlot& slot_;
    uint32_t handle_;
    uint32_t capacity_;
    uint32_t write_;
    uint32_t read_;
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

// The capacity is what enables a ring: it comes last, or the ring would for a moment take the
// events of adapter 0.
void EnableRing(EventSlot& slot, uint32_t handle, uint32_t adapterIndex) {
    DisableRing(slot, handle);
    WriteOnce(slot.adapterIndex[handle], adapterIndex);
    WriteOnce(slot.capacity[handle], kRingCapacity);
}

void DisableRing(EventSlot& slot, uint32_t handle) {
    WriteOnce(slot.capacity[handle], 0);
    WriteOnce(slot.readIndex[handle], 0);
    WriteOnce(slot.writeIndex[handle], 0);
    WriteOnce(slot.adapterIndex[handle], 0);
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
        if (ReadOnce(slot.inUse) == 0) {
            continue;
        }
        const size_t first =
            &slot == &own ? std::min<size_t>(deliveredToCaller, fetched.size()) : 0;
        for (uint32_t handle = 0; handle < kHandleRecords; ++handle) {
            Ring ring(slot, handle);
            if (ring.Takes(adapterIndex)) {
                ring.StoreAll(fetched.subspan(first));
            }
        }
    }
}

}  // namespace events
