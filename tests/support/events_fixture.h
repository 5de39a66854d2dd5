// Event delivery in this process: adapter 0 with a driver that holds events, and the shared area.
#pragma once

#include <string>
#include <vector>

#include "machine/event_peer.h"
#include "support/library_fixture.h"

namespace support {

using Masks = std::vector<uint32_t>;

class EventsTest : public LibraryTest {
  protected:
    void SetUp() override {
        system.AttachScsiPort(3, &driver.port);
        handle = Open(0);
        driver.port.Forget();
        ASSERT_EQ(0u, area->registrations[0]);
        // Children that an earlier test killed hold their slots still.
        for (frame::EventSlot& slot : area->slots) {
            slot.inUse = &slot == &OwnSlot() ? slot.inUse : 0;
        }
        ASSERT_EQ(1u, OwnSlot().inUse);
    }
    void TearDown() override {
        while (area->registrations[0] != 0) {
            HXDisableAen(handle);
        }
        LibraryTest::TearDown();
    }
    std::string Get(uint32_t room) {
        const Fetched fetched = Fetch(handle, room);
        EXPECT_EQ(0u, fetched.status);
        return fetched.Text();
    }
    // Whoever makes the area takes its first slot: that is this process.
    frame::EventSlot& OwnSlot() { return area->slots[0]; }
    uint32_t SlotsInUse() {
        uint32_t count = 0;
        for (const frame::EventSlot& slot : area->slots) {
            count += slot.inUse != 0 ? 1 : 0;
        }
        return count;
    }
    // Leaves events number first to first + count - 1 in the ring of this process.
    void Queue(Peer& peer, uint32_t first, uint32_t count) {
        peer.Ask("raise 32785 " + std::to_string(first) + " " + std::to_string(count));
        while (!peer.Ask("fetch 32").empty()) {
        }
    }
    static std::string Numbers(uint32_t first, uint32_t count, uint32_t type = 2) {
        std::string text;
        for (uint32_t i = 0; i < count; ++i) {
            text += (i == 0 ? "" : " ") + std::to_string(type) + ":" + std::to_string(first + i);
        }
        return text;
    }

    EventDriver driver;
    uint32_t handle = 0;
    SharedView<frame::EventArea> area{kEventAreaName};
};

}  // namespace support
