// What adapters store outlasts the driver: whatever it is that was written, wherever the host was
// killed, and not when the file is not what was left.
#include "machine/disk.h"
#include "machine/emulator_flash.h"
#include "model/storage/flash_file.h"
#include "model/storage/nvram_content.h"

namespace {

using namespace emulator_test;
using vxemu::FlashKeep;

constexpr uint16_t kKeptFirmware = 1;
constexpr uint16_t kClassicFlash = 255;
constexpr const char* kClassicName = "EMU7300.flash";

class EmulatorKeeping : public EmulatorFlashFixture {
  protected:
    void SetUp() override {
        host_.files = disk_.Files();
        Start("lab");
    }
    void TearDown() override {
        EmulatorFlashFixture::TearDown();
        EXPECT_EQ(disk_.OpenFiles(), 0u);
    }
    // The driver's end, and its start on the disk as it is now. A host that is killed ends the same
    // way, since nothing is written at the end.
    void Restart(const vxemu::Profile& profile) {
        const size_t changes = disk_.Changes().size();
        vxemu::Model::Destroy(model_);
        EXPECT_EQ(disk_.Changes().size(), changes);
        model_ = nullptr;
        Start(profile);
    }
    void Restart() { Restart(*MakeProfile("lab")); }

    // One adapter with the smallest flash, and its image to be written a piece at a time.
    static std::unique_ptr<vxemu::Profile> Classic(const char* serial = "EMU7300") {
        auto profile = MakeProfile("lab");
        profile->adapterCount = 1;
        profile->portCount = 1;
        profile->adapters[0] = vxemu::DefaultAdapter(0x7300, vxemu::DriverGeneration::Extended);
        std::strcpy(profile->adapters[0].serial, serial);
        return profile;
    }
    Answer WritePiece(uint32_t at, uint8_t value, uint32_t length = 5000) {
        return WriteAt(0, at, Bytes(length, value), length);
    }
    Bytes Nvram(uint32_t port, uint32_t length) {
        return Ask(port, {NvramRead.code, 0}, length).data;
    }
    FlashKeep Keep(uint32_t scsiPort) {
        EXPECT_EQ(Report(scsiPort)->keep, Status().ports[0].flash);
        return Report(scsiPort)->keep;
    }
    // All that an adapter with a classic chip stores.
    std::vector<Bytes> Stored() {
        return {ReadRegion(0, kClassicFlash), Nvram(0, 256), Ask(0, VpdRead, 256).data};
    }

    support::Disk disk_;
};

TEST_F(EmulatorKeeping, EverythingStoredIsThereAfterARestart) {
    EXPECT_TRUE(disk_.Content().empty()) << "nothing written, nothing to keep";
    // Firmware that was not activated: a restart is a power cycle.
    const Bytes firmware = WithVersion(ReadRegion(kNewest, kKeptFirmware), 9, 13, 4, 0x7740);
    EXPECT_EQ(WriteRegion(kNewest, kKeptFirmware, firmware).Status(), Success);
    // Settings that wait in the other bank of one port, and are in use at the other one.
    Bytes block = ReadRegion(kNewest, 269);
    flash::SetVariable(block, flash::BlockKind::Extended, vxemu::nvram_variable::kExecutionThrottle,
                       77);
    formats::MakeChecksum(flash::BlockKind::Extended, block);
    EXPECT_EQ(WriteRegion(kNewest, 269, block).Status(), Success);
    Bytes second = ReadRegion(1, 271);
    std::swap(second[400], second[404]);
    EXPECT_EQ(WriteRegion(1, 271, second).Status(), Success);
    EXPECT_EQ(EmulatorFlashFixture::Restart(1, flash::Restart::ReloadNvram), Success);
    // A transceiver's user bytes, and the companion chip's firmware.
    flash::TwoWireRecord user = {};
    user.device = 0xA0;
    user.offset = 96;
    user.length = 4;
    user.data[0] = 0x5A;
    EXPECT_EQ(Ask(1, I2cWrite, sizeof user, BytesOf(user)).Status(), Success);
    flash::CompanionSegmentRecord segment = {};
    segment.totalSize = 4;
    segment.segmentSize = 4;
    segment.segmentCount = 1;
    segment.firmwareVersion = 0x00020500;
    segment.flags = flash::kCompanionLastSegment;
    EXPECT_EQ(Ask(0, {AuxiliaryFirmware.code, HX_COMPANION_UPDATE}, 256, BytesOf(segment, Bytes(4)))
                  .Status(),
              Success);
    // Damage lasts as well.
    EXPECT_EQ(Control(control::kFlashCorrupt, vxemu::FlashSelector{6, 7, 5000}), Done);
    const auto before = ReadAll(kNewest);
    const auto beforeLarge = ReadAll(kLargeRom);
    EXPECT_EQ(RunningFirmware(kNewest), "9.12.01");

    for (int turn = 0; turn < 2; ++turn) {
        Restart();
        EXPECT_EQ(Keep(3), FlashKeep::Kept);
        EXPECT_EQ(RunningFirmware(kNewest), "9.13.04");
        EXPECT_EQ(RunningFirmware(1), "9.13.04");
        auto after = ReadAll(kNewest);
        EXPECT_EQ(after.at(20), before.at(20));
        after.at(268) = before.at(268);  // the VPD goes along to the bank that is taken over
        EXPECT_EQ(after, before);
        EXPECT_EQ(ReadAll(kLargeRom), beforeLarge);
        EXPECT_EQ(Nvram(kNewest, 512), block);
        EXPECT_EQ(Nvram(1, 512), second);
        EXPECT_EQ(Report(4)->secondBank, 1);
        const auto properties = Ask(kNewest, PortPropertiesV2, sizeof(properties::PortReplyV2))
                                    .As<properties::PortReplyV2>();
        EXPECT_EQ(+properties.executionThrottle, 77);
        EXPECT_EQ(Ask(1, I2cRead, sizeof user, BytesOf(user)).As<flash::TwoWireRecord>().data[0],
                  0x5A);
        const Bytes companion =
            Ask(0, {AuxiliaryFirmware.code, HX_COMPANION_VERSION}, 4, Bytes(4)).data;
        EXPECT_EQ(companion, BytesOf(uint32_t{0x00020500}));
    }
    EXPECT_EQ(disk_.Content().size(), 2u) << "a file for each adapter that was written to";

    // As delivered again, at once and after the next start.
    Start("lab");
    ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{3, 0}), Done);
    ASSERT_EQ(WriteRegion(kNewest, 102, Bytes(1)).completion, NoDevice);
    ASSERT_EQ(Control(control::kFlashReset, PortSelector{4}), Done);
    EXPECT_EQ(disk_.Content().size(), 1u);
    const auto reset = ReadAll(kNewest);
    EXPECT_EQ(RunningFirmware(kNewest), "9.12.01");
    EXPECT_EQ(Report(4)->secondBank, 0);
    EXPECT_EQ(ReadAll(kLargeRom), beforeLarge) << "another adapter's";
    ASSERT_EQ(Control(control::kFlashReset, PortSelector{kAnyPort}), Done);
    EXPECT_EQ(Control(control::kFlashReset, PortSelector{5}), NoDevice);
    EXPECT_TRUE(disk_.Content().empty());
    host_.files = nullptr;
    Start("lab");
    EXPECT_EQ(ReadAll(kNewest), reset);
    EXPECT_EQ(Keep(3), FlashKeep::Nowhere);
    host_.files = disk_.Files();
}

TEST_F(EmulatorKeeping, ClassicChipsKeepTheirSettings) {
    Restart(*Classic());
    Bytes block = Nvram(0, 256);
    flash::SetVariable(block, flash::BlockKind::Classic, vxemu::nvram_variable::kExecutionThrottle,
                       19);
    EXPECT_EQ(Ask(0, {NvramWrite.code, 1}, 0, block).Status(), Success);
    Bytes vpd = Ask(0, VpdRead, 256).data;
    vpd[200] ^= 1;
    EXPECT_EQ(Ask(0, VpdWrite, 0, vpd).Status(), Success);
    EXPECT_EQ(WritePiece(100, 0x11).Status(), Success);
    const auto stored = Stored();
    Restart(*Classic());
    EXPECT_EQ(Stored(), stored);
    EXPECT_EQ(flash::GetVariable(Nvram(0, 256), flash::BlockKind::Classic,
                                 vxemu::nvram_variable::kExecutionThrottle),
              19u);
}

// Whatever was answered is there, and of the request under way all or nothing.
TEST_F(EmulatorKeeping, HostsThatAreKilledLoseNothing) {
    Restart(*Classic());
    struct Request {
        std::function<Answer()> send;
        size_t changes = 0;  // of the disk, once it was answered
        std::vector<Bytes> stored{};
    };
    const Bytes block = Nvram(0, 256);
    std::vector<Request> requests = {
        {[] { return Answer(); }},
        {[&] { return WritePiece(0, 0x11); }},
        {[&] { return WritePiece(4000, 0x22); }},
        {[&] {
            return Ask(0, {NvramWrite.code, 0}, 0, Bytes(block.rbegin(), block.rend()));
        }},
        {[&] { return WriteAt(0, 0, Bytes(131072, 0x33), 131072); }},
        {[&] { return Ask(0, VpdWrite, 0, Bytes(7, 0x44)); }},
        {[&] { return WritePiece(131072 - 256, 0x55, 256); }},
    };
    for (Request& request : requests) {
        EXPECT_EQ(request.send().Status(), Success);
        request.changes = disk_.Changes().size();
        request.stored = Stored();
    }
    ASSERT_EQ(requests[0].changes, 0u);
    const std::vector<support::Disk::Change> changes = disk_.Changes();
    size_t answered = 0;
    for (size_t count = 0; count <= changes.size(); ++count) {
        while (answered + 1 < requests.size() && requests[answered + 1].changes <= count) {
            ++answered;
        }
        const size_t size = count < changes.size() ? changes[count].bytes.size() : 0;
        for (const size_t bytes :
             std::set<size_t>{0, std::min(size, size_t{1}), size / 2, size - (size != 0)}) {
            SCOPED_TRACE(std::to_string(count) + " changes and " + std::to_string(bytes));
            support::Disk left(changes, count, bytes);
            host_.files = left.Files();
            Start(*Classic());
            EXPECT_EQ(Keep(3), FlashKeep::Kept);
            const auto stored = Stored();
            const bool next =
                answered + 1 < requests.size() && stored == requests[answered + 1].stored;
            EXPECT_TRUE(next || stored == requests[answered].stored);
            // It goes on from there.
            EXPECT_EQ(WritePiece(60000, 0x66).Status(), Success);
            const auto after = Stored();
            Start(*Classic());
            EXPECT_EQ(Stored(), after);
            vxemu::Model::Destroy(model_);
            model_ = nullptr;
        }
    }
    EXPECT_EQ(answered + 1, requests.size());
    host_.files = nullptr;
}

TEST_F(EmulatorKeeping, FilesAreWrittenAnewBeforeTheyGrowWithoutEnd) {
    Restart(*Classic());
    size_t longest = 0;
    for (uint32_t turn = 0; turn < 100; ++turn) {
        disk_.noNewFiles = turn > 20 && turn < 60;  // then the old one still does
        ASSERT_EQ(WriteAt(0, 0, Bytes(131072, static_cast<uint8_t>(turn)), 131072).Status(),
                  Success);
        ASSERT_EQ(WritePiece(turn * 256, 0xEE, 256).Status(), Success);
        longest = std::max(longest, disk_.Content().at(kClassicName).size());
    }
    EXPECT_LT(longest, 10u << 20);
    EXPECT_EQ(Keep(3), FlashKeep::Kept);
    EXPECT_EQ(disk_.Content().size(), 1u);
    const auto stored = Stored();
    // Killed between the old file and the new one, at any of the steps.
    const auto& changes = disk_.Changes();
    size_t rename = changes.size() - 1;
    while (changes[rename].kind != support::Disk::Change::Rename) {
        --rename;
    }
    size_t create = rename;
    while (changes[create].kind != support::Disk::Change::Create) {
        --create;
    }
    ASSERT_GT(create, 0u);
    std::vector<Bytes> expected;
    for (size_t count = create; count <= rename + 1; count += count + 9 < rename ? 9 : 1) {
        support::Disk left(changes, count, 0);
        host_.files = left.Files();
        Start(*Classic());
        expected = expected.empty() ? Stored() : expected;
        EXPECT_EQ(Stored(), expected) << count;
        vxemu::Model::Destroy(model_);
        model_ = nullptr;
    }
    host_.files = disk_.Files();
    Start(*Classic());
    EXPECT_EQ(Stored(), stored);
}

TEST_F(EmulatorKeeping, FilesThatAreNotWhatWasLeftAreNotUsed) {
    Restart(*Classic());
    const auto delivered = Stored();
    for (uint32_t at = 0; at < 4; ++at) {
        EXPECT_EQ(WritePiece(at * 256, 0x22, 256).Status(), Success);
    }
    const auto stored = Stored();
    const Bytes sound = disk_.Content().at(kClassicName);
    // What becomes of another file in its place.
    const auto with = [&](const Bytes& file, const vxemu::Profile& profile) {
        disk_.Content()[kClassicName] = file;
        Restart(profile);
        const FlashKeep keep = Keep(3);
        if (keep != FlashKeep::Kept) {
            EXPECT_EQ(Stored(), delivered);
            EXPECT_EQ(WritePiece(512, 0x77).Status(), Success);
            EXPECT_EQ(disk_.Content().at(kClassicName), file) << "it was touched";
            EXPECT_EQ(Control(control::kFlashReset, PortSelector{3}), Done);
            EXPECT_EQ(Keep(3), FlashKeep::Kept);
            EXPECT_FALSE(disk_.Content().contains(kClassicName));
        } else {
            EXPECT_EQ(Stored(), stored);
        }
        return keep;
    };
    const auto profile = Classic();
    EXPECT_EQ(with(sound, *profile), FlashKeep::Kept);
    for (const size_t size : {size_t{0}, size_t{1}, size_t{63}, size_t{4095}, size_t{4096},
                              size_t{4120}, sound.size() - 1}) {
        EXPECT_EQ(with({sound.begin(), sound.begin() + static_cast<ptrdiff_t>(size)}, *profile),
                  FlashKeep::Truncated)
            << size;
    }
    Bytes longer = sound;
    longer.resize(sound.size() + 100, 0x99);
    EXPECT_EQ(with(longer, *profile), FlashKeep::Kept) << "what was never completed";
    // One bit anywhere. What is committed stands there twice.
    const auto step = [](size_t at) {
        return at < 64 ? 1 : at < 4096 ? 64 : at < 4120 ? 1 : size_t{211};
    };
    for (size_t at = 0; at < sound.size(); at += step(at)) {
        Bytes damaged = sound;
        damaged[at] ^= 0x10;
        const FlashKeep expected = at < 12                 ? FlashKeep::Foreign  // mark, version
                                   : at < 64 || at >= 4096 ? FlashKeep::Damaged
                                                           : FlashKeep::Kept;
        ASSERT_EQ(with(damaged, *profile), expected) << at;
    }
    Bytes both = sound;
    both[512] ^= 1;
    both[1024] ^= 1;
    EXPECT_EQ(with(both, *profile), FlashKeep::Damaged);
    // Another adapter's, by serial, by chip, or by what it was delivered with.
    EXPECT_EQ(with(Bytes(8192, 'x'), *profile), FlashKeep::Foreign);
    auto other = Classic("EMU-7300");
    disk_.Content()["EMU-7300.flash"] = sound;
    Restart(*other);
    EXPECT_EQ(Keep(3), FlashKeep::Foreign);
    other = Classic();
    other->adapters[0].deviceId = 0x7312;
    disk_.Content()[kClassicName] = sound;
    Restart(*other);
    EXPECT_EQ(Keep(3), FlashKeep::Foreign);
    other = Classic();
    std::strcpy(other->adapters[0].optionRomVersion, "1.99");
    Restart(*other);
    EXPECT_EQ(Keep(3), FlashKeep::Foreign);
}

// A record whose sum holds can still say what cannot be.
TEST_F(EmulatorKeeping, RecordsThatDoNotFitTheAdapter) {
    using Kind = vxemu::FlashRecordKind;
    struct Row {
        Kind kind;
        uint32_t length;
        uint32_t offset;
        FlashKeep keep;
    };
    constexpr Row kRows[] = {
        {Kind::Bytes, 256, 131072 - 256, FlashKeep::Kept},
        {Kind::Bytes, 256, 131072 - 255, FlashKeep::Damaged},
        {Kind::Bytes, 1, 0xFFFFFFFF, FlashKeep::Damaged},
        {Kind::Port, 3, 0, FlashKeep::Damaged},  // of no port
        {Kind::Eeprom, 256, 0, FlashKeep::Damaged},
        {Kind::Companion, 3, 0, FlashKeep::Damaged},
        {Kind{9}, 4, 0, FlashKeep::Damaged},
    };
    Restart(*Classic());
    EXPECT_EQ(WritePiece(0, 1, 256).Status(), Success);
    const Bytes sound = disk_.Content().at(kClassicName);
    for (const Row& row : kRows) {
        disk_.Content()[kClassicName] = sound;
        vxemu::Model::Destroy(model_);
        model_ = nullptr;
        vxemu::FlashFile file = {};
        ASSERT_EQ(file.Open(*disk_.Files(), kClassicName), vxemu::FileFound::Opened);
        vxemu::FlashFileHead head;
        std::memcpy(&head, sound.data(), sizeof head);
        ASSERT_EQ(file.Check(head), FlashKeep::Kept);
        ASSERT_TRUE(file.Append({row.kind, row.length, row.offset, {}, 0}, Bytes(256).data()));
        ASSERT_TRUE(file.Commit());
        file.Close();
        Start(*Classic());
        EXPECT_EQ(Keep(3), row.keep) << static_cast<uint32_t>(row.kind) << " " << row.offset;
    }
}

TEST_F(EmulatorKeeping, DisksAndMemoryThatFail) {
    Restart(*Classic());
    EXPECT_EQ(WritePiece(0, 0x11).Status(), Success);
    const auto stored = Stored();
    disk_.full = true;
    EXPECT_EQ(WritePiece(0, 0x22).Status(), Success) << "the adapter goes on";
    EXPECT_EQ(Keep(3), FlashKeep::Failed);
    EXPECT_NE(Stored(), stored);
    disk_.full = false;
    EXPECT_EQ(WritePiece(0, 0x33).Status(), Success);
    Restart(*Classic());
    EXPECT_EQ(Stored(), stored);
    disk_.broken = true;
    EXPECT_EQ(Control(control::kFlashReset, PortSelector{3}), Completion::Busy);
    EXPECT_EQ(Stored(), stored);
    Restart(*Classic());
    EXPECT_EQ(Keep(3), FlashKeep::Failed);
    disk_.broken = false;
    for (int failing = 0;; ++failing) {
        vxemu::Model::Destroy(model_);
        host_.failAt = failing;
        model_ = vxemu::Model::Create(host_.Get(), *Classic());
        const bool reached = host_.failAt < 0;
        host_.failAt = -1;
        if (model_ == nullptr) {
            continue;
        }
        EXPECT_EQ(Stored() == stored, Keep(3) == FlashKeep::Kept) << failing;
        if (!reached) {
            EXPECT_EQ(Keep(3), FlashKeep::Kept);
            break;
        }
    }
    // Two adapters of one serial: the file is the first one's that needs it.
    auto twins = MakeProfile("lab");
    std::strcpy(twins->adapters[1].serial, twins->adapters[0].serial);
    Restart(*twins);
    EXPECT_EQ(WriteRegion(kNewest, 102, Bytes(1)).Status(), Success);
    EXPECT_EQ(WriteRegion(kLargeRom, 1, Bytes(1)).Status(), Success);
    EXPECT_EQ(Report(3)->keep, FlashKeep::Kept);
    EXPECT_EQ(Report(6)->keep, FlashKeep::Failed);
}

}  // namespace
