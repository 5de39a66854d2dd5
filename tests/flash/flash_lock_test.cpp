#include <atomic>
#include <random>
#include <thread>

#include "machine/event_peer.h"
#include "machine/flash_driver.h"
#include "machine/flash_peer.h"

namespace {

using namespace support;

const std::string kSerial = "LOCKTEST01";
constexpr uint32_t kUntouched = 0xEEEEEEEE;

class FlashLockTest : public FlashTest {
  protected:
    void SetUp() override {
        memcpy(before_.data(), locks.operator->(), before_.size());
        FlashTest::SetUp();
        SetSerial(*port, kSerial);
    }
    void TearDown() override {
        UpdateClock::WakeSleepers();
        FlashTest::TearDown();
        // The records are the machine's: leave them as they were.
        memcpy(locks.operator->(), before_.data(), before_.size());
    }
    frame::FlashLock& Lock(const std::string& serial = kSerial) {
        const std::string field = "\x01" + serial;
        for (frame::FlashLock& lock : locks->locks) {
            if (field == std::string(lock.serial, strnlen(lock.serial, 32))) {
                return lock;
            }
        }
        ADD_FAILURE() << "no lock of " << serial;
        return locks->locks[0];
    }
    HX_STATUS Start(uint32_t from, uint32_t* key = nullptr) {
        uint32_t unused = kUntouched;
        return HXStartFlashUpdate(from, 0, key != nullptr ? key : &unused);
    }

    UpdateClock clock;
    SharedView<frame::FlashLockArea> locks{kFlashLockAreaName};

  private:
    std::vector<char> before_ = std::vector<char>(sizeof(frame::FlashLockArea));
};

TEST_F(FlashLockTest, OneOfTwoThatStartTogetherHoldsIt) {
    ASSERT_EQ(0u, Start(handle));
    ASSERT_EQ(0u, HXEndFlashUpdate(handle, 0, GetCurrentProcessId()));
    for (const uint32_t earlier : {0u, 8u}) {  // free, or held for too long
        Lock().owner = earlier;
        clock.Advance(901000);
        clock.WhenAsked([&] { Lock().owner = 4; });
        uint32_t key = kUntouched;
        EXPECT_EQ(HXMGT_SESSION_IN_PROGRESS, Start(handle, &key)) << earlier;
        EXPECT_EQ(0u, key);
        EXPECT_EQ(4u, Lock().owner) << "the one that was quicker keeps it";
    }
    Lock().owner = 0;
}

TEST_F(FlashLockTest, OneHolderForAllPortsOfAnAdapter) {
    ScriptedPort& second = AddPort(4);
    SetSerial(second, kSerial);
    ScriptedPort& other = AddPort(5);
    SetSerial(other, "LOCKTEST02");
    const uint32_t secondHandle = Open(1);
    const uint32_t otherHandle = Open(2);

    const uint32_t self = GetCurrentProcessId();
    uint32_t key = kUntouched;
    clock.Set(4711);
    ASSERT_EQ(0u, Start(handle, &key));
    EXPECT_EQ(self, key);
    ASSERT_TRUE(UpdateClock::AwaitSleeper());
    EXPECT_EQ(self, Lock().owner);
    EXPECT_EQ(4711u, Lock().startTick);
    EXPECT_NE(0u, Lock().watchdog);

    for (const uint32_t refused : {handle, secondHandle}) {
        key = kUntouched;
        EXPECT_EQ(HXMGT_SESSION_IN_PROGRESS, Start(refused, &key));
        EXPECT_EQ(0u, key);
    }
    EXPECT_EQ(0u, Start(otherHandle));
    EXPECT_NE(&Lock(), &Lock("LOCKTEST02"));

    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXEndFlashUpdate(handle, 0, 0));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXEndFlashUpdate(handle, 0, self + 4));
    EXPECT_EQ(0u, HXEndFlashUpdate(secondHandle, 0, self)) << "the other port of the adapter";
    EXPECT_EQ(0u, Lock().owner);
    EXPECT_EQ(0u, Lock().watchdog);
    EXPECT_EQ(4711u, Lock().startTick);
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXEndFlashUpdate(handle, 0, self));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXEndFlashUpdate(handle, 0, 0)) << "free, and key 0";
    const frame::FlashLock* const lock = &Lock();
    EXPECT_EQ(0u, Start(secondHandle));
    EXPECT_EQ(lock, &Lock()) << "it keeps its record";
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, self));
    EXPECT_EQ(0u, HXEndFlashUpdate(otherHandle, 0, self));
}

TEST_F(FlashLockTest, HeldFor900SecondsAndTakenOverAfterwards) {
    for (const uint32_t start : {1000u, 0xFFFFFFFFu - 450000u}) {
        clock.Set(start);
        ASSERT_EQ(0u, Start(handle));
        ASSERT_TRUE(UpdateClock::AwaitSleeper());
        HANDLE first = nullptr;
        ASSERT_TRUE(DuplicateHandle(
            GetCurrentProcess(), reinterpret_cast<HANDLE>(static_cast<uintptr_t>(Lock().watchdog)),
            GetCurrentProcess(), &first, 0, FALSE, DUPLICATE_SAME_ACCESS));
        clock.Set(start + 900999);
        EXPECT_EQ(HXMGT_SESSION_IN_PROGRESS, Start(handle));
        clock.Set(start + 901000);
        uint32_t key = 0;
        EXPECT_EQ(0u, Start(handle, &key));
        EXPECT_EQ(GetCurrentProcessId(), key);
        EXPECT_EQ(start + 901000, Lock().startTick);
        // The watchdog of a take-over watches no adapter: it ends at once and frees nothing.
        const auto watchdog = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(Lock().watchdog));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(watchdog, 5000));
        EXPECT_EQ(key, Lock().owner);
        // The old one goes on, and frees the lock of whoever holds it when it wakes.
        UpdateClock::WakeSleepers();
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(first, 5000));
        CloseHandle(first);
        EXPECT_EQ(0u, Lock().owner);
        EXPECT_EQ(0u, Lock().watchdog);
        EXPECT_EQ(start + 901000, Lock().startTick);
    }
}

TEST_F(FlashLockTest, WatchdogThatIsStoppedFreesNothing) {
    ASSERT_EQ(0u, Start(handle));
    ASSERT_TRUE(UpdateClock::AwaitSleeper());
    ASSERT_EQ(0u, HXEndFlashUpdate(handle, 0, GetCurrentProcessId()));
    ASSERT_EQ(0u, Start(handle));
    ASSERT_TRUE(UpdateClock::AwaitSleeper());
    Lock().owner = 4;
    Lock().watchdog = 0;  // of another process: ending must not touch our threads or handles
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, 4));
    EXPECT_EQ(0u, Lock().owner);
    // Starting and ending at once, a watchdog is never stopped while it looks for its lock.
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(0u, Start(handle));
        ASSERT_EQ(0u, HXEndFlashUpdate(handle, 0, GetCurrentProcessId()));
    }
}

TEST_F(FlashLockTest, AcrossProcesses) {
    Peer peer("open " + kSerial);
    const uint32_t theirs = peer.Number("process");
    char expected[32];
    snprintf(expected, sizeof expected, "0 %x", theirs);
    EXPECT_EQ(expected, peer.Ask("start"));
    EXPECT_EQ(HXMGT_SESSION_IN_PROGRESS, Start(handle));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXEndFlashUpdate(handle, 0, GetCurrentProcessId()));
    // Whoever has the key ends it; the watchdog handle of another process means nothing here.
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, theirs));
    EXPECT_EQ(0u, Start(handle));
    EXPECT_EQ("200000c0 0", peer.Ask("start"));
    EXPECT_EQ("20000073", peer.Ask("end " + std::to_string(theirs)));
    EXPECT_EQ("0", peer.Ask("end " + std::to_string(GetCurrentProcessId())));
    EXPECT_EQ(0u, Lock().owner);

    // A holder that ends gives its lock back; one that is killed leaves it to the clock.
    EXPECT_EQ(expected, peer.Ask("start"));
    EXPECT_EQ(0u, peer.Finish());
    EXPECT_EQ(0u, Lock().owner);
    EXPECT_EQ(0u, Lock().startTick);
    Peer killed("open " + kSerial);
    const uint32_t dead = killed.Number("process");
    killed.Ask("start");
    const uint32_t start = Lock().startTick;
    killed.Kill();
    EXPECT_EQ(dead, Lock().owner);
    clock.Set(start + 900000);
    EXPECT_EQ(HXMGT_SESSION_IN_PROGRESS, Start(handle));
    clock.Set(start + 901000);
    EXPECT_EQ(0u, Start(handle));
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, GetCurrentProcessId()));
}

// A process that unloads the library takes its watchdogs along, whoever has the lock by then.
TEST_F(FlashLockTest, UnloadAfterAnotherProcessHadTheLock) {
    for (const bool takenOver : {false, true}) {
        SCOPED_TRACE(takenOver);
        Peer peer("copy " + kSerial);
        ASSERT_TRUE(peer.Ask("guard").starts_with("0 "));
        const uint32_t theirs = peer.Number("process");
        ASSERT_EQ(theirs, Lock().owner);
        if (takenOver) {
            clock.Set(Lock().startTick + 901000);
            ASSERT_EQ(0u, Start(handle));
        } else {
            ASSERT_EQ(0u, HXEndFlashUpdate(handle, 0, theirs));
        }
        peer.Ask("unload");
        EXPECT_EQ("gone ended", peer.Ask("wake"));
        EXPECT_EQ(takenOver ? GetCurrentProcessId() : 0, Lock().owner);
        EXPECT_EQ(0u, peer.Finish());
        HXEndFlashUpdate(handle, 0, GetCurrentProcessId());
    }
}

TEST_F(FlashLockTest, UnloadWhileAWatchdogAsksItsDriver) {
    Peer peer("copy " + kSerial);
    ASSERT_TRUE(peer.Ask("hang").starts_with("0 "));
    EXPECT_EQ("loaded", peer.Ask("unload")) << "its code is still needed";
    EXPECT_EQ(peer.Number("process"), Lock().owner);
    EXPECT_EQ("gone ended", peer.Ask("answer"));
    EXPECT_EQ(0u, Lock().owner) << "given back";
    EXPECT_EQ(0u, peer.Finish());
}

// Any process can write the records, at any time.
TEST_F(FlashLockTest, RecordsThatChangeAllTheTime) {
    Peer peer("open " + kSerial);
    const uint32_t theirs = peer.Number("process");
    peer.Ask("start");
    frame::FlashLock* const lock = &Lock();
    std::atomic<bool> ends{false};
    std::thread writer([&] {
        std::minstd_rand random(5);
        while (!ends) {
            const uint32_t owners[] = {0, theirs, static_cast<uint32_t>(random())};
            lock->owner = owners[random() % 3];
            lock->startTick = static_cast<uint32_t>(random());
            lock->watchdog = random() % 1024 * 4;
            lock->serial[random() % 32] = static_cast<char>(random() % 3);
            snprintf(lock->serial, 32, "\x01%s", kSerial.c_str());
        }
    });
    EXPECT_EQ("done", peer.Ask("rounds 300"));
    ends = true;
    writer.join();
    EXPECT_EQ(0u, peer.Finish());
}

// What stands in the shared record as a thread handle is somebody's number and no handle.
TEST_F(FlashLockTest, ThreadHandlesOfTheRecordAreNotUsed) {
    const HANDLE ours = CreateThread(
        nullptr, 0, [](void*) -> DWORD { return 0; }, nullptr, 0, nullptr);
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ours, 5000));
    ASSERT_EQ(0u, Start(handle));
    ASSERT_TRUE(UpdateClock::AwaitSleeper());
    const auto watchdog = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(Lock().watchdog));
    HANDLE kept = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), watchdog, GetCurrentProcess(), &kept, 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    Lock().watchdog = reinterpret_cast<uintptr_t>(ours);
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, GetCurrentProcessId()));
    EXPECT_NE(0u, GetThreadId(ours)) << "still open";
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(kept, 5000)) << "the watchdog itself is ended";
    CloseHandle(kept);
    CloseHandle(ours);
}

TEST_F(FlashLockTest, AdaptersWithoutARecord) {
    for (size_t i = 0; i < std::size(locks->locks); ++i) {
        snprintf(locks->locks[i].serial, 32, "\x01TAKEN%zu", i);
    }
    uint32_t key = kUntouched;
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Start(handle, &key));
    EXPECT_EQ(kUntouched, key);
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXEndFlashUpdate(handle, 0, 0));
    memset(locks->locks[0].serial, 'A', 32);  // without an end
    memset(locks->locks[200].serial, 0, 32);
    EXPECT_EQ(0u, Start(handle, &key));
    EXPECT_EQ(&locks->locks[200], &Lock());
    ASSERT_TRUE(UpdateClock::AwaitSleeper());
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, key));

    // Without a serial number there is nothing to bind a record to, free or not.
    SetText(port->node.manufacturerAndSerial, "");
    port->AnswerProbes();
    memset(locks->locks[100].serial, 0, 32);
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Start(handle));
    port->On(command::NodeProperties, Reply{.status = 21});
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Start(handle));
}

TEST_F(FlashLockTest, UpdatesNeedTheLock) {
    StartWith(0x7700, {{1, 16}, {3, 16}, {103, 16}, {242, 16}});
    SetSerial(*port, kSerial);
    port->On(command::RestartFirmware, Reply{});
    Bytes image(16, 1);
    const auto update = [&](uint32_t region) {
        return HXUpdateOptionRomEx2(handle, 0, image.data(), 16, region);
    };
    EXPECT_EQ(0u, update(1)) << "before the capabilities are known";
    uint64_t capabilities = 0;
    SetText(port->node.firmwareVersion, "9.1.16.20");
    port->AnswerProbes();
    ASSERT_EQ(0u, HXGetFlashUpdateCapabilities(handle, 0, &capabilities));
    for (const uint32_t region : {1u, 103u, 242u}) {
        EXPECT_EQ(HXMGT_NO_FLASH_UPDATE_TOKEN, update(region));
        EXPECT_EQ(HXMGT_NO_FLASH_UPDATE_TOKEN,
                  HXUpdateSecureOptionRomEx(handle, 0, image.data(), 16, region));
    }
    EXPECT_EQ(0u, update(3)) << "a region that needs none";
    EXPECT_EQ(2u, Writes().size());
    uint32_t key = 0;
    ASSERT_EQ(0u, Start(handle, &key));
    EXPECT_EQ(0u, update(1));
    EXPECT_EQ(0u, update(242));
    Lock().owner = key + 4;
    EXPECT_EQ(HXMGT_NO_FLASH_UPDATE_TOKEN, update(1)) << "taken over";
    Lock().owner = key;
    EXPECT_EQ(0u, HXEndFlashUpdate(handle, 0, key));
}

}  // namespace
