// Loading and unloading beside other processes, and into mappings that others made.
#include <algorithm>

#include "machine/event_peer.h"
#include "machine/private_library.h"

#include <gtest/gtest.h>

namespace {

using namespace support;

constexpr uint32_t kMark = 0x4D41524B;

// A process that loads and unloads the library.
struct LibraryLoader : Peer {
    LibraryLoader() : Peer("process") {}
    std::string Load(const PrivateLibrary& library) { return Ask("load " + library.Path()); }
    void LoadAtGate(const PrivateLibrary& library) { Send("load-at-gate " + library.Path()); }
};

class LibraryLoadTest : public testing::Test {
  protected:
    using EventArea = SharedView<frame::EventArea>;

    static uint32_t SlotsInUse(EventArea& area) {
        return static_cast<uint32_t>(std::ranges::count_if(
            area->slots, [](const frame::EventSlot& slot) { return slot.inUse != 0; }));
    }
    // A slot that is claimed loses its mark.
    static void MarkSlots(EventArea& area) {
        for (frame::EventSlot& slot : area->slots) {
            slot.queue[64][31].code = kMark;
            slot.capacity[7] = 32;
        }
    }
    static std::vector<uint32_t> ClaimedSlots(EventArea& area) {
        std::vector<uint32_t> claimed;
        for (uint32_t slot = 0; slot < frame::kProcessSlots; ++slot) {
            if (area->slots[slot].queue[64][31].code != kMark) {
                EXPECT_EQ(0u, area->slots[slot].capacity[7]);
                claimed.push_back(slot);
            }
        }
        return claimed;
    }

    PrivateLibrary library;
};

TEST_F(LibraryLoadTest, ProcessesThatLoadTogetherGetASlotEach) {
    constexpr int kProcesses = 6;
    LoadGate gate;
    LibraryLoader loaders[kProcesses];
    for (int round = 0; round < 10; ++round) {
        for (LibraryLoader& loader : loaders) {
            loader.LoadAtGate(library);
        }
        gate.Open(kProcesses);
        for (LibraryLoader& loader : loaders) {
            ASSERT_EQ("loaded", loader.Answer());
        }
        {
            EventArea area(PrivateLibrary::kEventAreaName);
            ASSERT_EQ(kProcesses, static_cast<int>(SlotsInUse(area))) << "round " << round;
        }
        // Nobody holds the mappings after this: each round makes them anew.
        for (LibraryLoader& loader : loaders) {
            loader.Ask("unload");
        }
    }
}

TEST_F(LibraryLoadTest, SlotsOfProcessesThatAreGone) {
    std::vector<std::unique_ptr<LibraryLoader>> owners(frame::kProcessSlots);
    for (auto& owner : owners) {
        owner = std::make_unique<LibraryLoader>();
        ASSERT_EQ("loaded", owner->Load(library));
    }
    // This one has no slot, but keeps what is shared in being.
    const HMODULE own = LoadLibraryA(library.Path().c_str());
    ASSERT_NE(nullptr, own);
    EventArea area(PrivateLibrary::kEventAreaName);
    EXPECT_EQ(8u, SlotsInUse(area));

    // The flag of a living process may be cleared by anybody: the slot stays its own.
    MarkSlots(area);
    area->slots[2].inUse = 0;
    LibraryLoader tenth;
    EXPECT_EQ("loaded", tenth.Load(library));
    EXPECT_TRUE(ClaimedSlots(area).empty());
    tenth.Ask("unload");
    EXPECT_EQ(8u, SlotsInUse(area));

    // A process with the ID of the owner that started at another time is another process.
    const std::span<uint8_t> section = SharedSection(own);
    std::span<uint64_t> words(reinterpret_cast<uint64_t*>(section.data()), section.size() / 8);
    const uint32_t third = owners[3]->Number("process");
    const auto record = std::ranges::find_if(
        words, [&](uint64_t word) { return static_cast<uint32_t>(word) == third; });
    ASSERT_NE(words.end(), record);
    *record += uint64_t{1} << 32;
    EXPECT_EQ("loaded", tenth.Load(library));
    EXPECT_EQ((std::vector<uint32_t>{3}), ClaimedSlots(area));
    owners[3]->Ask("unload");
    EXPECT_EQ(8u, SlotsInUse(area)) << "what it gave up was not its own any more";
    tenth.Ask("unload");
    EXPECT_EQ(7u, SlotsInUse(area));
    ASSERT_EQ("loaded", owners[3]->Load(library));

    for (auto& owner : owners) {
        owner->Kill();
    }
    EXPECT_EQ(8u, SlotsInUse(area));
    LibraryLoader others[3];
    LoadGate gate;
    MarkSlots(area);
    for (LibraryLoader& other : others) {
        other.LoadAtGate(library);
    }
    gate.Open(3);
    for (LibraryLoader& other : others) {
        EXPECT_EQ("loaded", other.Answer());
    }
    EXPECT_EQ(3u, ClaimedSlots(area).size()) << "a slot each";
    EXPECT_EQ(8u, SlotsInUse(area));

    // Without a record a slot counts as taken.
    std::ranges::fill(words, 0);
    MarkSlots(area);
    EXPECT_EQ("loaded", tenth.Load(library));
    EXPECT_TRUE(ClaimedSlots(area).empty());
    FreeLibrary(own);
}

// Mappings that somebody made before, with another size or without memory behind them.
TEST_F(LibraryLoadTest, MappingsThatCannotHoldTheAreas) {
    struct {
        const char* name;
        DWORD size, kind;
    } const cases[] = {
        {PrivateLibrary::kEventAreaName, 65536, 0},
        {PrivateLibrary::kEventAreaName, 274432, 0},
        {PrivateLibrary::kEventAreaName, sizeof(frame::EventArea), SEC_RESERVE},
        {PrivateLibrary::kFlashLockAreaName, 1, 0},
        {PrivateLibrary::kFlashLockAreaName, 77824, 0},
        {PrivateLibrary::kFlashLockAreaName, sizeof(frame::FlashLockArea), SEC_RESERVE},
    };
    LibraryLoader loader;
    EXPECT_EQ("loaded", loader.Load(library));
    loader.Ask("unload");
    const uint32_t handles = loader.Number("handles");
    for (const auto& bad : cases) {
        SCOPED_TRACE(std::string(bad.name) + " " + std::to_string(bad.size));
        const HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr,
                                                  PAGE_READWRITE | bad.kind, 0, bad.size, bad.name);
        ASSERT_NE(nullptr, mapping);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ("error 1114", loader.Load(library));  // the library's own load failed
        }
        EXPECT_EQ(handles, loader.Number("handles"));
        CloseHandle(mapping);
    }
    // An area that others use does not keep a claim of a load that failed.
    LibraryLoader other;
    EXPECT_EQ("loaded", other.Load(library));
    {
        EventArea area(PrivateLibrary::kEventAreaName);
        other.Ask("unload");
        const HANDLE locks = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                4096, PrivateLibrary::kFlashLockAreaName);
        EXPECT_EQ("error 1114", loader.Load(library));
        EXPECT_EQ(0u, SlotsInUse(area));
        CloseHandle(locks);
    }
    EXPECT_EQ("loaded", loader.Load(library)) << "nothing of it stayed behind";
    EXPECT_EQ(0u, loader.Finish());
}

}  // namespace
