// Events among processes: fan-out, rings, slots.

#include "support/events_fixture.h"
#include "support/rounds.h"

namespace {

using namespace support;

class EventProcessesTest : public EventsTest {
  protected:
    using Peers = std::vector<std::unique_ptr<Peer>>;

    // All fetch at the same time: each sees each event once, or has lost it by the rule of its
    // queue.
    void FollowTogether(uint32_t events, const Peers& peers) {
        const HANDLE number = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                 sizeof(uint32_t), EventDriver::kNumberName);
        EXPECT_EQ(0u, HXEnableAen(handle));
        for (const auto& peer : peers) {
            peer->Send("follow " + std::to_string(events));
        }
        std::vector<std::string> results = {driver.Follow(events, handle)};
        for (const auto& peer : peers) {
            results.push_back(peer->Answer());
        }
        uint32_t seenByAll = 0;
        for (const std::string& result : results) {
            uint32_t seen = 0;
            uint32_t lost = 0;
            ASSERT_EQ(2, sscanf(result.c_str(), "%u %u", &seen, &lost)) << result;
            EXPECT_EQ(events, seen + lost) << result;
            seenByAll += seen;
        }
        EXPECT_GT(seenByAll, events) << "nobody but the one that fetches sees any";
        HXDisableAen(handle);
        CloseHandle(number);
    }
};

TEST_F(EventProcessesTest, FanOutToAnotherProcess) {
    Peer peer;
    HXEnableAen(handle);
    EXPECT_EQ("0", peer.Ask("enable"));
    EXPECT_EQ("", peer.Ask("masks")) << "the driver was on already";
    EXPECT_EQ(2u, area->registrations[0]);

    driver.Raise(0x8011, 1, 2);
    driver.Raise(0x8016, 0);
    driver.Raise(0x8012, 3);
    EXPECT_EQ("2:1 2:2 3:3", Get(10));
    EXPECT_EQ("2:1 2:2", peer.Ask("fetch 2"));
    EXPECT_EQ("3:3", peer.Ask("fetch 2")) << "the unknown record used up a place";
    EXPECT_EQ("", peer.Ask("fetch 10"));

    EXPECT_EQ(0u, HXDisableAen(handle));
    EXPECT_EQ(Masks({0, 0xFFFFFFFF}), driver.TakeMasks()) << "the other one still listens";
    peer.Ask("raise 32785 9 1");
    EXPECT_EQ("2:9", peer.Ask("fetch 4"));
    EXPECT_EQ("", Get(4)) << "disabled: nothing is kept";
    EXPECT_EQ("0", peer.Ask("disable"));
    EXPECT_EQ("0 ", peer.Ask("masks"));
    EXPECT_EQ(0u, peer.Finish());
}

TEST_F(EventProcessesTest, PortOpenedWithoutCountingSharesWithOtherProcesses) {
    Peer peer;  // opens by index
    EXPECT_EQ("0", peer.Ask("enable"));
    uint32_t uncounted = 0;
    ASSERT_EQ(0u, HXOpenScsiPort(3, &uncounted));
    EXPECT_EQ(0u, HXEnableAen(uncounted));
    EXPECT_EQ(0u, HXEnableAen(handle));
    EXPECT_EQ(Masks{}, driver.TakeMasks()) << "the peer switched it on";
    driver.Raise(0x8011, 1, 2);
    EXPECT_EQ("2:1 2:2", Fetch(uncounted, 10).Text());
    EXPECT_EQ("2:1 2:2", peer.Ask("fetch 10"));
    peer.Ask("raise 32786 3 1");
    EXPECT_EQ("3:3", peer.Ask("fetch 10"));
    EXPECT_EQ("3:3", Fetch(uncounted, 10).Text());
    EXPECT_EQ("3:3", Get(10)) << "opened by index in this process";
    EXPECT_EQ(0u, HXDisableAen(uncounted));
    EXPECT_EQ(0u, peer.Finish());
}

TEST_F(EventProcessesTest, QueuedEventsComeFirstAndTheRestIsQueued) {
    Peer peer;
    HXEnableAen(handle);
    peer.Ask("enable");
    Queue(peer, 1, 3);
    // Room for five: three were queued, two of five new ones are delivered, three are kept.
    driver.Raise(0x8012, 10, 5);
    EXPECT_EQ("2:1 2:2 2:3 3:10 3:11", Get(5));
    EXPECT_EQ("3:12 3:13 3:14", Get(5));
    EXPECT_EQ(Numbers(10, 5, 3), peer.Ask("fetch 32")) << "the others get all of them";

    // A fetch that fails keeps what was delivered before it.
    Queue(peer, 20, 2);
    driver.port.Next({.status = 23});
    const Fetched fetched = Fetch(handle, 8);
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, fetched.status);
    EXPECT_EQ("2:20 2:21", fetched.Text());
    EXPECT_EQ("", Get(8)) << "the mutex was given back, the events are gone";

    // Another handle of the same process does not get what was delivered here, but what was queued.
    const uint32_t second = Open(0);
    HXEnableAen(second);
    Queue(peer, 30, 3);
    driver.Raise(0x8012, 40, 5);
    EXPECT_EQ("2:30 2:31 2:32 3:40 3:41", Get(5));
    EXPECT_EQ("2:30 2:31 2:32 3:42 3:43 3:44", Fetch(second, 32).Text());
    HXDisableAen(second);
}

TEST_F(EventProcessesTest, OtherAdaptersGetNothing) {
    EventDriver other;
    system.AttachScsiPort(5, &other.port);
    const uint32_t second = Open(1);
    Peer peer;  // adapter 0
    HXEnableAen(handle);
    HXEnableAen(second);
    peer.Ask("enable");
    other.Raise(0x8011, 7, 2);
    EXPECT_EQ("2:7 2:8", Fetch(second, 8).Text());
    EXPECT_EQ("", peer.Ask("fetch 8"));
    driver.Raise(0x8011, 1, 1);
    EXPECT_EQ("2:1", Get(8));
    EXPECT_EQ("2:1", peer.Ask("fetch 8"));
    HXDisableAen(second);
    EXPECT_EQ((Masks{0, 0xFFFFFFFF, 0}), other.TakeMasks()) << "counted per adapter";
    EXPECT_EQ(0u, area->registrations[1]);
}

TEST_F(EventProcessesTest, FullRingKeepsTheNewestThirtyOne) {
    Peer peer;
    HXEnableAen(handle);
    peer.Ask("enable");
    Queue(peer, 1, 31);
    EXPECT_EQ(Numbers(1, 31), Get(32));
    Queue(peer, 101, 40);
    EXPECT_EQ(Numbers(110, 31), Get(40));
    // Across the end of the ring, in pieces, while more arrive.
    Queue(peer, 201, 20);
    EXPECT_EQ(Numbers(201, 7), Get(7));
    Queue(peer, 221, 10);
    EXPECT_EQ(Numbers(208, 20), Get(20));
    EXPECT_EQ(Numbers(228, 3), Get(20));
    // Full, emptied by one, filled by two.
    Queue(peer, 301, 31);
    EXPECT_EQ("2:301", Get(1));
    Queue(peer, 332, 2);
    EXPECT_EQ(Numbers(303, 31), Get(32));
    EXPECT_EQ("", Get(32));
    // An enable starts with an empty ring.
    Queue(peer, 401, 5);
    HXEnableAen(handle);
    EXPECT_EQ("", Get(32));
    HXDisableAen(handle);
}

TEST_F(EventProcessesTest, DamagedRingsAreSurvived) {
    Peer peer;
    HXEnableAen(handle);
    peer.Ask("enable");
    frame::EventSlot& slot = OwnSlot();
    for (const uint32_t bad : {32u, 33u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        for (uint32_t* index :
             {&slot.readIndex[handle], &slot.writeIndex[handle], &slot.capacity[handle]}) {
            HXEnableAen(handle);
            *index = bad;
            Queue(peer, 1, 40);
            EXPECT_LE(Fetch(handle, 64).events.size(), 64u);
            *index = bad;
            EXPECT_LE(Fetch(handle, 64).events.size(), 64u);
        }
    }
    EXPECT_EQ(1u, slot.inUse);
    EXPECT_EQ(0u, area->registrations[64]) << "written past the rings";
}

TEST_F(EventProcessesTest, EightProcessesHaveSlots) {
    area->registrations[63] = 77;  // whoever comes later finds the area as it is
    Peers peers;
    for (int i = 0; i < 7; ++i) {
        peers.push_back(std::make_unique<Peer>());
        ASSERT_EQ("0", peers.back()->Ask("enable"));
    }
    EXPECT_EQ(8u, SlotsInUse());
    EXPECT_EQ(77u, area->registrations[63]);
    area->registrations[63] = 0;
    {
        Peer ninth;
        EXPECT_EQ("0", ninth.Ask("enable")) << "it can enable, but not fetch";
        EXPECT_EQ(8u, area->registrations[0]);
        EXPECT_EQ("status 0x20000067", ninth.Ask("fetch 4"));
        EXPECT_EQ("0", ninth.Ask("disable"));
        EXPECT_EQ(0u, ninth.Finish());
        EXPECT_EQ(8u, SlotsInUse()) << "it took nobody's slot with it";
    }
    // All seven get what one process fetches.
    driver.Raise(0x8015, 5);
    EXPECT_EQ("5:5", Get(4));
    for (const auto& peer : peers) {
        EXPECT_EQ("5:5", peer->Ask("fetch 4"));
    }
    FollowTogether(Rounds(2000), peers);
    // A process that ends frees its slot, and the next one finds it empty.
    driver.Raise(0x8015, 6);
    Get(4);
    EXPECT_EQ(0u, peers[3]->Finish());
    EXPECT_EQ(7u, SlotsInUse());
    peers[3] = std::make_unique<Peer>();
    EXPECT_EQ("0", peers[3]->Ask("enable"));
    EXPECT_EQ(8u, SlotsInUse());
    EXPECT_EQ("", peers[3]->Ask("fetch 4"));
    for (const auto& peer : peers) {
        EXPECT_EQ(0u, peer->Finish());
    }
    EXPECT_EQ(1u, SlotsInUse());
}

TEST_F(EventProcessesTest, SlotsOfKilledProcessesAreTakenBack) {
    HXEnableAen(handle);
    Peer living;
    living.Ask("enable");
    for (uint32_t i = 0; i < 9; ++i) {
        Peer killed;
        EXPECT_EQ("0", killed.Ask("enable"));
        EXPECT_EQ("", killed.Ask("fetch 4")) << "process " << i << " has a slot, and an empty one";
        driver.Raise(0x8011, i);
        EXPECT_EQ("2:" + std::to_string(i), Get(4));
        EXPECT_EQ("2:" + std::to_string(i), living.Ask("fetch 4")) << "the living keep theirs";
        killed.Kill();
    }
    EXPECT_EQ(8u, SlotsInUse());
    EXPECT_EQ("0", living.Ask("disable"));
    EXPECT_EQ(0u, HXDisableAen(handle));
    EXPECT_EQ(9u, area->registrations[0]) << "the driver goes on: nobody knows whose they were";
}

TEST_F(EventProcessesTest, KilledProcessKeepsItsSlot) {
    SharedView<frame::FlashLockArea> locks(kFlashLockAreaName);
    const auto taken = [&](uint32_t record) { return locks->locks[record].owner != 0; };
    {
        Peer killed;
        killed.Ask("enable");
        killed.Ask("lock 5");
        killed.Kill();
    }
    EXPECT_EQ(2u, SlotsInUse());
    EXPECT_TRUE(taken(5));
    // The others go on, also with what the dead process left in the counters.
    HXEnableAen(handle);
    driver.Raise(0x8011, 1);
    EXPECT_EQ("2:1", Get(4));

    // One that ends in good order leaves neither slot nor locks.
    Peer orderly;
    orderly.Ask("lock 200");
    EXPECT_TRUE(taken(200));
    EXPECT_EQ(0u, orderly.Finish());
    EXPECT_FALSE(taken(200));
    EXPECT_EQ(0u, locks->locks[200].watchdog);
    EXPECT_TRUE(taken(5)) << "the lock of another process";
    EXPECT_EQ(2u, SlotsInUse());

    locks->locks[5] = {};
}

}  // namespace
