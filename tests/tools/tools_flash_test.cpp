// What vxmgr makes of flash images before anything is written: what they are, whether they are
// whole, and whether they belong to an adapter and region.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "support/rom_builder.h"
#include "vxmgr/flash/flash_image.h"
#include "vxmgr/flash/flash_image_check.h"
#include "vxmgr/flash/flash_lock_table.h"
#include "vxmgr/flash/flash_regions.h"

namespace {

using namespace vxmgr;
using formats::FirmwareHead;
using formats::RomCode;
using support::PutWord;
using Data = std::vector<uint8_t>;

constexpr uint16_t kVendor = 0x1ED0;
constexpr uint16_t kChip = 0x7740;
constexpr size_t kDataAt = 0x40;

void Put16(Data& bytes, size_t at, uint32_t value) {
    bytes[at] = static_cast<uint8_t>(value);
    bytes[at + 1] = static_cast<uint8_t>(value >> 8);
}

// The last byte makes all bytes add up to 0.
void FixSum(Data& rom) {
    rom.back() = 0;
    rom.back() = static_cast<uint8_t>(0 - std::accumulate(rom.begin(), rom.end(), 0));
}

Data Rom(RomCode code, bool last, uint8_t major, uint8_t minor, uint16_t device = kChip,
         uint16_t another = 0) {
    Data rom = support::MakeRom({.code = code,
                                 .last = last,
                                 .major = major,
                                 .minor = minor,
                                 .vendor = kVendor,
                                 .device = device});
    if (another != 0) {
        Put16(rom, kDataAt + 8, 0x30);  // from the description on
        Put16(rom, kDataAt + 0x30, another);
        Put16(rom, kDataAt + 0x32, 0);
    }
    rom[rom.size() - 2] = 0;
    FixSum(rom);
    return rom;
}

Data BootCode(uint8_t major = 3, uint8_t minor = 61, uint16_t device = kChip) {
    Data image = support::Chain({Rom(RomCode::Bios, false, major, minor, device),
                                 Rom(RomCode::Fcode, false, 4, 5, device),
                                 Rom(RomCode::Efi, true, 7, 24, device)});
    image.resize(8192, 0xFF);
    return image;
}

Data Firmware(uint32_t major = 9, uint32_t minor = 12, uint32_t patch = 1, uint32_t build = 0,
              uint32_t device = kChip) {
    return support::MakeFirmware(64, 32, 256, {major, minor, patch, build, device});
}

TEST(ToolsFlashRom, ChainTellsEveryImage) {
    Data bytes = support::Chain(
        {Rom(RomCode::Bios, false, 3, 61, kChip, 0x7742), Rom(RomCode::Efi, true, 7, 4)});
    const size_t used = bytes.size();
    bytes.resize(used + 100, 0xFF);
    const RomChain chain = DecodeRomChain(bytes);
    EXPECT_EQ("", chain.problem);
    EXPECT_EQ(used, chain.bytes);
    ASSERT_EQ(2u, chain.images.size());
    EXPECT_EQ("3.61", chain.images[0].version);
    EXPECT_EQ("7.04", chain.images[1].version);
    EXPECT_EQ((std::vector<uint16_t>{kChip, 0x7742}), chain.images[0].devices);
    EXPECT_EQ(kVendor, chain.images[0].vendorId);
    EXPECT_EQ(1024u, chain.images[1].offset);
    EXPECT_EQ(Sum::Good, chain.images[0].checksum);
    EXPECT_EQ(Sum::None, chain.images[1].checksum);
    EXPECT_EQ(&chain.images[0], chain.Bios());
    EXPECT_EQ("EFI", CodeTypeName(chain.images[1].codeType));
}

TEST(ToolsFlashRom, ChecksumIsOfTheBiosAlone) {
    Data bytes = BootCode();
    EXPECT_EQ("", InspectImage(bytes).problem);
    bytes[1500] ^= 1;  // in the second image
    EXPECT_EQ("", InspectImage(bytes).problem);
    bytes[500] ^= 1;
    EXPECT_EQ("the checksum of image 1 (BIOS) is wrong", InspectImage(bytes).problem);

    // As the library leaves an image behind: the byte before the checksum is no part of the sum.
    Data carried = BootCode();
    carried[1022] = 0x5A;
    carried[1023] =
        static_cast<uint8_t>(0 - std::accumulate(carried.begin(), carried.begin() + 1022, 0));
    ASSERT_TRUE(support::ChecksumHolds(carried, 0));
    EXPECT_EQ("", InspectImage(carried).problem);

    // A checksum over nothing, or over more than the image.
    for (const uint8_t units : {0, 3, 255}) {
        Data wrong = BootCode();
        wrong[2] = units;
        EXPECT_NE("", InspectImage(wrong).problem) << int{units};
    }
}

TEST(ToolsFlashRom, NoLengthLeadsAstray) {
    const struct {
        size_t at;
        uint16_t value;
        const char* problem;
    } kRows[] = {
        {24, 0xFFFF, "the image ends before its description at byte 0"},
        {24, 0x0200, "the image has no description at byte 0"},
        {kDataAt + 16, 0, "the image has no description at byte 0"},
        {kDataAt + 16, 17, "the image is longer than what there is at byte 0"},
        {kDataAt + 16, 16, "no image begins at byte 8192, and none before is marked as the last"},
        {1024, 0, "no image begins at byte 1024, and none before is marked as the last"},
    };
    for (const auto& row : kRows) {
        Data bytes = BootCode();
        Put16(bytes, row.at, row.value);
        EXPECT_EQ(row.problem, DecodeRomChain(bytes).problem) << row.at;
    }
    // A device list that points out of the image, and one that never ends.
    for (const uint16_t list : {0x03BF, 0x7FFF, 0xFFFF, 0x0002}) {
        Data bytes = Rom(RomCode::Bios, true, 1, 0);
        Put16(bytes, kDataAt + 8, list);
        const RomChain chain = DecodeRomChain(bytes);
        ASSERT_EQ(1u, chain.images.size());
        EXPECT_LE(chain.images[0].devices.size(), 64u);
    }
    // Eleven images are a chain, a twelfth is not looked for.
    for (const size_t count : {11u, 12u}) {
        std::vector<Data> roms(count, Rom(RomCode::Fcode, false, 1, 0));
        roms.back() = Rom(RomCode::Fcode, true, 1, 0);
        const RomChain chain = DecodeRomChain(support::Chain(roms));
        EXPECT_EQ(count == 11, chain.problem.empty()) << count;
        EXPECT_EQ(11u, chain.images.size());
    }
    // However much of a chain there is, it is not taken for a whole one.
    const Data whole = BootCode();
    for (size_t length = 0; length < 3 * 1024; ++length) {
        const Data part(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
        EXPECT_NE("", DecodeRomChain(part).problem) << length;
    }
}

TEST(ToolsFlashFirmware, VersionChipAndSegments) {
    const ImageInfo image = InspectImage(Firmware());
    EXPECT_EQ(ImageKind::Firmware, image.kind);
    EXPECT_EQ("", image.problem);
    EXPECT_EQ("9.12.01", image.version);
    EXPECT_EQ(std::vector<uint16_t>{kChip}, image.chips);
    EXPECT_EQ(256u, image.firmware.segments[1].offset);
    EXPECT_EQ(128u, image.firmware.segments[1].length);
    EXPECT_EQ("9.01.16.20", InspectImage(Firmware(9, 1, 16, 20)).version);

    // Code where others have the device ID: the image does not tell, nor is there a build number.
    const ImageInfo silent = InspectImage(Firmware(9, 12, 1, 5, 0x12345678));
    EXPECT_TRUE(silent.chips.empty());
    EXPECT_EQ("9.12.01", silent.version);
}

TEST(ToolsFlashFirmware, DamageIsSeen) {
    // Not erased behind its segments: each erased word adds -1, so that a segment which is told to
    // be longer by as many words adds up to 0 again.
    constexpr size_t kUsed = (64 + 32) * 4;
    Data good = Firmware();
    std::fill(good.begin() + kUsed, good.end(), uint8_t{0});
    for (size_t at = 0; at < kUsed; ++at) {
        Data bytes = good;
        bytes[at] ^= 0x10;
        const ImageInfo image = InspectImage(bytes);
        EXPECT_TRUE(image.kind != ImageKind::Firmware || !image.problem.empty()) << at;
    }
    // Behind its segments it may hold anything.
    Data behind = good;
    behind[kUsed] ^= 0x10;
    EXPECT_EQ("", InspectImage(behind).problem);

    // Cut anywhere: not a byte beyond the end is read.
    for (size_t length = sizeof(FirmwareHead); length < kUsed; ++length) {
        const Data part(good.begin(), good.begin() + static_cast<ptrdiff_t>(length));
        EXPECT_NE("", InspectImage(part).problem) << length;
    }
    const Data exact(good.begin(), good.begin() + kUsed);
    EXPECT_EQ("", InspectImage(exact).problem);

    for (const uint32_t words : {0u, 96u, 97u, 0xFFFFFFu, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        Data bytes = good;
        PutWord(bytes, 64 + 3, words);
        EXPECT_NE("", DecodeFirmware(bytes).problem) << words;
        PutWord(bytes, 3, words);
        EXPECT_NE("", DecodeFirmware(bytes).problem) << words;
    }
}

TEST(ToolsFlashImage, KindsAreToldApart) {
    Data nvram(512);
    std::memcpy(nvram.data(), "KPU ", 4);
    nvram[8] = 7;
    EXPECT_EQ(ImageKind::Nvram, InspectImage(nvram).kind);
    EXPECT_NE("", InspectImage(nvram).problem);
    uint32_t sum = 0;
    for (size_t at = 0; at < 508; at += 4) {
        uint32_t word;
        std::memcpy(&word, &nvram[at], sizeof word);
        sum -= word;
    }
    std::memcpy(&nvram[508], &sum, sizeof sum);
    EXPECT_EQ("", InspectImage(nvram).problem);
    nvram.resize(256);  // a classic block has another checksum
    EXPECT_EQ("", InspectImage(nvram).problem);
    nvram.resize(255);
    EXPECT_EQ(ImageKind::Unknown, InspectImage(nvram).kind);

    const struct {
        Data bytes;
        ImageKind kind;
    } kRows[] = {
        {{}, ImageKind::Unknown},
        {{0xFF}, ImageKind::Erased},
        {{0x82, 0x02, 0x00, 'a', 'b', 0x78}, ImageKind::Vpd},
        {{0x82, 0x03, 0x00, 'a', 'b', 0x78}, ImageKind::Unknown},  // no room for an end
        {{0x55, 0xAA}, ImageKind::BootCode},
        {Data(4096, 0), ImageKind::Unknown},
        {Firmware(0, 0, 0), ImageKind::Unknown},
        {Firmware(256, 0, 0), ImageKind::Unknown},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(row.kind, InspectImage(row.bytes).kind) << &row - kRows;
    }
}

TEST(ToolsFlashImage, AnyBytesAreSurvived) {
    std::mt19937 random(7);
    const Data seeds[] = {BootCode(), Firmware()};
    for (int round = 0; round < 4000; ++round) {
        Data bytes = seeds[round % 2];
        bytes.resize(random() % bytes.size());
        for (int i = 0; i < 8 && !bytes.empty(); ++i) {
            bytes[random() % std::min<size_t>(bytes.size(), 512)] = static_cast<uint8_t>(random());
        }
        const ImageInfo image = InspectImage(bytes);
        EXPECT_EQ(bytes.size(), image.size);
        EXPECT_LE(image.boot.images.size(), 11u);
        EXPECT_LE(image.boot.bytes, bytes.size());
    }
}

std::string Refusals(const Data& bytes, const ImageTarget& target, bool older = false) {
    std::string text;
    for (const Finding& finding : CheckImage(InspectImage(bytes), target, {older})) {
        if (finding.refuses) {
            text += (text.empty() ? "" : "; ") + finding.text;
        }
    }
    return text;
}

TEST(ToolsFlashCheck, WrongImagesAreRefused) {
    const ImageTarget firmware = {1, 1024, kVendor, kChip, "9.12.01", "9.12.01"};
    const ImageTarget boot = {7, 8192, kVendor, kChip, "3.61", ""};
    EXPECT_EQ("", Refusals(Firmware(), firmware));
    EXPECT_EQ("", Refusals(Firmware(9, 12, 1, 1), firmware));
    EXPECT_EQ("", Refusals(BootCode(), boot));

    EXPECT_EQ(
        "the file holds boot code, the region firmware; the image has 8192 bytes, the region "
        "1024",
        Refusals(BootCode(), firmware));
    EXPECT_EQ("the image is for 0x7404, the adapter's chip is 0x7740",
              Refusals(BootCode(3, 61, 0x7404), boot));
    EXPECT_EQ("the image is for 0x7404, the adapter's chip is 0x7740",
              Refusals(Firmware(9, 12, 1, 0, 0x7404), firmware));
    EXPECT_EQ("the image is for adapters of vendor 0x1ed0, this is one of 0x1ed1",
              Refusals(BootCode(), {7, 8192, 0x1ED1, kChip, "", ""}));
    Data damaged = Firmware();
    damaged[100] ^= 1;
    EXPECT_EQ("the image is damaged: the checksum of segment 1 is wrong",
              Refusals(damaged, firmware));
    for (const size_t size : {1023u, 1025u}) {
        Data resized = Firmware();
        resized.resize(size, 0xFF);
        EXPECT_NE("", Refusals(resized, firmware)) << size;
    }
    EXPECT_NE("", Refusals(Data(1024, 0xFF), firmware));  // erased
    EXPECT_NE("", Refusals({}, firmware));
}

TEST(ToolsFlashCheck, OlderNeedsLeave) {
    const ImageTarget firmware = {1, 1024, kVendor, kChip, "9.12.01", "9.13.00"};
    EXPECT_EQ("the image is older: 9.12.01, and 9.13.00 is stored", Refusals(Firmware(), firmware));
    EXPECT_EQ("", Refusals(Firmware(), firmware, true));
    EXPECT_EQ(
        "the image is older: 9.11.99, and 9.12.01 runs; the image is older: 9.11.99, and "
        "9.13.00 is stored",
        Refusals(Firmware(9, 11, 99), firmware));
    // Leave for one thing is no leave for another.
    EXPECT_NE("", Refusals(Firmware(9, 11, 99, 0, 0x7404), firmware, true));
    EXPECT_EQ("", Refusals(Firmware(), {1, 1024, kVendor, kChip, "not known", ""}));
}

TEST(ToolsFlashCheck, SettingsAndDataRegions) {
    const ImageTarget nvram = {21, 512, kVendor, kChip, "", ""};
    EXPECT_EQ("", Refusals(Data(512, 0xFF), nvram));  // a function that the adapter has not
    EXPECT_NE("", Refusals(Data(512, 0), nvram));
    const ImageTarget data = {158, 512, kVendor, kChip, "", ""};
    EXPECT_EQ("", Refusals(Data(512, 0), data));
    EXPECT_NE("", Refusals(Data(511, 0), data));
}

TEST(ToolsFlashVersion, NumberByNumber) {
    const struct {
        const char* left;
        const char* right;
        int order;
    } kRows[] = {
        {"9.12.01", "9.12.1", 0},   {"9.12", "9.12.0.0", 0},  {"9.9.0", "9.12.0", -1},
        {"9.1.16.20", "9.1.16", 1}, {"10.0.0", "9.99.99", 1},
    };
    for (const auto& row : kRows) {
        const auto order = CompareVersions(row.left, row.right);
        ASSERT_TRUE(order) << row.left;
        EXPECT_EQ(row.order, *order < 0 ? -1 : *order > 0 ? 1 : 0) << row.left;
    }
    for (const char* text : {"", ".", "9.", "9.x", "9.12 beta", "1.2.3.4.5", "-1", "99999999999"}) {
        EXPECT_FALSE(CompareVersions(text, "1.0")) << text;
        EXPECT_FALSE(CompareVersions("1.0", text)) << text;
    }
}

TEST(ToolsFlashRegions, AreNamedByKeyOrCode) {
    EXPECT_TRUE(MeansRegion("firmware", 1));
    EXPECT_TRUE(MeansRegion("Boot", 7));
    EXPECT_TRUE(MeansRegion("0x07", 7));
    EXPECT_TRUE(MeansRegion("region-158", 158));
    EXPECT_FALSE(MeansRegion("158", 157));
    EXPECT_FALSE(MeansRegion("", 0));
    EXPECT_FALSE(MeansRegion("firm", 1));
    EXPECT_EQ(RegionKind::Data, RegionKindOf(158));
    // A key stands for one code, but for the regions that differ by chip.
    for (uint32_t left = 0; left < 300; ++left) {
        for (uint32_t right = left + 1; right < 300; ++right) {
            const bool byChip = right == 170 || right == 172;
            EXPECT_TRUE(RegionKey(left) != RegionKey(right) || byChip) << left << " " << right;
        }
    }
}

TEST(ToolsFlashLock, RecordsAreFoundAndAged) {
    const auto table = std::make_unique<FlashLockArea>();
    FlashLock& last = table->locks[formats::kFlashLocks - 1];
    std::memset(last.serial, 'S', sizeof last.serial);  // no terminator
    std::memcpy(table->locks[3].serial, "\1EMU1", 6);
    std::memcpy(table->locks[4].serial, "\0EMU2", 6);  // not in use
    EXPECT_EQ(&table->locks[3], FindLock(*table, "EMU1"));
    EXPECT_EQ(&last, FindLock(*table, std::string(31, 'S')));
    EXPECT_EQ(nullptr, FindLock(*table, "EMU"));
    EXPECT_EQ(nullptr, FindLock(*table, "EMU2"));
    EXPECT_EQ(nullptr, FindLock(*table, ""));  // unused records have no serial number either

    last.startTick = 0xFFFFFF00;
    EXPECT_EQ(0x200u, HeldMs(last, 0x100));
    // A process that is younger than the lock only has the number of the one that took it.
    EXPECT_TRUE(MayOwn(60000, 60000));
    EXPECT_TRUE(MayOwn(58000, 60000));
    EXPECT_FALSE(MayOwn(57999, 60000));
}

}  // namespace
