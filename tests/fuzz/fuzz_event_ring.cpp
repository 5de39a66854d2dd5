// Event queues whose shared memory holds anything at all.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "events/event_ring.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 8) {
        return 0;
    }
    const uint32_t room = data[0] % 40;
    const uint32_t fetchedCount = data[1] % 33;
    const uint32_t handle = data[2] % frame::kHandleRecords;
    const uint32_t deliveredToCaller = data[3];
    data += 4;
    size -= 4;

    // The indexes of the first slot, then the rest of the area, come from the input.
    const auto area = std::make_unique<frame::EventArea>();
    frame::EventSlot& slot = area->slots[0];
    const size_t indexes = sizeof(frame::EventSlot) - offsetof(frame::EventSlot, writeIndex);
    for (size_t i = 0; i < indexes; ++i) {
        reinterpret_cast<uint8_t*>(slot.writeIndex)[i] = data[i % size];
    }
    std::memcpy(&area->slots[1], data, std::min(size, sizeof(frame::EventSlot)));
    area->slots[0].inUse = 1;
    area->slots[1].inUse = data[0] & 1;

    const std::vector<frame::EventRecord> fetched(fetchedCount, {0x8011, {1, 2, 3}});
    std::vector<HX_EVENT> out(room);
    events::Delivery delivery(out);
    events::DeliverQueued(slot, handle, delivery);
    Require(delivery.Delivered() + delivery.Room() <= room);
    events::FanOut(*area, slot, slot.adapterIndex[handle], fetched, deliveredToCaller);

    // A ring that is enabled afresh works whatever was there before.
    events::EnableRing(slot, handle, 7);
    events::FanOut(*area, area->slots[1], 7, fetched, 0);
    std::vector<HX_EVENT> all(64);
    events::Delivery whole(all);
    events::DeliverQueued(slot, handle, whole);
    Require(whole.Delivered() == std::min<uint32_t>(fetchedCount, frame::kRingCapacity - 1));
    return 0;
}
