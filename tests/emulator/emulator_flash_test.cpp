// Flash of the emulated adapters: what it holds, what may be written where, and power that fails.
#include "machine/emulator_flash.h"

#include "flash/nvram_variables.h"
#include "flash/region_rules.h"
#include "flash/version_text.h"
#include "formats/rom_image.h"
#include "support/rom_builder.h"

namespace {

using namespace emulator_test;

constexpr uint16_t kFirmware = 1;
constexpr uint16_t kBoot = 7;
constexpr uint16_t kRecovery = 8;

class EmulatorFlash : public EmulatorFlashFixture {};

// Calls visit(port index, chip) for each port of the full profile whose driver has flash requests.
template <typename Visit>
void ForEachChip(Visit visit) {
    const auto profile = MakeProfile("full");
    for (uint32_t port = 0; port < std::size(properties::kChips); ++port) {
        const vxemu::AdapterProfile& adapter = profile->adapters[profile->ports[port].adapter];
        if (adapter.generation == vxemu::DriverGeneration::Extended) {
            SCOPED_TRACE(adapter.serial);
            visit(port, properties::ChipOf(adapter.deviceId));
        }
    }
}

TEST_F(EmulatorFlash, LayoutCoversTheFlashOfEveryChip) {
    Start("full");
    ForEachChip([&](uint32_t port, const properties::Chip& chip) {
        const auto regions = Layout(port);
        const auto extended = Layout(port, FlashLayoutEx);
        ASSERT_EQ(extended.size(), regions.size());
        EXPECT_EQ(std::memcmp(extended.data(), regions.data(), regions.size() * 16), 0);
        uint32_t end = 0;
        std::map<uint32_t, int> codes;
        for (const flash::DriverRegion& region : regions) {
            EXPECT_EQ(+region.start, end) << region.code;
            EXPECT_EQ(+region.end, region.start + region.size - 1) << region.code;
            end += region.size;
            EXPECT_EQ(++codes[region.code], 1) << region.code;
        }
        EXPECT_GE(end, flash::FlashImageBytes(chip));
        // The boot code is looked for at the start of the flash.
        EXPECT_EQ(+regions[0].code, chip.Has(properties::ChipTrait::Newer) ? kBoot : 255);
        const bool secure = chip.Has(properties::ChipTrait::SecureFlash);
        EXPECT_EQ(std::count_if(regions.begin(), regions.end(),
                                [](const auto& region) { return (region.flags & 1) != 0; }),
                  secure ? 1 : 0);
        // Whatever port the adapter has, its settings have their regions.
        const bool banked = chip.Has(properties::ChipTrait::Banked);
        for (uint8_t function = 0; function < 4; ++function) {
            const flash::PortIdentity identity = {chip, static_cast<uint8_t>(function << 5), 0, 0};
            for (const auto* rules : {&flash::kNvramRegions, &flash::kVpdRegions}) {
                for (const auto bank : {flash::Bank::First, flash::Bank::Second}) {
                    if (bank == flash::Bank::Second && !banked) {
                        continue;
                    }
                    const auto code = flash::RegionOfPort(*rules, identity, bank);
                    ASSERT_TRUE(code.has_value());
                    EXPECT_EQ(SizeOf(port, static_cast<uint16_t>(*code)), 512u);
                }
            }
        }
        // The flash ends there.
        EXPECT_EQ(ReadAt(port, end - 256, 256, 256).Status(), Success);
        EXPECT_EQ(ReadAt(port, end - 256, 257, 257).Status(), InvalidParameter);
    });
}

void ExpectBootChain(const Bytes& bytes, uint16_t deviceId, bool embeddedNvram) {
    auto image = formats::ImageAt(bytes, 0);
    for (const formats::RomCode code :
         {formats::RomCode::Bios, formats::RomCode::Fcode, formats::RomCode::Efi}) {
        ASSERT_TRUE(image.has_value());
        EXPECT_EQ(image->codeType, static_cast<uint8_t>(code));
        EXPECT_EQ(image->last, code == formats::RomCode::Efi);
        EXPECT_TRUE(support::ChecksumHolds(bytes, image->start));
        formats::RomHeader header;
        formats::RomData data;
        std::memcpy(&header, &bytes[image->start], sizeof header);
        std::memcpy(&data, &bytes[image->start + header.dataOffset], sizeof data);
        EXPECT_EQ(+data.vendorId, properties::kVendorId);
        EXPECT_EQ(+data.deviceId, deviceId);
        EXPECT_EQ(image->length, header.length * 512u);
        EXPECT_EQ(+header.subsystemVendor, properties::kVendorId);
        image = formats::NextImage(bytes, *image);
    }
    EXPECT_FALSE(image.has_value());
    const auto mark = std::search(bytes.begin(), bytes.end(), std::begin(formats::kNvramMark),
                                  std::end(formats::kNvramMark));
    EXPECT_EQ(mark != bytes.end(), embeddedNvram);
}

// Vital product data by its tags: keyword to text. Empty when anything about it is wrong.
std::map<std::string, std::string> ParseVpd(const Bytes& vpd) {
    std::map<std::string, std::string> fields;
    for (size_t at = 0; at + 3 <= vpd.size();) {
        const uint8_t tag = vpd[at];
        if (tag == 0x78) {
            return fields;
        }
        const size_t end = at + 3 + (vpd[at + 1] | vpd[at + 2] << 8);
        at += 3;
        if ((tag != 0x82 && tag != 0x90) || end > vpd.size()) {
            return {};
        }
        if (tag == 0x82) {
            fields["ID"] = std::string(vpd.begin() + at, vpd.begin() + end);
        }
        for (; tag == 0x90 && at + 3 <= end; at += 3 + vpd[at + 2]) {
            const std::string name(vpd.begin() + at, vpd.begin() + at + 2);
            fields[name] = std::string(vpd.begin() + at + 3, vpd.begin() + at + 3 + vpd[at + 2]);
            if (name == "RV" && std::accumulate(vpd.begin(), vpd.begin() + at + 4, 0u) % 256 != 0) {
                return {};
            }
        }
        at = end;
    }
    return {};
}

TEST_F(EmulatorFlash, WhatEveryChipIsDeliveredWith) {
    Start("full");
    const auto profile = MakeProfile("full");
    ForEachChip([&](uint32_t port, const properties::Chip& chip) {
        const vxemu::AdapterProfile& adapter = profile->adapters[port];
        const bool regionLayout = chip.Has(properties::ChipTrait::RegionLayout);
        const Bytes boot = ReadRegion(port, kBoot);
        ExpectBootChain(boot, chip.deviceId, !regionLayout);
        flash::VersionText version;
        flash::FormatVersion(boot, flash::VersionKind::Bios, version);
        EXPECT_STREQ(version, adapter.optionRomVersion);
        const Bytes firmware = ReadRegion(port, kFirmware);
        EXPECT_EQ(formats::CheckFirmware(firmware, firmware.size()), formats::FirmwareCheck::Good);
        flash::FormatVersion(firmware, flash::VersionKind::Firmware, version);
        EXPECT_STREQ(version, adapter.firmwareVersion);
        const Bytes recovery = ReadRegion(port, kRecovery);
        EXPECT_EQ(formats::CheckFirmware(recovery, recovery.size()), formats::FirmwareCheck::Good);

        const flash::PortIdentity identity = {chip, 0, 0, 0};
        const auto nvram = flash::RegionOfPort(flash::kNvramRegions, identity, flash::Bank::First);
        const auto vpd = flash::RegionOfPort(flash::kVpdRegions, identity, flash::Bank::First);
        const Bytes block = ReadRegion(port, static_cast<uint16_t>(*nvram));
        EXPECT_TRUE(formats::HasSignature(block));
        EXPECT_TRUE(formats::ChecksumHolds(flash::BlockKind::Extended, block));
        for (uint32_t at = 0; at < 8; ++at) {
            EXPECT_EQ(flash::GetVariable(block, flash::BlockKind::Extended, 24 + at),
                      profile->ports[port].portName[at]);
        }
        auto fields = ParseVpd(ReadRegion(port, static_cast<uint16_t>(*vpd)));
        EXPECT_EQ(fields["ID"], adapter.description);
        EXPECT_EQ(fields["PN"], adapter.model);
        EXPECT_EQ(fields["SN"], adapter.serial);
        EXPECT_EQ(fields["MN"], adapter.manufacturer);
        // By byte offset the flash reads the same, and across the border of two regions.
        const auto regions = Layout(port);
        Bytes both = ReadRegion(port, regions[0].code);
        const Bytes second = ReadRegion(port, regions[1].code);
        both.insert(both.end(), second.begin(), second.end());
        const uint32_t from = regions[1].start - 512;
        EXPECT_EQ(ReadAt(port, from, 1024, 1024).data,
                  Bytes(both.begin() + from, both.begin() + from + 1024));
        // The control tool comes to the same judgement.
        const auto report = Report(profile->ports[port].scsiPort);
        for (uint32_t at = 0; at < report->count; ++at) {
            EXPECT_NE(report->regions[at].checksum, CheckState::Bad) << report->regions[at].code;
            EXPECT_NE(report->regions[at].signature, CheckState::Bad) << report->regions[at].code;
        }
    });
    EXPECT_EQ(Status().portCount, 63u);
}

TEST_F(EmulatorFlash, RangesThatDoNotExist) {
    const uint32_t size = SizeOf(kNewest, kFirmware);
    const uint32_t chunks = size / flash::kChunkBytes;
    const Bytes full(65536, 0x5A);
    const auto before = ReadAll(kNewest);
    // Reading.
    const std::pair<uint32_t, uint32_t> badChunks[] = {
        {65, 0}, {64, chunks}, {1, 0xFFFF}, {0, 1}, {0xFFFF, 0xFFFF}};
    for (const auto& [kib, index] : badChunks) {
        EXPECT_EQ(ReadChunk(kNewest, kFirmware, kib, index, 65536).Status(), InvalidParameter)
            << kib << " " << index;
        EXPECT_NE(WriteChunk(kNewest, kFirmware, kib, index, full).Status(), Success)
            << kib << " " << index;
    }
    EXPECT_EQ(ReadChunk(kNewest, 21, 1, 0, 1024).data.size(), 1024u) << "filled up to a KiB";
    EXPECT_EQ(ReadChunk(kNewest, 21, 2, 0, 2048).Status(), InvalidParameter);
    EXPECT_EQ(ReadChunk(kNewest, 999, 1, 0, 1024).Status(), InvalidParameter);
    const Answer small = ReadChunk(kNewest, kFirmware, 64, 0, 100);
    EXPECT_EQ(small.Status(), BufferTooSmall);
    EXPECT_EQ(+small.envelope.ext.responseLen, 65536u);
    EXPECT_EQ(small.data.size(), 100u);
    const uint32_t flashBytes = Report(3)->bytes;
    const std::pair<uint32_t, uint32_t> badRanges[] = {
        {flashBytes, 256},        {flashBytes - 256, 512}, {0xFFFFFF00, 0x200},
        {0xFFFFFF00, 0xFFFFFFFF}, {0, flashBytes + 1},     {128, 256}};
    for (const auto& [offset, length] : badRanges) {
        EXPECT_EQ(ReadAt(kNewest, offset, length, 1024).Status(), InvalidParameter)
            << offset << " " << length;
        EXPECT_EQ(WriteAt(kNewest, offset, full, length).Status(), InvalidParameter)
            << offset << " " << length;
    }
    // An older chip has no alignment to keep.
    EXPECT_EQ(ReadAt(kLargeRom, 128, 256, 256).Status(), Success);
    // Writing less than the request says, or more than the region holds.
    EXPECT_EQ(WriteChunk(kNewest, kFirmware, 64, 0, Bytes(65535)).Status(), InvalidParameter);
    EXPECT_EQ(AskFlash(kNewest, FlashWrite, kFirmware, 64 << 16, Bytes(512), 65536, 4).Status(),
              InvalidParameter);
    EXPECT_EQ(WriteAt(kNewest, 0, Bytes(512), 65536).Status(), InvalidParameter);
    EXPECT_EQ(AskFlash(kNewest, FlashWrite, 21, 0, Bytes(513), 513, 0).Status(), InvalidParameter);
    // The end marker of a write by offset, and requests of chips without numbered regions.
    EXPECT_EQ(WriteAt(kNewest, 0, {}, 0).Status(), Success);
    EXPECT_EQ(Ask(kNewest, {FlashRead.code, 0}, 131072).Status(), InvalidRequest);
    EXPECT_EQ(Ask(kNewest, OptionRomReadOld, 131072).Status(), InvalidRequest);
    EXPECT_EQ(Ask(kNewest, FlashLayout, 64, Bytes(4)).Status(), InvalidParameter);
    EXPECT_EQ(ReadAll(kNewest), before) << "something was written";
}

TEST_F(EmulatorFlash, WritesStayAndBothPortsSeeThem) {
    auto expected = ReadAll(kNewest);
    Bytes& parameters = expected[103];
    std::reverse(parameters.begin(), parameters.end());
    EXPECT_EQ(WriteRegion(kNewest, 103, parameters).Status(), Success);
    // A piece across the border of two pages and two regions, and one that is shorter than its
    // region.
    const auto regions = Layout(kNewest);
    const uint32_t border = regions[7].start;
    ASSERT_EQ(+regions[7].code, 20);
    const Bytes mark(512, 0xA5);
    EXPECT_EQ(WriteAt(kNewest, border - 256, mark, 512).Status(), Success);
    std::copy_n(mark.begin(), 256, parameters.end() - 256);
    std::copy_n(mark.begin(), 256, expected[20].begin());
    EXPECT_EQ(WriteRegion(kNewest, 102, Bytes(100, 0x11)).Status(), Success);
    std::fill_n(expected[102].begin(), 100, 0x11);
    EXPECT_EQ(ReadAll(kNewest), expected);
    EXPECT_EQ(ReadAll(1), expected) << "one flash per adapter";
    EXPECT_NE(ReadRegion(kLargeRom, kBoot), expected[kBoot]);

    // A write for which there is no memory leaves everything as it was.
    Start("lab");
    const Bytes before = ReadRegion(kNewest, kFirmware);
    for (const int failing : {0, 1, 7}) {
        host_.failAt = failing;
        EXPECT_EQ(WriteChunk(kNewest, kFirmware, 64, 0, Bytes(65536)).Status(), OutOfMemory);
        host_.failAt = -1;
        EXPECT_EQ(ReadRegion(kNewest, kFirmware), before);
    }
}

TEST_F(EmulatorFlash, ClassicChipIsReadAndWrittenAsAWhole) {
    StartClassic();
    const uint32_t port = kLegacy;
    const Answer whole = Ask(port, {FlashRead.code, 0}, 131072);
    ASSERT_EQ(whole.Status(), Success);
    ASSERT_EQ(whole.data.size(), 131072u);
    ExpectBootChain(whole.data, 0x7300, true);
    EXPECT_EQ(Ask(port, OptionRomReadOld, 131072).data, whole.data);
    EXPECT_EQ(ReadRegion(port, 255), whole.data);
    Bytes image = whole.data;
    image[70000] ^= 0xFF;
    EXPECT_EQ(Ask(port, {FlashWrite.code, 0}, 0, image).Status(), Success);
    EXPECT_EQ(Ask(port, OptionRomReadOld, 131072).data, image);
    image[0] = 0;
    EXPECT_EQ(Ask(port, OptionRomWriteOld, 0, image).Status(), Success);
    EXPECT_EQ(ReadRegion(port, 255), image);
    image.push_back(0);
    EXPECT_EQ(Ask(port, OptionRomWriteOld, 0, image).Status(), InvalidParameter);
    EXPECT_EQ(Ask(port, ActiveRegions, 37, Bytes(37, '3')).Status(), UnsupportedSubCode);
    EXPECT_EQ(Ask(port, LockdownState, 64, Bytes(64)).Status(), InvalidRequest);
}

// What a write leaves whose power fails after cut bytes: up to there it is done, and what it has
// yet to write of the page under way is erased.
void CutOff(Bytes& content, uint32_t start, size_t offset, const Bytes& written, uint32_t cut) {
    const auto place = content.begin() + static_cast<ptrdiff_t>(offset);
    std::copy_n(written.begin(), cut, place);
    const uint32_t inPage = (start + static_cast<uint32_t>(offset) + cut) % 4096;
    if (cut != 0 && inPage != 0) {
        const size_t erased = std::min<size_t>(4096 - inPage, written.size() - cut);
        std::fill_n(place + cut, erased, uint8_t{0xFF});
    }
}

// Wherever the power goes, the other regions are whole and the adapter comes back.
TEST_F(EmulatorFlash, PowerFailsDuringAnUpdate) {
    const auto before = ReadAll(kNewest);
    const Bytes image = WithVersion(before.at(kFirmware), 9, 13, 4, 0x7740);
    const auto size = static_cast<uint32_t>(image.size());
    std::vector<uint32_t> cuts = {0, 1, size - 1};
    for (uint32_t at = flash::kChunkBytes; at < size; at += flash::kChunkBytes) {
        cuts.insert(cuts.end(), {at - 1, at, at + 1});
    }
    for (const uint32_t cut : cuts) {
        SCOPED_TRACE(cut);
        Start("lab");
        auto expected = before;
        ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{3, cut}), Done);
        EXPECT_EQ(WriteRegion(kNewest, kFirmware, image).completion, NoDevice);
        EXPECT_EQ(Ask(kNewest, DriverProperties, 200).completion, NoDevice);
        EXPECT_EQ(Ask(1, DriverProperties, 200).completion, NoDevice);
        EXPECT_EQ(Ask(kLargeRom, DriverProperties, 200).completion, Done);
        Reset(4);
        CutOff(expected[kFirmware], StatusOf(3, kFirmware).start, 0, image, cut);
        EXPECT_EQ(ReadAll(kNewest), expected);
        // Nothing written: nothing to notice. The image is damaged otherwise, unless all that
        // differs had been written.
        const bool sound =
            cut == 0 || expected[kFirmware] == image ||
            formats::CheckFirmware(expected[kFirmware], size) == formats::FirmwareCheck::Good;
        EXPECT_EQ(RunningFirmware(kNewest) == "9.00.00", !sound);
        EXPECT_EQ(StatusOf(3, kFirmware).checksum, sound ? CheckState::Good : CheckState::Bad);
        // The next attempt gets through.
        EXPECT_EQ(WriteRegion(kNewest, kFirmware, image).Status(), Success);
        EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), Success);
        EXPECT_EQ(RunningFirmware(kNewest), "9.13.04");
    }
    // A write that ends where the power would go is whole; the next one finds none.
    Start("lab");
    ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{3, 512}), Done);
    EXPECT_EQ(+Report(3)->bytesUntilFailure, 512u);
    EXPECT_EQ(WriteRegion(kNewest, 102, Bytes(512)).Status(), Success);
    EXPECT_EQ(WriteRegion(kNewest, 102, Bytes(1)).completion, NoDevice);
    EXPECT_EQ(Report(4)->withoutPower, 1);
    EXPECT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{5, 1}), NoDevice);
}

// Chips without regions, with them, with two banks, with secure updates: all in the same way.
TEST_F(EmulatorFlash, PowerFailsOnEveryChip) {
    Start("full");
    const auto profile = MakeProfile("full");
    ForEachChip([&](uint32_t port, const properties::Chip& chip) {
        const uint32_t scsiPort = profile->ports[port].scsiPort;
        const auto fail = [&](uint32_t afterBytes) {
            ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{scsiPort, afterBytes}),
                      Done);
        };
        const auto isOff = [&](const Answer& answer) {
            EXPECT_EQ(answer.completion, NoDevice);
            EXPECT_EQ(Ask(port, DriverProperties, 200).completion, NoDevice);
            EXPECT_EQ(Report(scsiPort)->withoutPower, 1);
            Reset(scsiPort);
            EXPECT_EQ(Ask(port, DriverProperties, 200).completion, Done);
        };
        auto expected = ReadAll(port);
        const uint16_t code = Layout(port)[0].code;
        // In the second of the chunks, and in its second page.
        const Bytes image(131072, 0x3C);
        fail(65536 + 5000);
        isOff(WriteRegion(port, code, image));
        CutOff(expected[code], 0, 0, image, 65536 + 5000);
        // The settings of the port: in a region, which shares its page with others.
        if (chip.Has(properties::ChipTrait::Newer)) {
            const auto nvram =
                flash::RegionOfPort(flash::kNvramRegions, {chip, 0, 0, 0}, flash::Bank::First);
            const auto region = static_cast<uint16_t>(*nvram);
            const Bytes block(512, 0x3D);
            fail(100);
            isOff(WriteRegion(port, region, block));
            CutOff(expected[region], StatusOf(scsiPort, region).start, 0, block, 100);
        }
        EXPECT_EQ(ReadAll(port), expected);
        // By byte offset.
        const Bytes piece(1024, 0x3E);
        fail(300);
        isOff(WriteAt(port, 8192 - 512, piece, 1024));
        CutOff(expected[code], 0, 8192 - 512, piece, 300);
        fail(512);
        isOff(WriteAt(port, 8192 - 512, piece, 1024));
        CutOff(expected[code], 0, 8192 - 512, piece, 512);
        EXPECT_EQ(ReadAll(port), expected);
    });
    // A flash that is written as a whole.
    StartClassic();
    Bytes rom = ReadRegion(kLegacy, 255);
    const Bytes image(131072, 0x3C);
    for (const auto& [write, cut] :
         {std::pair{OptionRomWriteOld, 70000u}, std::pair{Command{FlashWrite.code, 0}, 131071u}}) {
        ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{9, cut}), Done);
        EXPECT_EQ(Ask(kLegacy, write, 0, image).completion, NoDevice);
        Reset(9);
        CutOff(rom, 0, 0, image, cut);
        EXPECT_EQ(ReadRegion(kLegacy, 255), rom);
    }
    // Memory of the port's own, which needs no erasing.
    Bytes block = Ask(kLegacy, {NvramRead.code, 0}, 256).data;
    ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{9, 100}), Done);
    EXPECT_EQ(Ask(kLegacy, {NvramWrite.code, 0}, 0, Bytes(256, 0x3F)).completion, NoDevice);
    Reset(9);
    std::fill_n(block.begin(), 100, uint8_t{0x3F});
    EXPECT_EQ(Ask(kLegacy, {NvramRead.code, 0}, 256).data, block);
}

TEST_F(EmulatorFlash, ActivationsThatGoWrong) {
    using enum vxemu::FaultKind;
    const auto image = WithVersion(ReadRegion(kNewest, kFirmware), 9, 13, 4, 0x7740);
    const auto add = [&](FaultKind kind, uint32_t times) {
        AddFault({3, RestartFirmware.code, 0, 0, times, kind, kind == Hang ? 700u : 0, 0});
    };
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, image).Status(), Success);
    add(OldVersion, 2);
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), Success);
    EXPECT_EQ(RunningFirmware(kNewest), "9.12.01");
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), image);
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), Success);
    EXPECT_EQ(RunningFirmware(kNewest), "9.12.01");
    // It comes late, and not at all: then as a power cycle has it.
    add(Hang, 1);
    const Answer late =
        Ask(kNewest, RestartFirmware, 0, {static_cast<uint8_t>(flash::Restart::Activate)});
    EXPECT_EQ(late.delay, 700u);
    EXPECT_EQ(RunningFirmware(kNewest), "9.13.04");
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, WithVersion(image, 9, 14, 0, 0x7740)).Status(),
              Success);
    add(NoReturn, 1);
    EXPECT_EQ(Ask(kNewest, RestartFirmware, 0, {static_cast<uint8_t>(flash::Restart::Activate)})
                  .completion,
              NoDevice);
    EXPECT_EQ(Ask(1, DriverProperties, 200).completion, NoDevice);
    EXPECT_EQ(Ask(kLargeRom, DriverProperties, 200).completion, Done);
    Reset(4);
    EXPECT_EQ(RunningFirmware(kNewest), "9.14.00");
}

TEST_F(EmulatorFlash, ReadBackIsWrongInOneByte) {
    const Bytes before = ReadRegion(kNewest, kFirmware);
    const uint32_t id =
        AddFault({3, FlashRead.code, kFirmware, 0, 0, FaultKind::CorruptByte, 70000, 0});
    Bytes expected = before;
    expected[70000] ^= 0xFF;
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), expected);
    EXPECT_EQ(ReadRegion(1, kFirmware), before) << "another port";
    Control(control::kFaultClear, FaultClear{id});
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), before) << "the flash itself is sound";
    // By byte offset it is a place in the flash; elsewhere one in the reply.
    AddFault({3, kAnyCode, kAnySubCode, 0, 0, FaultKind::CorruptByte, 260, 0});
    const Bytes boot = ReadRegion(1, kBoot);
    const Bytes piece = ReadAt(kNewest, 256, 16, 16).data;
    ASSERT_EQ(piece.size(), 16u);
    EXPECT_EQ(piece[4], boot[260] ^ 0xFF);
    EXPECT_EQ(piece[3], boot[259]);
    EXPECT_EQ(ReadAt(kNewest, 512, 16, 16).data, Bytes(boot.begin() + 512, boot.begin() + 528));
    const Bytes node = Ask(kNewest, NodeProperties, 696).data;
    const Bytes sound = Ask(1, NodeProperties, 696).data;
    EXPECT_EQ(node[260], sound[260] ^ 0xFF);
}

TEST_F(EmulatorFlash, WrittenFirmwareRunsAfterItsActivation) {
    const Bytes factory = ReadRegion(kNewest, kFirmware);
    const Bytes image = WithVersion(factory, 9, 13, 4, 0x7740);
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, image).Status(), Success);
    EXPECT_EQ(RunningFirmware(kNewest), "9.12.01");
    // Not while the system's disk is behind the port.
    Set(3, "boots_from_san", 1);
    EXPECT_EQ(Ask(kNewest, BootFromSan, 1, {0}).data, Bytes{1});
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), InvalidRequest);
    Set(3, "boots_from_san", 0);
    EXPECT_EQ(Ask(kNewest, BootFromSan, 1, {0}).data, Bytes{0});
    Delivery(kNewest, true);
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), Success);
    EXPECT_EQ(RunningFirmware(kNewest), "9.13.04");
    EXPECT_EQ(RunningFirmware(1), "9.13.04");
    EXPECT_EQ(FetchCodes(kNewest).size(), 2u) << "the link goes and comes";

    // Damaged firmware does not start; what runs goes on, and the recovery firmware takes over with
    // the next start.
    vxemu::FlashSelector place = {3, kFirmware, 4096};
    EXPECT_EQ(Control(control::kFlashCorrupt, place), Done);
    EXPECT_EQ(StatusOf(3, kFirmware).checksum, CheckState::Bad);
    EXPECT_EQ(StatusOf(3, kFirmware).signature, CheckState::Bad);
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), FirmwareState);
    EXPECT_EQ(RunningFirmware(kNewest), "9.13.04");
    Reset(3);
    EXPECT_EQ(RunningFirmware(kNewest), "9.00.00");
    EXPECT_EQ(Control(control::kFlashCorrupt, place), Done);
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), image) << "only that byte was damaged";
    // So does firmware of another chip, however sound it is.
    Bytes other = image;
    support::PutWord(other, formats::kDeviceWord, 0x7404);
    other = WithVersion(other, 9, 14, 0, 0x7740);
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, other).Status(), Success);
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), FirmwareState);
    EXPECT_EQ(Restart(kNewest, flash::Restart{5}), InvalidParameter);

    for (const uint32_t offset : {SizeOf(kNewest, kFirmware), 0xFFFFFFFFu}) {
        place.offset = offset;
        EXPECT_EQ(Control(control::kFlashCorrupt, place), NoDevice);
    }
}

TEST_F(EmulatorFlash, BootCodeTellsTheOptionRomVersion) {
    Bytes boot = ReadRegion(kLargeRom, kBoot);
    formats::RomHeader header;
    std::memcpy(&header, boot.data(), sizeof header);
    boot[header.dataOffset + offsetof(formats::RomData, majorRevision)] = 4;
    boot[header.dataOffset + offsetof(formats::RomData, revision)] = 7;
    ASSERT_TRUE(formats::UpdateChecksum(boot));
    EXPECT_EQ(WriteRegion(kLargeRom, kBoot, boot).Status(), Success);
    EXPECT_STREQ(StatusOf(6, kBoot).version, "BIOS 4.07, FCODE 4.11, EFI 7.24");
    EXPECT_EQ(StatusOf(6, kBoot).checksum, CheckState::Good);
    Reset(6);
    const auto node =
        Ask(kLargeRom, NodeProperties, sizeof(properties::NodeReply)).As<properties::NodeReply>();
    EXPECT_STREQ(node.optionRomVersion, "4.07");
    EXPECT_STREQ(node.firmwareVersion, "8.01.02");
}

TEST_F(EmulatorFlash, NothingIsWrittenInLockdownOrToReadOnlyRegions) {
    const auto before = ReadAll(kNewest);
    const Answer readOnly = WriteRegion(kNewest, kRecovery, Bytes(131072));
    EXPECT_EQ(readOnly.Status(), MailboxFailed);
    EXPECT_EQ(+readOnly.envelope.ext.detailStatus, 0x4006u);
    const uint32_t start = StatusOf(3, kRecovery).start;
    EXPECT_EQ(WriteAt(kNewest, start - 256, Bytes(512), 512).Status(), MailboxFailed)
        << "not even in part";
    Set(3, "lockdown", 1);
    const Answer state = Ask(kNewest, LockdownState, 64, Bytes(64));
    EXPECT_EQ(state.Status(), Lockdown);
    EXPECT_EQ(state.data.at(0), 1);
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, before.at(kFirmware)).Status(), Lockdown);
    EXPECT_EQ(WriteAt(kNewest, 0, Bytes(256), 256).Status(), Lockdown);
    EXPECT_EQ(Ask(1, {NvramWrite.code, 2}, 0, Bytes(512)).Status(), Lockdown);
    EXPECT_EQ(Ask(1, VpdWrite, 0, Bytes(512)).Status(), Lockdown);
    EXPECT_EQ(Ask(1, SecureFlashBegin, 0).Status(), Lockdown);
    EXPECT_EQ(ReadAll(kNewest), before);
    Set(3, "lockdown", 0);
    EXPECT_EQ(Ask(kNewest, LockdownState, 64, Bytes(64)).Status(), Success);
}

class EmulatorSecureUpdate : public EmulatorFlashFixture {
  protected:
    DriverStatus Step(Command command) { return Ask(kNewest, command, 0).Status(); }
    DriverStatus Announce(uint16_t region, const Bytes& image) {
        flash::SecureHeaderRecord header = {};
        header.region = region;
        header.imageSize = static_cast<uint32_t>(image.size());
        header.crc = formats::Crc32(image);
        std::copy_n(image.begin(), std::min<size_t>(image.size(), 512), header.imageHead);
        return Ask(kNewest, SecureFlashHeader, 0, BytesOf(header)).Status();
    }
    // A whole session up to its result.
    uint32_t Try(uint16_t region, const Bytes& image) {
        EXPECT_EQ(Step(SecureFlashBegin), Success);
        EXPECT_EQ(Announce(region, image), Success);
        EXPECT_EQ(WriteRegion(kNewest, region, image).Status(), Success);
        EXPECT_EQ(Step(SecureFlashVerify), Success);
        return Result();
    }
    uint32_t Result() {
        return Ask(kNewest, SecureFlashStatus, 40, Bytes(40))
            .As<flash::SecureStatusRecord>()
            .result;
    }
};

TEST_F(EmulatorSecureUpdate, TakesEffectWithItsCommit) {
    const Bytes factory = ReadRegion(kNewest, kFirmware);
    const Bytes image = WithVersion(factory, 9, 13, 4, 0x7740);
    EXPECT_EQ(Try(kFirmware, image), 0u);
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), factory);
    EXPECT_EQ(Step(SecureFlashCommit), Success);
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), image);
    EXPECT_EQ(Step(SecureFlashCommit), InvalidRequest) << "twice";
    EXPECT_EQ(Restart(kNewest, flash::Restart::Activate), Success);
    EXPECT_EQ(RunningFirmware(kNewest), "9.13.04");
    // Settings need no signature, but have to be sound.
    Bytes block = ReadRegion(kNewest, 269);
    EXPECT_EQ(Try(269, block), 0u);
    block[40] ^= 1;
    EXPECT_EQ(Try(269, block), 1u);
}

TEST_F(EmulatorSecureUpdate, RefusedImagesLeaveEverythingAsItWas) {
    const auto before = ReadAll(kNewest);
    const Bytes image = WithVersion(before.at(kFirmware), 9, 13, 4, 0x7740);
    Bytes damaged = image;
    damaged[1000] ^= 1;
    EXPECT_EQ(Try(kFirmware, damaged), 1u);
    EXPECT_EQ(Step(SecureFlashCommit), InvalidRequest);
    Bytes otherChip = image;
    Sign(otherChip, 0x7742, kFirmware);
    EXPECT_EQ(Try(kFirmware, otherChip), 1u);
    Bytes otherRegion = image;
    Sign(otherRegion, 0x7740, kBoot);
    EXPECT_EQ(Try(kFirmware, otherRegion), 1u);
    // Not what was announced.
    EXPECT_EQ(Step(SecureFlashBegin), Success);
    EXPECT_EQ(Announce(kFirmware, damaged), Success);
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, image).Status(), Success);
    EXPECT_EQ(Step(SecureFlashVerify), Success);
    EXPECT_EQ(Result(), 2u);
    // Not all of it.
    EXPECT_EQ(Step(SecureFlashBegin), Success);
    EXPECT_EQ(Announce(kFirmware, image), Success);
    EXPECT_EQ(WriteChunk(kNewest, kFirmware, 64, 1, Bytes(65536)).Status(), InvalidParameter)
        << "out of order";
    EXPECT_EQ(WriteChunk(kNewest, kFirmware, 64, 0, Bytes(65536)).Status(), Success);
    EXPECT_EQ(Step(SecureFlashVerify), Success);
    EXPECT_EQ(Result(), 3u);
    // One that nothing is wrong with, but for the adapter.
    AddFault({3, SecureFlashVerify.code, 0, 0, 1, FaultKind::BadSignature, 0, 0});
    EXPECT_EQ(Try(kFirmware, image), 1u);
    EXPECT_EQ(Step(SecureFlashCommit), InvalidRequest);
    EXPECT_EQ(Try(kFirmware, image), 0u);
    EXPECT_EQ(Step(SecureFlashAbort), Success);
    EXPECT_EQ(Step(SecureFlashVerify), InvalidRequest);
    EXPECT_EQ(Announce(kFirmware, image), InvalidRequest);
    // Headers of no region, of the wrong size, of a read-only region; chips without it.
    EXPECT_EQ(Step(SecureFlashBegin), Success);
    EXPECT_EQ(Announce(999, image), InvalidParameter);
    EXPECT_EQ(Announce(kFirmware, Bytes(image.size() - 1)), InvalidParameter);
    EXPECT_EQ(Announce(kRecovery, before.at(kRecovery)), MailboxFailed);
    EXPECT_EQ(Ask(kLargeRom, SecureFlashBegin, 0).Status(), InvalidRequest);
    EXPECT_EQ(ReadAll(kNewest), before);
}

TEST_F(EmulatorSecureUpdate, NeedsNoPowerToKeepTheOldImage) {
    const auto before = ReadAll(kNewest);
    const Bytes image = WithVersion(before.at(kFirmware), 9, 13, 4, 0x7740);
    EXPECT_EQ(Step(SecureFlashBegin), Success);
    EXPECT_EQ(Announce(kFirmware, image), Success);
    ASSERT_EQ(Control(control::kPowerFail, vxemu::PowerFailRequest{4, 100'000}), Done);
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, image).completion, NoDevice);
    Reset(3);
    EXPECT_EQ(ReadAll(kNewest), before);
    EXPECT_EQ(Step(SecureFlashVerify), InvalidRequest);
    EXPECT_EQ(RunningFirmware(kNewest), "9.12.01");
}

TEST_F(EmulatorSecureUpdate, OnceInForceItIsTheOnlyWayToWriteCode) {
    const Bytes factory = ReadRegion(kNewest, kFirmware);
    const auto state = [&] { return Ask(kNewest, SecureFlashState, 8, Bytes(8)).data.at(0); };
    EXPECT_EQ(state(), 0);
    Set(3, "secure_updates", 1);
    EXPECT_EQ(state(), 1);
    EXPECT_EQ(WriteRegion(kNewest, kFirmware, factory).Status(), MailboxFailed);
    EXPECT_EQ(WriteAt(kNewest, 0, Bytes(256), 256).Status(), MailboxFailed);
    EXPECT_EQ(WriteRegion(kNewest, 269, ReadRegion(kNewest, 21)).Status(), Success);
    EXPECT_EQ(Try(kFirmware, factory), 0u);
    EXPECT_EQ(Step(SecureFlashCommit), Success);
    EXPECT_EQ(ReadRegion(kNewest, kFirmware), factory);
}

}  // namespace
