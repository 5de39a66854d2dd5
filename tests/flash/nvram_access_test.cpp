// NVRAM and VPD of a port on every kind of chip and driver.

#include "flash/nvram_variables.h"
#include "machine/flash_driver.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

constexpr uint32_t kPayloadSize = 19;
constexpr uint32_t kFamily = 128;

class NvramAccessTest : public FlashTest {
  protected:
    HX_STATUS Get(GuardedBuffer& buffer, uint32_t mode) {
        return HXGetNVRam(handle, 0, mode, buffer.Data(), static_cast<uint32_t>(buffer.Size()));
    }
    HX_STATUS Update(GuardedBuffer& buffer, uint32_t mode) {
        return HXUpdateNVRam(handle, 0, mode, buffer.Data(), static_cast<uint32_t>(buffer.Size()));
    }
    // Which region a read, then a write goes to; 0 = none.
    std::pair<uint32_t, uint32_t> NvramRegions(uint8_t function) {
        port->chip.functionBits = static_cast<uint8_t>(function << 5);
        port->AnswerProbes();
        port->Forget();
        GuardedBuffer block(512);
        const HX_STATUS read = Get(block, HX_NVRAM_BLOCK);
        const HX_STATUS written = Update(block, HX_NVRAM_BLOCK);
        const auto region = [](HX_STATUS status, const std::vector<FlashAccess>& accesses) {
            EXPECT_EQ(accesses.empty(), status == HXMGT_INVALID_REQUEST);
            return accesses.empty() ? 0u : accesses[0].subCode;
        };
        return {region(read, Reads()), region(written, Writes())};
    }
};

TEST_F(NvramAccessTest, LegacyDriver) {
    Reopen("7.05.02", 0x7300);
    port->OnPlain(command::LegacyNvramRead, {.data = Bytes(256, 0x10)});
    const auto selector = [](uint32_t number) {
        return static_cast<properties::LegacySelector>(number);
    };
    flash::LegacySettingsReply settings = {};
    memset(settings.bytes, 0x20, sizeof settings.bytes);
    port->OnSelector(selector(13), {.data = BytesOf(settings)});
    flash::LegacyTailReply tail = {};
    memset(tail.bytes, 0x30, sizeof tail.bytes);
    port->OnSelector(selector(14), {.data = BytesOf(tail)});

    GuardedBuffer block(256);
    ASSERT_EQ(0u, Get(block, 1));
    EXPECT_TRUE(block.Holds(0x10));
    EXPECT_EQ(Bytes(256, 0xEE), port->Last().Data()) << "the block goes out, too";
    ASSERT_EQ(0u, Get(block, 2));
    EXPECT_TRUE(block.Holds(0x10, 0, 6) && block.Holds(0x20, 6, 70) && block.Holds(0x30, 70, 86) &&
                block.Holds(0x10, 86, 256));
    GuardedBuffer small(85);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Get(small, 2));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Update(small, 3));
    for (const uint32_t mode : {0u, 3u, 4u}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, Get(block, mode));
    }

    // Writes: the block, its settings, or both; the caller's block stays as it is.
    port->OnPlain(command::LegacyNvramWrite, {.data = Bytes(256, 0x77)});
    port->OnPlain(command::LegacyNvramWrite64, {});
    port->OnPlain(command::LegacyNvramWrite16, {});
    for (uint32_t i = 0; i < 256; ++i) {
        block.Data()[i] = static_cast<uint8_t>(i);
    }
    const auto codes = [&](uint32_t mode) {
        port->Forget();
        EXPECT_EQ(0u, Update(block, mode));
        std::string text;
        for (const SentRequest& request : port->Requests()) {
            const Bytes data = request.Data();
            char part[48];
            snprintf(part, sizeof part, "%x:%u+%zu ", request.Code(), data[0], data.size());
            text += part;
        }
        return text;
    };
    EXPECT_EQ("f0000028:0+256 ", codes(1));
    EXPECT_EQ("f000000d:6+64 f000000e:70+16 ", codes(2));
    EXPECT_EQ("f0000028:0+256 f000000d:6+64 f000000e:70+16 ", codes(3));
    EXPECT_EQ(Counting(256, 0), block.First(256));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Update(block, 4));
    port->OnPlain(command::LegacyNvramWrite, {.error = ERROR_GEN_FAILURE});
    port->Forget();
    EXPECT_EQ(Windows(ERROR_GEN_FAILURE), Update(block, 3));
    EXPECT_EQ(1u, port->Requests().size());
}

TEST_F(NvramAccessTest, ClassicChip) {
    Reopen("9.04.02", 0x7300);
    port->On({command::NvramRead.code, 0}, Reply{.data = Bytes(256, 0x10)});
    port->On({command::NvramRead.code, 1}, Reply{.data = Bytes(256, 0x11)});
    GuardedBuffer block(256);
    ASSERT_EQ(0u, Get(block, 1));
    EXPECT_TRUE(block.Holds(0x10));
    ASSERT_EQ(0u, Get(block, 2));
    EXPECT_TRUE(block.Holds(0x11));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Get(block, 3));
    for (const uint16_t subCode : {uint16_t{0}, uint16_t{1}, uint16_t{2}}) {
        port->On({command::NvramWrite.code, subCode}, Reply{});
    }
    for (const auto& [mode, subCode] : {std::pair<uint32_t, uint16_t>{1, 0}, {2, 1}, {3, 2}}) {
        ASSERT_EQ(0u, Update(block, mode));
        EXPECT_EQ((FlashAccess{subCode, 0, 256, 256, 256}), AccessOf(port->Last()));
        EXPECT_EQ(0u, port->Last().Envelope().ext.detailStatus);
        EXPECT_EQ(Bytes(256, 0x11), port->Last().Data());
    }
    EXPECT_EQ(0u, HXVerifyHbaNVRam(handle, 0));
    port->On({command::NvramRead.code, 1}, Reply{.status = 31});
    EXPECT_EQ(HXMGT_NVRAM_CHECKSUM_INVALID, HXVerifyHbaNVRam(handle, 0));
    port->On({command::NvramRead.code, 1}, Reply{.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(HXMGT_NVRAM_CHECKSUM_INVALID, HXVerifyHbaNVRam(handle, 0));
    EXPECT_EQ(HXMGT_NVRAM_CHECKSUM_INVALID, HXVerifyHbaNVRam(0, 0));
}

std::vector<RegionSpec> PortRegions(uint32_t size) {
    std::vector<RegionSpec> regions;
    for (const int code : {20,  21,  22,  23,  99,  129, 170, 172, 212, 213,
                           214, 215, 268, 269, 270, 271, 272, 273, 274, 275}) {
        regions.push_back({static_cast<uint16_t>(code), size});
    }
    return regions;
}

TEST_F(NvramAccessTest, RegionsOfReadsAndWrites) {
    using Pair = std::pair<uint32_t, uint32_t>;
    StartWith(0x7740, PortRegions(512));
    for (const uint8_t bank : {uint8_t{0}, uint8_t{1}, uint8_t{2}, uint8_t{3}}) {
        SetActiveBank(bank);
        EXPECT_EQ(bank == 2 ? Pair(269, 21) : Pair(21, 269), NvramRegions(0)) << int{bank};
        EXPECT_EQ(bank == 2 ? Pair(275, 215) : Pair(215, 275), NvramRegions(3)) << int{bank};
    }
    EXPECT_EQ(Pair(0, 0), NvramRegions(4));
    // A query that fails counts as "not the second", whatever came with it, and so does the refusal
    // of a disabled port.
    Bytes second(37, 2);
    port->On(command::ActiveRegions, Reply{.status = 21, .data = second});
    EXPECT_EQ(Pair(21, 269), NvramRegions(0));
    SetActiveBank(2);
    port->On(command::PortDisableInfo, Reply{.data = {1}});
    EXPECT_EQ(Pair(21, 269), NvramRegions(0));
    uint32_t size = 512;
    Bytes vpd(size);
    port->Forget();
    EXPECT_EQ(0u, HXGetVpd(handle, 0, vpd.data(), &size));
    EXPECT_EQ(20u, Reads().at(0).subCode);
    // The port's own region comes before the banks.
    port->chip.flashRegionFlag = 1;
    port->chip.flashRegionCode = 99;
    EXPECT_EQ(Pair(99, 99), NvramRegions(0));

    StartWith(0x7600, PortRegions(512));
    EXPECT_EQ(Pair(172, 172), NvramRegions(1));
    StartWith(0x7400, PortRegions(512));
    EXPECT_EQ(Pair(23, 23), NvramRegions(4));
    StartWith(0x7400, {{99, 512}});
    EXPECT_EQ(Pair(0, 0), NvramRegions(0)) << "the layout does not have it";
}

TEST_F(NvramAccessTest, ExtendedBlock) {
    StartWith(0x7700, PortRegions(512));
    GuardedBuffer block(512, 0x5A);
    ASSERT_EQ(0u, Update(block, HX_NVRAM_BLOCK));
    EXPECT_EQ(block.First(512), Written());
    EXPECT_TRUE(block.Holds(0x5A, 0, 508));
    uint32_t sum = 0;
    for (uint32_t i = 0; i < 512; i += 4) {
        uint32_t word;
        memcpy(&word, block.Data() + i, 4);
        sum += word;
    }
    EXPECT_EQ(0u, sum);

    // The restart, with its pause on one chip.
    port->On({command::NvramWrite.code, 2}, Reply{});
    system.sleeps.clear();
    ASSERT_EQ(0u, Update(block, HX_NVRAM_RESTART));
    EXPECT_EQ(1u, port->Requests({command::NvramWrite.code, 2}).size());
    EXPECT_TRUE(system.sleeps.empty());
    for (const uint16_t deviceId : {uint16_t{0x7600}, uint16_t{0x7601}}) {
        StartWith(deviceId, PortRegions(512));
        port->On({command::NvramWrite.code, 2}, Reply{.status = 31});
        EXPECT_EQ(HXMGT_NVRAM_CHECKSUM_INVALID, Update(block, HX_NVRAM_RESTART));
        EXPECT_EQ(deviceId == 0x7601 ? std::vector<DWORD>{500} : std::vector<DWORD>{},
                  system.sleeps);
        EXPECT_EQ(0u, Update(block, HX_NVRAM_VERIFIED));
    }
    port->On({command::FlashWrite.code, 170}, Reply{.status = 22});
    port->Forget();
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, Update(block, HX_NVRAM_RESTART));
    EXPECT_TRUE(port->Requests({command::NvramWrite.code, 2}).empty());

    GuardedBuffer small(511, 0x77);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Update(small, 1));
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, Get(small, 1));
    EXPECT_TRUE(small.Holds(0x77));
    for (const uint32_t mode : {0u, 4u}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, Update(block, mode));
    }
    GuardedBuffer large(513, 0x77);
    EXPECT_EQ(HXMGT_INVALID_REQUEST, Update(large, 1)) << "not the region's size";
    EXPECT_EQ(0u, Get(large, 1));
    EXPECT_EQ(0x77, large[512]);
}

TEST_F(NvramAccessTest, VariablesByChip) {
    Reopen("9.04.02", 0x7300);
    GuardedBuffer classic(256, 0);
    const flash::Variable& payload = flash::kVariableTable[kPayloadSize];
    EXPECT_EQ(1u, HXSetVariableValue(handle, classic.Data(), kPayloadSize, 0x12345));
    EXPECT_EQ(0u, HXSetVariableValue(handle, classic.Data(), kPayloadSize, 0x2345));
    EXPECT_EQ(0x2345u, HXGetVariableValue(handle, classic.Data(), kPayloadSize));
    EXPECT_EQ(0x45, classic[payload.word * 2u]);
    Reopen("9.04.02", 0x7740);
    GuardedBuffer extended(512, 0);
    EXPECT_EQ(1u, HXSetVariableValue(handle, extended.Data(), kPayloadSize, 0x2345));
    EXPECT_EQ(0x45, extended[payload.extendedOffset]);
    EXPECT_EQ(0u, HXSetVariableValue(handle, extended.Data(), kFamily, 3)) << "not there";
    EXPECT_EQ(0u, HXGetVariableValue(handle, extended.Data(), 188));
    EXPECT_STREQ("Firmare Version", HXGetVariableDescription(0, 2));
    EXPECT_NE(nullptr, HXGetVariableDescription(0, 187));
    EXPECT_EQ(nullptr, HXGetVariableDescription(0, 188));
    EXPECT_EQ(0u, HXIsVariableReadOnly(classic.Data(), 0));
    classic.Data()[flash::kVariableTable[kFamily].word * 2u] = 1;
    EXPECT_NE(0u, HXIsVariableReadOnly(classic.Data(), 0));
}

// Each place is what setting all of the variable's bits changes in an empty block.
TEST_F(NvramAccessTest, PlacesOfVariables) {
    for (const uint16_t chip : {uint16_t{0x7300}, uint16_t{0x7740}}) {
        Reopen("9.04.02", chip);
        const size_t bytes = chip == 0x7300 ? 256 : 512;
        GuardedBuffer room(HX_NVRAM_VARIABLES * sizeof(HX_VARIABLE_FIELD));
        auto* const fields = reinterpret_cast<HX_VARIABLE_FIELD*>(room.Data());
        uint32_t count = HX_NVRAM_VARIABLES;
        port->Forget();
        ASSERT_EQ(0u, HXGetVariableFields(handle, fields, &count));
        EXPECT_EQ(1u, port->Requests().size());
        EXPECT_EQ(188u, count);
        for (uint32_t number = 0; number < count; ++number) {
            Bytes made(bytes);
            for (uint32_t i = 0; i < fields[number].width; ++i) {
                const uint32_t bit = fields[number].firstBit + i;
                ASSERT_LT(bit / 8, bytes) << number;
                made[bit / 8] = static_cast<uint8_t>(made[bit / 8] | 1 << bit % 8);
            }
            Bytes block(bytes);
            HXSetVariableValue(handle, block.data(), number, UINT32_MAX);
            EXPECT_EQ(block, made) << number << " of " << chip;
        }
        GuardedBuffer few(10 * sizeof *fields);
        count = 10;
        EXPECT_EQ(
            HXMGT_BUFFER_TOO_SMALL,
            HXGetVariableFields(handle, reinterpret_cast<HX_VARIABLE_FIELD*>(few.Data()), &count));
        EXPECT_EQ(188u, count);
        EXPECT_EQ(0, memcmp(room.Data(), few.Data(), few.Size()));
    }
    uint32_t count = 0;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetVariableFields(handle, nullptr, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetVariableFields(handle, nullptr, &count));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetVariableFields(handle, nullptr, nullptr));
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXGetVariableFields(0, nullptr, &count));
    port->On(command::ChipProperties, {.error = ERROR_GEN_FAILURE});
    count = 0;
    EXPECT_EQ(static_cast<HX_STATUS>(ERROR_GEN_FAILURE),
              HXGetVariableFields(handle, nullptr, &count));
}

TEST_F(NvramAccessTest, TextFile) {
    GuardedBuffer block(256, 0);
    for (uint32_t i = 4; i < 256; ++i) {
        block.Data()[i] = static_cast<uint8_t>(i * 11);
    }
    memcpy(block.Data(), "KPU ", 4);
    block.Data()[flash::kVariableTable[kFamily].word * 2u] = 1;
    ScratchFile file;
    ASSERT_EQ(1, WriteNVRamFile(block.Data(), file.Path().c_str()));
    const std::string text = file.Contents();
    EXPECT_EQ(188, std::count(text.begin(), text.end(), '\n'));
    EXPECT_TRUE(
        text.starts_with("id                                      [\"4 characters\"] = "
                         "\"KPU \"\nversion                                 [0-255] = "));

    GuardedBuffer read(256, 0);
    ASSERT_TRUE(CNVRamFile::Read(file.Path().c_str(), read.Data(), 0, true));
    for (uint32_t index = 0; index < 135; ++index) {
        EXPECT_EQ(flash::GetVariable({block.Data(), 256}, flash::BlockKind::Classic, index),
                  flash::GetVariable({read.Data(), 256}, flash::BlockKind::Classic, index))
            << index;
    }
    // Whatever the signature: 188 lines, and the same block again.
    for (const std::string_view signature :
         {std::string_view("K\0\0U", 4), std::string_view("=\"==", 4),
          std::string_view("\"\r\n\x1A", 4), std::string_view("\n\n\n\n", 4),
          std::string_view("\r\n\r\n", 4), std::string_view("KPU\r", 4),
          std::string_view(";id ", 4), std::string_view("\xFF\x80 \0", 4)}) {
        memcpy(block.Data(), signature.data(), 4);
        ASSERT_EQ(1, WriteNVRamFile(block.Data(), file.Path().c_str()));
        std::string whole = file.Contents(false);
        const size_t at = whole.find("] = \"");
        EXPECT_EQ(signature, whole.substr(at + 5, 4));
        whole.erase(at + 5, 4);
        EXPECT_EQ(188, std::count(whole.begin(), whole.end(), '\n'));
        memset(read.Data(), 0, 256);
        ASSERT_EQ(1, ReadNVRamFile(file.Path().c_str(), read.Data(), 0, 1));
        for (uint32_t index = 0; index < 135; ++index) {
            EXPECT_EQ(flash::GetVariable({block.Data(), 256}, flash::BlockKind::Classic, index),
                      flash::GetVariable({read.Data(), 256}, flash::BlockKind::Classic, index))
                << index;
        }
    }
    memcpy(block.Data(), "\0BCD", 4);
    ASSERT_EQ(1, WriteNVRamFile(block.Data(), file.Path().c_str()));
    ASSERT_EQ(1, ReadNVRamFile(file.Path().c_str(), read.Data(), 0, 1));
    EXPECT_EQ(0, memcmp(read.Data(), "KPU ", 4));
    memcpy(block.Data(), "KPU ", 4);

    // A line longer than the reader's counts as several; a last line needs no end.
    FILE* const raw = fopen(file.Path().c_str(), "w");
    const std::string filler(256, 'x');
    fprintf(raw, "\n;port name 1 = 1\n%sport name 0 = 300\nframe payload size = 7", filler.c_str());
    fclose(raw);
    memset(read.Data(), 0, 256);
    ASSERT_EQ(1, ReadNVRamFile(file.Path().c_str(), read.Data(), 0, 0));
    EXPECT_EQ(44u, flash::GetVariable({read.Data(), 256}, flash::BlockKind::Classic, 24));
    EXPECT_EQ(7u, flash::GetVariable({read.Data(), 256}, flash::BlockKind::Classic, kPayloadSize));

    // A file that cannot be opened: mode 1 has cleared the block but for what is read-only.
    const char* const nowhere = "Z:\\no such folder\\file.txt";
    EXPECT_EQ(0, WriteNVRamFile(block.Data(), nowhere));
    const Bytes before(block.Data(), block.Data() + 256);
    EXPECT_EQ(0, ReadNVRamFile(nowhere, block.Data(), 0, 0));
    EXPECT_EQ(before, block.First(256));
    EXPECT_EQ(0, ReadNVRamFile(nowhere, block.Data(), 1, 0));
    EXPECT_EQ(0, memcmp(block.Data(), "KPU ", 4));
    EXPECT_EQ(0, block[flash::kVariableTable[kPayloadSize].word * 2u]);
    EXPECT_EQ(0, WriteNVRamFile(nullptr, nowhere));
    EXPECT_EQ(0, ReadNVRamFile(nullptr, block.Data(), 1, 0));
}

class VpdTest : public NvramAccessTest {
  protected:
    HX_STATUS Get(GuardedBuffer& buffer, uint32_t& size) {
        size = static_cast<uint32_t>(buffer.Size());
        return HXGetVpd(handle, 0, buffer.Data(), &size);
    }
};

TEST_F(VpdTest, ClassicChip) {
    Reopen("9.04.02", 0x7300);
    GuardedBuffer buffer(256);
    uint32_t size = 0;
    port->On(command::VpdRead, Reply{.data = Counting(200)});
    ASSERT_EQ(0u, Get(buffer, size));
    EXPECT_EQ(200u, size);
    EXPECT_TRUE(buffer.Is(Counting(200)));
    port->On(command::VpdRead, Reply{.status = 16, .responseLength = 512});
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, Get(buffer, size));
    EXPECT_EQ(512u, size);
    port->On(command::VpdWrite, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXUpdateVpd(handle, 0, buffer.Data(), 256));
    EXPECT_EQ(256u, port->Last().Data().size());
}

// The table may claim any size: a whole last KiB never passes the end of the caller's buffer.
TEST_F(VpdTest, LargeRegionsStayInTheCallersBuffer) {
    StartWith(0x7760, PortRegions(65537));
    for (const uint32_t room : {65537u, 66560u}) {
        GuardedBuffer buffer(room);
        uint32_t size = 0;
        EXPECT_EQ(0u, Get(buffer, size));
        EXPECT_EQ(65537u, size);
        EXPECT_EQ(2, buffer[65536]) << "the first byte of the second chunk";
        GuardedBuffer block(room);
        EXPECT_EQ(0u, HXGetNVRam(handle, 0, HX_NVRAM_BLOCK, block.Data(), room));
        EXPECT_EQ(2, block[65536]);
    }
}

TEST_F(VpdTest, RegionLayoutChip) {
    struct Row {
        uint16_t deviceId;
        uint8_t bank, ownCode;
        uint32_t read, written;
    };
    const Row rows[] = {{0x7740, 2, 0, 268, 20}, {0x7740, 1, 0, 20, 268},  {0x7720, 1, 99, 20, 268},
                        {0x7760, 2, 0, 20, 20},  {0x7610, 0, 0, 129, 129}, {0x7610, 0, 99, 99, 99},
                        {0x7600, 0, 99, 20, 20}, {0x7502, 0, 0, 20, 20}};
    for (const Row& row : rows) {
        StartWith(row.deviceId, PortRegions(300));
        SetActiveBank(row.bank);
        port->chip.flashRegionFlag = row.ownCode != 0;
        port->chip.flashRegionCode = row.ownCode;
        port->AnswerProbes();
        port->On(command::VpdWrite, Reply{});
        uint32_t size = 0;
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetVpd(handle, 0, nullptr, &size));
        EXPECT_EQ(300u, size);
        GuardedBuffer small(299);
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, Get(small, size));
        EXPECT_TRUE(small.Holds(0xEE));
        EXPECT_TRUE(Reads().empty());
        GuardedBuffer buffer(310);
        ASSERT_EQ(0u, Get(buffer, size)) << row.deviceId;
        EXPECT_EQ(300u, size);
        EXPECT_TRUE(buffer.Holds(0xEE, 300, 310));
        EXPECT_EQ(row.read, Reads().at(0).subCode) << row.deviceId;

        // The region, then the driver's own copy; nothing of the kind after a failure.
        ASSERT_EQ(0u, HXUpdateVpd(handle, 0, buffer.Data(), 300)) << row.deviceId;
        EXPECT_EQ(row.written, Writes().at(0).subCode) << row.deviceId;
        EXPECT_EQ(Written(), port->Requests(command::VpdWrite).at(0).Data());
        EXPECT_EQ(HXMGT_INVALID_REQUEST, HXUpdateVpd(handle, 0, buffer.Data(), 299));
        EXPECT_EQ(1u, port->Requests(command::VpdWrite).size());
    }
    StartWith(0x7740, {});
    uint32_t size = 77;
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXGetVpd(handle, 0, &size, &size)) << "no regions";
}

}  // namespace
