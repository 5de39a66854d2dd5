// The shared mappings and the shared section are written by anybody, at any moment: a process
// works while threads of its own damage them.
#include <atomic>
#include <random>
#include <sstream>
#include <thread>

#include "machine/event_peer.h"
#include "machine/flash_peer.h"
#include "machine/private_library.h"
#include "support/events_fixture.h"

namespace {

using namespace support;

constexpr uint32_t kHandle = 1;
constexpr uint32_t kShapes[] = {0, 1, 31, 32, 33, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

void Put(void* word, uint32_t value) {
    *static_cast<volatile uint32_t*>(word) = value;
}

class Writer {
  public:
    explicit Writer(std::function<void(std::minstd_rand&)> write)
        : thread_([this, write = std::move(write)] {
              std::minstd_rand random(GetCurrentThreadId());
              while (!stop_) {
                  write(random);
              }
          }) {}
    ~Writer() {
        stop_ = true;
        thread_.join();
    }

  private:
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

void DamageAnywhere(std::span<uint8_t> memory, std::minstd_rand& random) {
    const uint32_t shape = random() % (2 * std::size(kShapes));
    Put(&memory[random() % (memory.size() / 4) * 4],
        shape < std::size(kShapes) ? kShapes[shape] : random());
}

// The rings that a fetch of this process stores into, in all slots.
void DamageRings(frame::EventArea& area, std::minstd_rand& random) {
    frame::EventSlot& slot = area.slots[random() % frame::kProcessSlots];
    Put(&slot.inUse, 1);
    Put(&slot.adapterIndex[kHandle], 0);
    Put(&slot.capacity[kHandle], frame::kRingCapacity);
    Put(&slot.writeIndex[kHandle], 31);
    Put(&slot.readIndex[kHandle], 31);
    Put(&slot.writeIndex[kHandle], 0x7FFFFFF0);
    Put(&slot.readIndex[kHandle], 0x7FFFFFF0);
}

template <typename Area>
std::span<uint8_t> BytesIn(SharedView<Area>& view) {
    return {reinterpret_cast<uint8_t*>(view.operator->()), sizeof(Area)};
}

// A process with an adapter that raises events, and with update locks.
class Victim {
  public:
    Victim() {
        system_.AttachScsiPort(3, &driver_.port);
        SetSerial(driver_.port, "DAMAGED01");
        HXOpenDevice(0, &handle_);
    }

    std::string FetchFor(ULONGLONG milliseconds) {
        const Writer writer([this](auto& random) { DamageRings(*area_.operator->(), random); });
        return Repeat(milliseconds, [this](int) { FetchSome(); });
    }

    std::string WorkFor(ULONGLONG milliseconds) {
        const Writer eventWriter([this](auto& random) {
            DamageAnywhere(BytesIn(area_), random);
            DamageRings(*area_.operator->(), random);
        });
        const std::span<uint8_t> section = SharedSection(LibraryModule());
        const Writer lockWriter([this, section](auto& random) {
            DamageAnywhere(BytesIn(locks_), random);
            DamageAnywhere(section, random);
        });
        return Repeat(milliseconds, [this](int round) {
            HXEnableAen(handle_);
            FetchSome();
            HXDisableAen(handle_);
            if (round % 16 == 0) {
                uint32_t key = 0;
                HXStartFlashUpdate(handle_, 0, &key);
                HXEndFlashUpdate(handle_, 0, key);
            }
            if (round % 256 == 0) {
                UpdateClock::WakeSleepers();
            }
        });
    }

  private:
    template <typename Work>
    std::string Repeat(ULONGLONG milliseconds, Work work) {
        const ULONGLONG end = GetTickCount64() + milliseconds;
        int rounds = 0;
        for (; rounds == 0 || GetTickCount64() < end; ++rounds) {
            work(rounds);
            driver_.TakeMasks();
            driver_.port.Forget();
        }
        return std::to_string(rounds) + " rounds";
    }
    void FetchSome() {
        driver_.Raise(0x8011, 1, 40);
        Fetch(handle_, 8);
        Fetch(handle_, 32);
    }

    FakeSystem system_;
    UpdateClock clock_;
    EventDriver driver_;
    SharedView<frame::EventArea> area_{kEventAreaName};
    SharedView<frame::FlashLockArea> locks_{kFlashLockAreaName};
    uint32_t handle_ = 0;
};
Victim* victim = nullptr;

// "fetch MILLISECONDS" or "work MILLISECONDS"
std::string AnswerVictim(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    ULONGLONG milliseconds = 0;
    words >> verb >> milliseconds;
    return verb == "fetch" ? victim->FetchFor(milliseconds) : victim->WorkFor(milliseconds);
}

int RunVictim() {
    // Never taken down: the process ends with watchdogs still asleep.
    victim = new Victim;
    return AnswerLines(&AnswerVictim);
}

const RoleEntry kVictim("shared-memory-victim", &RunVictim);

// What is shared is the machine's: it is left as it was.
class SharedMemoryTest : public testing::Test {
  protected:
    SharedMemoryTest() {
        for (const std::span<uint8_t> memory : shared_) {
            before_.emplace_back(memory.begin(), memory.end());
        }
    }
    ~SharedMemoryTest() override {
        for (size_t i = 0; i < std::size(shared_); ++i) {
            memcpy(shared_[i].data(), before_[i].data(), before_[i].size());
        }
    }

  private:
    SharedView<frame::EventArea> area_{kEventAreaName};
    SharedView<frame::FlashLockArea> locks_{kFlashLockAreaName};
    std::span<uint8_t> shared_[3] = {BytesIn(area_), BytesIn(locks_),
                                     SharedSection(LibraryModule())};
    std::vector<std::vector<uint8_t>> before_;
};

TEST_F(SharedMemoryTest, FanOutWhileIndexesChange) {
    ChildProcess process("shared-memory-victim");
    EXPECT_TRUE(process.Ask("fetch 1000").ends_with(" rounds"));
    EXPECT_EQ(0u, process.Finish());
}

TEST_F(SharedMemoryTest, WorkWhileEverythingIsDamaged) {
    ChildProcess process("shared-memory-victim");
    ASSERT_TRUE(process.Send("work 2000"));
    for (int i = 0; i < 5; ++i) {
        Peer other("process");  // it loads the library when it starts and unloads it at its end
        EXPECT_NE(0u, other.Number("process"));
        EXPECT_EQ(0u, other.Finish());
    }
    EXPECT_TRUE(process.Answer().ends_with(" rounds"));
    EXPECT_EQ(0u, process.Finish());
}

}  // namespace
