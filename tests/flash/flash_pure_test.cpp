// Option ROM images, firmware images and region rules: foreign bytes and tables.
#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>

#include "flash/carried_identity.h"
#include "flash/firmware_version.h"
#include "flash/region_rules.h"
#include "flash/version_text.h"
#include "formats/firmware_image.h"
#include "formats/rom_image.h"
#include "support/rom_builder.h"

namespace {

using namespace flash;
using namespace formats;
using support::Chain;
using support::ChecksumHolds;
using support::MakeFirmware;
using support::MakeRom;
using Bytes = std::vector<uint8_t>;

TEST(FlashPure, ChainIsWalkedToItsEnd) {
    const Bytes chain =
        Chain({MakeRom({.code = RomCode::Efi, .units = 3, .last = false}),
               MakeRom({.code = RomCode::Fcode, .units = 1, .last = false}),
               MakeRom({.code = RomCode::Bios, .units = 2, .major = 3, .minor = 42}),
               MakeRom({.code = RomCode::Bios, .units = 2})});
    const auto bios = FindImage(chain, RomCode::Bios);
    ASSERT_TRUE(bios);
    EXPECT_EQ(4u * 512, bios->start);
    EXPECT_EQ(1024u, bios->length);
    EXPECT_EQ(3, bios->majorRevision);
    EXPECT_EQ(42, bios->revision);
    EXPECT_FALSE(NextImage(chain, *bios)) << "it was the last image";
    EXPECT_EQ(3u * 512, FindImage(chain, RomCode::Fcode)->start);

    // An image behind the last one is not part of the chain; nor is one beyond the eleventh.
    EXPECT_FALSE(FindImage(Chain({MakeRom({.code = RomCode::Efi}), MakeRom({})}), RomCode::Bios));
    std::vector<Bytes> roms(10, MakeRom({.code = RomCode::Efi, .units = 1, .last = false}));
    roms.push_back(MakeRom({.units = 1}));
    EXPECT_EQ(10u * 512, FindImage(Chain(roms), RomCode::Bios)->start);
    roms.insert(roms.begin(), roms.front());
    EXPECT_FALSE(FindImage(Chain(roms), RomCode::Bios));
}

TEST(FlashPure, ImagesThatAreNone) {
    const Bytes good = MakeRom({});
    struct Damage {
        size_t at;
        Bytes bytes;
    };
    const Damage damages[] = {
        {0, {0x54}},
        {1, {0xAB}},
        {24, {0xFF, 0xFF}},  // data beyond the image
        {24, {0xEB, 0x03}},  // its last byte beyond
        {0x40, {'P', 'C', 'I', 'S'}},
        {0x50, {0, 0}},  // length 0
    };
    for (const Damage& damage : damages) {
        Bytes bad = good;
        std::copy(damage.bytes.begin(), damage.bytes.end(),
                  bad.begin() + static_cast<ptrdiff_t>(damage.at));
        EXPECT_FALSE(ImageAt(bad, 0)) << damage.at;
    }
    // The data may end with the image's last byte.
    Bytes tight = good;
    const size_t start = good.size() - sizeof(RomData);
    std::copy_n(good.begin() + 0x40, sizeof(RomData),
                tight.begin() + static_cast<ptrdiff_t>(start));
    tight[24] = static_cast<uint8_t>(start);
    tight[25] = static_cast<uint8_t>(start >> 8);
    EXPECT_TRUE(ImageAt(tight, 0));
    for (size_t size = 0; size < good.size(); ++size) {
        const Bytes cut(good.begin(), good.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(size >= 0x40 + sizeof(RomData), ImageAt(cut, 0).has_value()) << size;
        EXPECT_FALSE(ImageAt(cut, size + 1));
    }
}

TEST(FlashPure, ChecksumLeavesOneByteOut) {
    Bytes rom = MakeRom({.units = 1});
    rom[510] = 0x11;
    ASSERT_TRUE(UpdateChecksum(rom));
    const uint8_t checksum = rom[511];
    rom[510] = 0x99;
    ASSERT_TRUE(UpdateChecksum(rom));
    EXPECT_EQ(checksum, rom[511]);
    EXPECT_TRUE(ChecksumHolds(rom, 0));
    for (const uint8_t length : {uint8_t{0}, uint8_t{2}, uint8_t{255}}) {
        rom[2] = length;
        const Bytes before = rom;
        EXPECT_FALSE(UpdateChecksum(rom));
        EXPECT_EQ(before, rom);
    }
    EXPECT_FALSE(UpdateChecksum(std::span<uint8_t>{}));
}

TEST(FlashPure, WholeImageTakesTheAdaptersIdentity) {
    const Bytes current = MakeRom({.subsystemVendor = 0x1ED0, .nvramFill = 0xC1});
    // The adapter's values in both places, and nothing else but the checksum.
    Bytes image = MakeRom({.subsystemVendor = 0x1234, .nvramFill = 0x0F});
    Bytes expected = image;
    expected[32] = 0xD0;
    expected[33] = 0x1E;
    std::fill_n(expected.begin() + support::kRomNvramAt + 4, 252, uint8_t{0xC1});
    ASSERT_TRUE(CarryOverIdentity(image, current));
    expected.back() = image.back();
    EXPECT_EQ(expected, image);
    EXPECT_TRUE(ChecksumHolds(image, 0));

    struct Row {
        support::RomSpec image, current;
        bool changes;
    };
    const Row rows[] = {
        {{.subsystemVendor = 0x1ED0}, {.subsystemVendor = 0x1ED0}, false},
        {{.subsystemVendor = 0x1ED0}, {.subsystemVendor = 0x1ED0, .nvramFill = 1}, false},
        {{.subsystemVendor = 0x1ED0, .nvramFill = 1}, {.subsystemVendor = 0x1ED0}, false},
        {{.subsystemVendor = 0x1ED1}, {.subsystemVendor = 0x1ED0}, true},
        {{.subsystemVendor = 0x1ED1}, {.nvramFill = 1}, false},
        {{}, {.subsystemVendor = 0x1ED0}, false},
        {{.nvramFill = 1}, {.nvramFill = 2}, true},
    };
    for (const Row& row : rows) {
        Bytes bytes = MakeRom(row.image);
        bytes.back() = 0x5A;
        const Bytes before = bytes;
        ASSERT_TRUE(CarryOverIdentity(bytes, MakeRom(row.current)));
        EXPECT_EQ(row.changes, bytes != before) << &row - rows;
        EXPECT_TRUE(!row.changes || ChecksumHolds(bytes, 0)) << &row - rows;
    }
}

TEST(FlashPure, IdentityInHostileImages) {
    const Bytes current = MakeRom({.subsystemVendor = 0x1ED0, .nvramFill = 0xC1});
    // Every length: cut anywhere, an image gets whole fields or none, and needs its checksum's
    // room.
    const Bytes whole = MakeRom({.subsystemVendor = 0x1111, .nvramFill = 0x0F});
    for (size_t size = 0; size <= whole.size(); ++size) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_EQ(size < 34 || size == whole.size(), CarryOverIdentity(cut, current)) << size;
        EXPECT_EQ(size >= 34, size >= 34 && cut[33] == 0x1E) << size;
        Bytes target = whole;
        const Bytes source(current.begin(), current.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_TRUE(CarryOverIdentity(target, source));
        EXPECT_EQ(size >= support::kRomNvramAt + 256, target[support::kRomNvramAt + 4] == 0xC1)
            << size;
    }
    // A mark so late that no image of 128 KiB has it is not looked for.
    Bytes late(131067 + 8 + 300, 0);
    late[2] = 1;
    for (const size_t at : {size_t{131067}, size_t{131068}}) {
        Bytes image = late;
        std::memcpy(image.data() + at, kNvramMark, sizeof kNvramMark);
        ASSERT_TRUE(CarryOverIdentity(image, current));
        EXPECT_EQ(at == 131067, image[at + 10] == 0xC1) << at;
    }
}

TEST(FlashPure, BootChainTakesTheAdaptersIdentity) {
    const Bytes current = Chain(
        {MakeRom({.code = RomCode::Fcode, .units = 1, .last = false}),
         MakeRom({.units = 3, .subsystemVendor = 0x1ED0, .nvramFill = 0xC1, .nvramBytes = 512})});
    const auto image = [](bool secondHasNvram) {
        return Chain(
            {MakeRom({.code = RomCode::Efi,
                      .units = 2,
                      .last = false,
                      .subsystemVendor = 0x2222,
                      .nvramFill = 2}),
             MakeRom({.units = 4,
                      .last = false,
                      .subsystemVendor = 0x1111,
                      .nvramFill = 1,
                      .nvramBytes = 512}),
             MakeRom({.code = RomCode::Fcode,
                      .units = 3,
                      .last = false,
                      .subsystemVendor = 0x3333,
                      .nvramFill = secondHasNvram ? std::optional<uint8_t>(3) : std::nullopt,
                      .nvramBytes = 512}),
             MakeRom({.units = 2, .subsystemVendor = 0x4444, .nvramFill = 4})});
    };
    const size_t bios = 2 * 512;
    const size_t next = 6 * 512;
    const size_t fourth = 9 * 512;
    for (const bool secondHasNvram : {true, false}) {
        Bytes bytes = image(secondHasNvram);
        Bytes expected = bytes;
        const auto give = [&](size_t start) {
            expected[start + 32] = 0xD0;
            expected[start + 33] = 0x1E;
            std::fill_n(expected.begin() + static_cast<ptrdiff_t>(start + support::kRomNvramAt + 4),
                        508, uint8_t{0xC1});
        };
        give(bios);
        if (secondHasNvram) {
            give(next);
        }
        ASSERT_TRUE(CarryOverBootIdentity(bytes, current, 512));
        EXPECT_TRUE(ChecksumHolds(bytes, bios));
        EXPECT_EQ(secondHasNvram, ChecksumHolds(bytes, next));
        expected[next - 1] = bytes[next - 1];
        expected[fourth - 1] = secondHasNvram ? bytes[fourth - 1] : expected[fourth - 1];
        EXPECT_EQ(expected, bytes);
    }
    // Without boot code on either side nothing is touched.
    const Bytes efi = MakeRom({.code = RomCode::Efi, .subsystemVendor = 1, .nvramFill = 2});
    for (const auto& [one, other] :
         {std::pair(efi, current), std::pair(image(true), efi), std::pair(image(true), Bytes{})}) {
        Bytes bytes = one;
        EXPECT_TRUE(CarryOverBootIdentity(bytes, other, 512));
        EXPECT_EQ(one, bytes);
    }
}

TEST(FlashPure, FirmwareSegments) {
    const Bytes good = MakeFirmware(40, 24, 64);
    EXPECT_EQ(FirmwareCheck::Good, CheckFirmware(good, 256));
    EXPECT_EQ(FirmwareCheck::Good, CheckFirmware(good, 65536));
    EXPECT_EQ(FirmwareCheck::BadSegments, CheckFirmware(good, 255));
    EXPECT_EQ(FirmwareCheck::BadSegments, CheckFirmware({good.data(), 255}, 65536));
    for (const size_t at : {size_t{0}, size_t{159}, size_t{160}, size_t{255}}) {
        Bytes bad = good;
        bad[at] ^= 1;
        EXPECT_EQ(FirmwareCheck::BadChecksum, CheckFirmware(bad, 256)) << at;
    }
    const auto withWord = [&](size_t word, uint32_t value) {
        Bytes bytes = good;
        support::PutWord(bytes, word, value);
        return CheckFirmware(bytes, 256);
    };
    for (const uint32_t length : {0u, 61u, 63u, 64u, 65u, 0x40000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(FirmwareCheck::BadSegments, withWord(3, length)) << length;
    }
    for (const uint32_t length : {0u, 25u, 0xFFFFFFE8u, 0xFFFFFFFFu}) {
        EXPECT_EQ(FirmwareCheck::BadSegments, withWord(43, length)) << length;
    }
    EXPECT_EQ(FirmwareCheck::BadChecksum, withWord(43, 23));
    for (size_t size = 0; size < 16; ++size) {
        EXPECT_EQ(FirmwareCheck::BadSegments, CheckFirmware(Bytes(size, 1), 65536));
    }
}

TEST(FlashPure, FirmwareVersions) {
    constexpr uint32_t kWanted[] = {9, 1, 16, 20};
    for (const char* text : {"9.1.16.20", "9.1.16.21", "9.1.17", "9.1.17.0", "9.2", "10", "10.0",
                             "09.01.16.20", "9.1.16.20 beta", "9.1.16.020", "9.01.100"}) {
        EXPECT_TRUE(IsAtLeast(text, kWanted)) << text;
    }
    for (const char* text : {"", "9", "9.1", "9.1.16", "9.1.16.19", "9.1.15.99", "9.0.99.99",
                             "8.9.9.9", "x", "9,2", "9..16.20", "-10"}) {
        EXPECT_FALSE(IsAtLeast(text, kWanted)) << text;
    }
}

TEST(FlashPure, VersionRecords) {
    const Bytes chain =
        Chain({MakeRom({.units = 1, .last = false, .major = 3, .minor = 7}),
               MakeRom({.code = RomCode::Efi, .units = 1, .major = 12, .minor = 34})});
    const auto text = [](const Bytes& image, VersionKind kind) {
        VersionText version;
        FormatVersion(image, kind, version);
        return std::string(version);
    };
    EXPECT_EQ("3.07", text(chain, VersionKind::Bios));
    EXPECT_EQ("12.34", text(chain, VersionKind::Efi));
    EXPECT_EQ("", text(chain, VersionKind::Fcode));
    EXPECT_EQ("", text(MakeRom({}), VersionKind::Bios)) << "0.00 is no version";
    Bytes firmware(32, 0);
    firmware[19] = 9;
    firmware[23] = 1;
    firmware[27] = 255;
    EXPECT_EQ("9.01.255", text(firmware, VersionKind::Firmware));
    firmware[26] = 1;
    EXPECT_EQ("", text(firmware, VersionKind::Firmware));
    EXPECT_EQ("", text({}, VersionKind::Firmware));

    VersionRecord record;
    std::fill(std::begin(record), std::end(record), 'x');
    FormatVersionRecord("9.01.255", 'G', record);
    std::string expected = "V:9.01.255,D:00000000,A:Y,T:G";
    expected.resize(36, '\0');
    EXPECT_EQ(expected, std::string(record, sizeof record));
    FormatVersionRecord("123456789012345", 'B', record);
    EXPECT_EQ("V:12345678901234,D:00000000,A:Y,T:B", std::string(record));
}

// The region of each PCI function 0 to 7, 0 = none.
using Functions = std::array<uint32_t, 8>;
Functions RegionsOf(const PortRegionRules& rules, uint16_t deviceId, Bank bank) {
    Functions codes = {};
    for (uint8_t function = 0; function < 8; ++function) {
        const PortIdentity port{properties::ChipOf(deviceId),
                                static_cast<uint8_t>(function << 5 | 0x1F), 0, 99};
        codes[function] = RegionOfPort(rules, port, bank).value_or(0);
    }
    return codes;
}

TEST(FlashPure, RegionsOfPorts) {
    const Functions nvram = {21, 23, 213, 215}, nvramSecond = {269, 271, 273, 275};
    const Functions nvramLarge = {21, 23, 21, 23, 23, 23, 21, 23};
    const Functions nvramC = {170, 172, 170, 172, 172, 172, 170, 172};
    const Functions vpd = {20, 22, 212, 214}, vpdSecond = {268, 270, 272, 274};
    const Functions vpdLarge = {20, 22, 20, 22, 22, 22, 20, 22};
    const Functions vpdD = {129, 129, 129, 129, 129, 129, 129, 129};
    for (const properties::Chip& chip : properties::kChips) {
        const char family = chip.family;
        const bool classic = family >= 'P';
        const bool large = family == 'A' || family == 'B';
        const bool banked = family == 'F' || family == 'G';
        EXPECT_EQ(!classic, HasPortRegions(chip)) << chip.deviceId;
        EXPECT_EQ(classic         ? Functions{}
                  : large         ? nvramLarge
                  : family == 'C' ? nvramC
                                  : nvram,
                  RegionsOf(kNvramRegions, chip.deviceId, Bank::First))
            << chip.deviceId;
        EXPECT_EQ(classic                  ? Functions{}
                  : large || family == 'C' ? vpdLarge
                  : family == 'D'          ? vpdD
                                           : vpd,
                  RegionsOf(kVpdRegions, chip.deviceId, Bank::First))
            << chip.deviceId;
        if (banked) {
            EXPECT_EQ(nvramSecond, RegionsOf(kNvramRegions, chip.deviceId, Bank::Second));
            EXPECT_EQ(vpdSecond, RegionsOf(kVpdRegions, chip.deviceId, Bank::Second));
        }
        // The port's own code, where the chip has one at all.
        const PortIdentity own{chip, 0xE0, 1, 99};
        EXPECT_EQ(!classic && !large, RegionOfPort(kNvramRegions, own, Bank::First) == 99u);
        EXPECT_EQ(family == 'D', RegionOfPort(kVpdRegions, own, Bank::First) == 99u);
    }
    // A read goes to the bank in use, a write never does.
    for (const bool second : {false, true}) {
        const Bank active = second ? Bank::Second : Bank::First;
        EXPECT_EQ(active, BankOf(Direction::Read, second));
        EXPECT_NE(active, BankOf(Direction::Write, second));
    }
}

}  // namespace
