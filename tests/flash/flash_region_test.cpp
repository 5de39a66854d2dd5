// Regions: reading, updating, preparing.
#include <array>

#include "formats/crc32.h"
#include "machine/flash_driver.h"
#include "support/rom_builder.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

class FlashRegionTest : public FlashTest {
  protected:
    HX_STATUS Update(Bytes& image, uint32_t region) {
        return HXUpdateOptionRomEx(handle, 0, image.data(), static_cast<uint32_t>(image.size()),
                                   region);
    }
    HX_STATUS Update2(Bytes& image, uint32_t region) {
        return HXUpdateOptionRomEx2(handle, 0, image.data(), static_cast<uint32_t>(image.size()),
                                    region);
    }
    // Answers every request of the secure sequence with success.
    void AnswerSecure(bool inForce) {
        port->On(command::SecureFlashState, Reply{.data = {uint8_t{inForce}, 0, 0, 0, 0, 0, 0, 0}});
        port->On(command::FlashLayoutEx, Reply{.data = LayoutReply({{7, 1, 1}}, 4104)});
        for (const transport::Command step :
             {command::SecureFlashBegin, command::SecureFlashHeader, command::SecureFlashVerify,
              command::SecureFlashCommit, command::SecureFlashAbort}) {
            port->On(step, Reply{});
        }
        AnswerResult(0);
    }
    void AnswerResult(uint32_t result) {
        port->On(command::SecureFlashStatus,
                 Reply{.data = BytesOf(flash::SecureStatusRecord{4, result, {}})});
    }
    // Codes of the requests, the property and layout ones left out.
    std::vector<uint32_t> Steps() const {
        std::vector<uint32_t> codes;
        for (const SentRequest& request : port->Requests()) {
            if (request.Code() != command::ChipProperties.code &&
                request.Code() != command::FlashLayout.code) {
                codes.push_back(request.Code());
            }
        }
        return codes;
    }
};

TEST_F(FlashRegionTest, ReadsAround64Kib) {
    struct Row {
        uint32_t size;
        std::vector<FlashAccess> reads;
        uint32_t written;
    };
    const Row rows[] = {
        {0, {{9, 0, 0, 0, 0}}, 0},
        {1, {{9, 0, 0, 0, 1}}, 1},
        {65536, {{9, 0, 0, 0, 65536}}, 65536},
        {65537, {{9, Chunk(64, 0), 4, 4, 65536}, {9, Chunk(1, 1), 4, 4, 1024}}, 66560},
        {66560, {{9, Chunk(64, 0), 4, 4, 65536}, {9, Chunk(1, 1), 4, 4, 1024}}, 66560},
        {66561, {{9, Chunk(64, 0), 4, 4, 65536}, {9, Chunk(2, 1), 4, 4, 2048}}, 67584},
        {131072, {{9, Chunk(64, 0), 4, 4, 65536}, {9, Chunk(64, 1), 4, 4, 65536}}, 131072},
    };
    for (const Row& row : rows) {
        StartWith(0x7740, {{1, 5}, {9, row.size}});
        GuardedBuffer buffer(row.written);
        ASSERT_EQ(0u, HXGetOptionRomEx(handle, 0, buffer.Data(), row.size, 9)) << row.size;
        EXPECT_EQ(row.reads, Reads()) << row.size;
        for (uint32_t i = 0; i < row.written; i += 65536) {
            EXPECT_EQ(i / 65536 + 1, buffer[i]) << "the piece in its place";
        }
    }
}

// Whatever the table claims: what of a whole last KiB is behind the buffer is left out.
TEST_F(FlashRegionTest, ReadsStayInTheCallersBuffer) {
    for (const auto& [size, room] : {std::pair{69998u, 69999u},
                                     {65537u, 65537u},
                                     {131071u, 131071u},
                                     {65537u, 66000u},
                                     {65537u, 66560u},
                                     {65537u, 70000u}}) {
        StartWith(0x7740, {{9, size}});
        GuardedBuffer buffer(room);
        ASSERT_EQ(0u, HXGetOptionRomEx(handle, 0, buffer.Data(), room, 9)) << size;
        EXPECT_EQ(2u, Reads().size());
        const uint32_t whole = std::min(room, (size + 1023) / 1024 * 1024);
        Bytes expected = Counting(65536, 1);
        Append(expected, Counting(whole - 65536, 2));
        expected.resize(room, 0xEE);
        EXPECT_EQ(expected, buffer.First(room)) << size << " in " << room;
    }
}

TEST_F(FlashRegionTest, TellsHowFarATransferIsAndEndsWhenTold) {
    struct Told {
        std::vector<std::array<uint32_t, 3>> calls;
        uint32_t stopAt = UINT32_MAX;
        static HX_STATUS Note(void* context, uint32_t region, uint32_t done, uint32_t total) {
            Told& told = *static_cast<Told*>(context);
            told.calls.push_back({region, done, total});
            return done >= told.stopAt ? HX_STATUS{ERROR_CANCELLED} : HX_STATUS{HXMGT_SUCCESS};
        }
    };
    using Calls = decltype(Told::calls);
    StartWith(0x7300, {{1, 5}, {9, 70000}});
    Told told;
    ASSERT_EQ(0u, HXSetFlashProgress(handle, Told::Note, &told));
    GuardedBuffer buffer(70656, 0xAB);
    ASSERT_EQ(0u, HXGetOptionRomEx(handle, 0, buffer.Data(), 70656, 9));
    ASSERT_EQ(0u, HXGetOptionRomEx(handle, 0, buffer.Data(), 5, 1));
    EXPECT_EQ((Calls{{9, 0, 70000}, {9, 65536, 70000}, {9, 70000, 70000}, {1, 0, 5}, {1, 5, 5}}),
              told.calls);

    port->Forget();
    told = {{}, 65536};
    EXPECT_EQ(ERROR_CANCELLED, HXUpdateOptionRomEx(handle, 0, buffer.Data(), 70000, 9));
    EXPECT_EQ((Calls{{9, 0, 70000}, {9, 65536, 70000}}), told.calls);
    EXPECT_EQ(1u, Writes().size()) << "nothing behind the piece at which it was told";
    told = {{}, 5};
    EXPECT_EQ(0u, HXUpdateOptionRomEx(handle, 0, buffer.Data(), 5, 1)) << "all of it is there";
    told = {};
    AnswerRegion(flash::kByOffset);
    ASSERT_EQ(0u, HXUpdateOptionRomOffset(handle, 0, buffer.Data(), 65537, 0));
    EXPECT_EQ((Calls{{0xFFFF, 0, 65537}, {0xFFFF, 65536, 65537}, {0xFFFF, 65537, 65537}}),
              told.calls);

    told = {};
    Reopen("9.04.02", 0x7300);
    StartWith(0x7300, {{1, 5}});
    ASSERT_EQ(0u, HXGetOptionRomEx(handle, 0, buffer.Data(), 5, 1));
    EXPECT_EQ(Calls{}, told.calls) << "nobody listens to the next one with the number";
    EXPECT_EQ(HXMGT_INVALID_HANDLE, HXSetFlashProgress(handle + 1, Told::Note, &told));
}

TEST_F(FlashRegionTest, ReadsThatAreRefused) {
    StartWith(0x7740, {{1, 5, 0xFF}, {9, 70000}});
    GuardedBuffer buffer(70000 / 1024 * 1024 + 1024);
    EXPECT_EQ(HXMGT_OPTION_ROM_REGION_INVALID,
              HXGetOptionRomEx(handle, 0, buffer.Data(), 70000, 8));
    EXPECT_EQ(HXMGT_OPTION_ROM_REGION_INVALID,
              HXGetOptionRomEx(handle, 0, buffer.Data(), 70000, 0x10009));
    EXPECT_EQ(HXMGT_OPTION_ROM_SIZE_TOO_BIG, HXGetOptionRomEx(handle, 0, buffer.Data(), 69999, 9));
    EXPECT_EQ(0u, HXGetOptionRomEx(handle, 0, buffer.Data(), 5, 1)) << "flags are no part of it";
    EXPECT_EQ(1u, Reads().size());
    port->Forget();
    port->On({command::FlashRead.code, 9}, [](const SentRequest& request) {
        return Reply{.status = (AccessOf(request).parameter & 0xFFFF) == 0 ? 0u : 22u};
    });
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, HXGetOptionRomEx(handle, 0, buffer.Data(), 70000, 9));
    // More regions than a look-up has positions for.
    port->On(command::FlashLayout,
             Reply{.data = LayoutReply(std::vector<RegionSpec>(256, {9, 4}), 4104)});
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetOptionRomEx(handle, 0, buffer.Data(), 70000, 9));
    port->On(command::FlashLayout, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetOptionRomEx(handle, 0, buffer.Data(), 70000, 9));
}

TEST_F(FlashRegionTest, WritesAround64Kib) {
    struct Row {
        uint32_t size;
        std::vector<FlashAccess> writes;
    };
    const Row rows[] = {
        {1, {{9, 0, 1, 1, 1}}},
        {65536, {{9, 0, 65536, 65536, 65536}}},
        {65537, {{9, Chunk(64, 0), 65536, 65536, 65536}, {9, Chunk(1, 1), 1024, 1024, 1024}}},
        {131073,
         {{9, Chunk(64, 0), 65536, 65536, 65536},
          {9, Chunk(64, 1), 65536, 65536, 65536},
          {9, Chunk(1, 2), 1024, 1024, 1024}}},
    };
    for (const Row& row : rows) {
        StartWith(0x7300, {{9, row.size + 3}});
        GuardedBuffer image(row.size, 0xAB);
        ASSERT_EQ(0u, HXUpdateOptionRomEx(handle, 0, image.Data(), row.size, 9)) << row.size;
        EXPECT_EQ(row.writes, Writes()) << row.size;
        Bytes expected(row.size, 0xAB);
        expected.resize(Written().size(), 0);
        EXPECT_EQ(expected, Written()) << "the last piece is filled up with zeros";
    }
    // As often as the table has the region; none, or too small, is refused.
    StartWith(0x7300, {{9, 100}, {8, 10}, {9, 100}});
    Bytes image(100, 1);
    EXPECT_EQ(0u, Update(image, 9));
    EXPECT_EQ(2u, Writes().size());
    EXPECT_EQ(HXMGT_OPTION_ROM_SIZE_TOO_BIG, Update(image, 8));
    EXPECT_EQ(HXMGT_OPTION_ROM_REGION_INVALID, Update(image, 10));
    EXPECT_EQ(2u, Writes().size());
    port->On({command::FlashWrite.code, 9}, Reply{.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, Update(image, 9));
    EXPECT_EQ(3u, Writes().size());
}

TEST_F(FlashRegionTest, BootCodeIsPreparedWhereItIs) {
    const Bytes boot = MakeRom({.subsystemVendor = 0x1234, .nvramFill = 1, .nvramBytes = 512});
    Bytes flash = MakeRom({.subsystemVendor = 0x1ED0, .nvramFill = 0xC1, .nvramBytes = 512});
    struct Row {
        uint16_t deviceId;
        uint32_t flashBytes;
        size_t nvramBytes;
        uint32_t region;
        bool prepared;
    };
    const Row rows[] = {
        {0x7300, 131072, 256, 7, true},  {0x7300, 131072, 256, 255, true},
        {0x7300, 131072, 256, 3, false}, {0x7400, 262144, 512, 2, true},
        {0x7400, 262144, 512, 8, false}, {0x7312, 131072, 256, 7, true},
    };
    for (const Row& row : rows) {
        const auto size = static_cast<uint32_t>(boot.size());
        StartWith(row.deviceId, {{static_cast<uint16_t>(row.region), size}});
        port->On({command::FlashRead.code, 0xFFFF}, [&](const SentRequest& request) {
            const FlashAccess access = AccessOf(request);
            Bytes data(access.requestLen, 0);
            if (access.parameter == 0) {
                std::copy(flash.begin(), flash.end(), data.begin());
            }
            return Reply{.data = data};
        });
        Bytes image = boot;
        ASSERT_EQ(0u, Update(image, row.region));
        EXPECT_EQ(row.prepared ? row.flashBytes / 65536 : 0, Reads().size()) << row.deviceId;
        EXPECT_EQ(row.prepared, image != boot) << row.deviceId << " " << row.region;
        if (row.prepared) {
            EXPECT_EQ(0xC1, image[kRomNvramAt + row.nvramBytes - 1]);
            EXPECT_EQ(row.nvramBytes == 512, image[kRomNvramAt + 256] == 0xC1);
            EXPECT_TRUE(ChecksumHolds(image, 0));
        }
        EXPECT_EQ(image, Written());
    }
    // One OEM board keeps its boot code as delivered; others with its numbers do not.
    const auto oem = [&](uint16_t deviceId, uint16_t vendor, uint16_t device) {
        StartWith(deviceId, {{7, 4096}});
        port->On({command::FlashRead.code, 0xFFFF}, Reply{.data = flash});
        port->chip.subsystemVendorId = vendor;
        port->chip.subsystemDeviceId = device;
        port->AnswerProbes();
        Bytes image = boot;
        EXPECT_EQ(0u, Update(image, 7));
        return image == boot;
    };
    EXPECT_TRUE(oem(0x7312, 0x1ED9, 0x0101));
    EXPECT_FALSE(oem(0x7312, 0x1ED9, 0x0102));
    EXPECT_FALSE(oem(0x7312, 0x1ED8, 0x0101));
    EXPECT_FALSE(oem(0x7300, 0x1ED9, 0x0101));
    // What is no boot code is not compared with the flash; a flash that cannot be read ends it.
    StartWith(0x7300, {{7, 4096}});
    Bytes data = Counting(300);
    EXPECT_EQ(0u, Update(data, 7));
    EXPECT_TRUE(Reads().empty());
    port->On({command::FlashRead.code, 0xFFFF}, Reply{.status = 21});
    Bytes image = boot;
    port->Forget();
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Update(image, 7));
    EXPECT_TRUE(Writes().empty());
}

TEST_F(FlashRegionTest, FirmwareOfLargeRomChipsIsChecked) {
    Bytes firmware = MakeFirmware(8, 8, 16);
    for (const uint16_t deviceId : {uint16_t{0x7400}, uint16_t{0x7502}}) {
        StartWith(deviceId, {{1, 64}, {3, 64}});
        port->On(command::I2cRead, Reply{});
        port->On(command::I2cWrite, Reply{});
        EXPECT_EQ(0u, Update(firmware, 1));
        Bytes bad = firmware;
        bad[20] ^= 1;
        EXPECT_EQ(HXMGT_OPTION_ROM_CHECKSUM_ERROR, Update(bad, 1));
        bad = firmware;
        bad[47] = 9;
        EXPECT_EQ(HXMGT_OPTION_ROM_INCOMPATIBLE_FIRMWARE, Update(bad, 1));
        EXPECT_EQ(1u, Writes().size());
        EXPECT_EQ(0u, Update(bad, 3)) << "another region";
    }
    StartWith(0x7300, {{1, 64}});
    Bytes any(64, 1);
    EXPECT_EQ(0u, Update(any, 1)) << "another chip";
}

TEST_F(FlashRegionTest, VersionsAreRecorded) {
    const Bytes boot =
        Chain({MakeRom({.units = 1, .last = false, .major = 3, .minor = 7}),
               MakeRom({.code = formats::RomCode::Efi, .units = 1, .major = 2, .minor = 1})});
    const auto size = static_cast<uint32_t>(boot.size());
    StartWith(0x7500, {{7, size}, {17, size}});
    port->On({command::FlashRead.code, 0xFFFF}, Reply{});
    flash::TwoWireRecord control = {};
    control.data[0] = 0x55;
    port->On(command::I2cRead, Reply{.data = BytesOf(control)});
    port->On(command::I2cWrite, Reply{});
    ScratchFile trace;
    ASSERT_EQ(0u, HXEnableDebugTrace(&handle, trace.Path().c_str(), 1));
    Bytes image = boot;
    ASSERT_EQ(0u, Update(image, 7));
    HXEnableDebugTrace(&handle, nullptr, 0);
    EXPECT_EQ((std::vector<FlashAccess>{{7, 0, size, size, size}, {17, 0, size, size, size}}),
              Writes());
    const auto sent = [&](transport::Command command) {
        std::vector<std::string> texts;
        for (const SentRequest& request : Sent(command)) {
            flash::TwoWireRecord record;
            memcpy(&record, request.Data().data(), sizeof record);
            char head[64];
            snprintf(head, sizeof head, "%x+%x/%u:%x ", record.device, record.offset, record.length,
                     record.options);
            texts.push_back(head + std::string(reinterpret_cast<char*>(record.data)));
        }
        return texts;
    };
    EXPECT_EQ((std::vector<std::string>{"a0+42a/36:2000 V:2.01,D:00000000,A:Y,T:E",
                                        "a0+472/36:2000 V:3.07,D:00000000,A:Y,T:B", "e0+0/1:2000 E",
                                        "e0+0/1:2000 U"}),
              sent(command::I2cWrite))
        << "0x55 without and with bit 4";
    EXPECT_EQ((std::vector<std::string>{"e0+0/1:2001 "}), sent(command::I2cRead));
    const std::string text = trace.Contents();
    EXPECT_TRUE(Has(text, "HXWriteSFPData: update i2c EFI version retStatus = 0\n"));
    EXPECT_EQ(std::string::npos, text.find("FCODE"));

    // A record that fails is the result; the region has been written.
    port->On(command::I2cWrite, Reply{.status = 21});
    port->Forget();
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Update(image, 17));
    EXPECT_EQ(1u, Writes().size());
    // The first kind of large ROM has one boot region; a control byte that is not known is left.
    StartWith(0x7400, {{7, size}});
    port->On({command::FlashRead.code, 0xFFFF}, Reply{});
    port->On(command::I2cRead, Reply{.status = 22});
    port->On(command::I2cWrite, Reply{});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, Update(image, 7));
    EXPECT_EQ(2u, sent(command::I2cWrite).size());
}

TEST_F(FlashRegionTest, RegionLayoutNeedsTheExactSize) {
    StartWith(0x7600, {{9, 100}, {21, 512}});
    port->On(command::RestartFirmware, Reply{});
    Bytes image(100, 1);
    EXPECT_EQ(0u, Update(image, 9)) << "handed over";
    ASSERT_EQ(1u, Sent(command::RestartFirmware).size());
    EXPECT_EQ(Bytes{3}, Sent(command::RestartFirmware)[0].Data());
    EXPECT_EQ(HXMGT_INVALID_REQUEST, Update2(image, 8));
    for (const size_t size : {size_t{99}, size_t{101}}) {
        Bytes wrong(size);
        EXPECT_EQ(HXMGT_INVALID_REQUEST, Update2(wrong, 9));
    }
    EXPECT_EQ(1u, Writes().size());
    Bytes nvram(512, 2);
    EXPECT_EQ(0u, Update2(nvram, 21));
    EXPECT_EQ(1u, Sent(command::RestartFirmware).size()) << "no restart after this region";
    port->On(command::RestartFirmware, Reply{.status = 21});
    EXPECT_EQ(HXMGT_FLASH_UPDATE_NOT_ACTIVATED, Update2(image, 9));
    port->On({command::FlashWrite.code, 9}, Reply{.status = 22});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, Update2(image, 9));
}

TEST_F(FlashRegionTest, SecureUpdate) {
    const uint32_t size = 65537;
    Bytes image = Counting(size);
    StartWith(0x7740, {{2, size}});
    AnswerSecure(true);
    ASSERT_EQ(0u, Update2(image, 2));
    EXPECT_EQ((std::vector<uint32_t>{0xF000104D, 0xF000104C, 0xF000104E, 0xF0001052, 0xF000100D,
                                     0xF000100D, 0xF000104F, 0xF0001053, 0xF0001050}),
              Steps());
    EXPECT_EQ(4104u + 116, Sent(command::FlashLayoutEx)[0].outputSize);
    const Bytes header = Sent(command::SecureFlashHeader)[0].Data();
    ASSERT_EQ(526u, header.size());
    uint32_t words[3];
    memcpy(words, header.data(), sizeof words);
    EXPECT_EQ(2u, words[0]);
    EXPECT_EQ(size, words[1]);
    EXPECT_EQ(formats::Crc32(image), words[2]);
    EXPECT_TRUE(std::equal(image.begin(), image.begin() + 512, header.begin() + 14));
    EXPECT_EQ((std::vector<FlashAccess>{{2, Chunk(64, 0), 65536, 65536, 65536},
                                        {2, Chunk(1, 1), 1024, 1024, 1024}}),
              Writes());
    EXPECT_EQ(40u + 116, Sent(command::SecureFlashStatus)[0].outputSize);
    EXPECT_EQ(0u, Sent(command::SecureFlashBegin)[0].Data().size());
}

TEST_F(FlashRegionTest, SecureUpdateIsAbortedOnAnyFailure) {
    Bytes image(100, 7);
    StartWith(0x7720, {{2, 100}});
    AnswerSecure(true);
    const auto update = [&] {
        port->Forget();
        return HXUpdateSecureOptionRomEx(handle, 0, image.data(), 100, 2);
    };
    const std::pair<transport::Command, uint32_t> steps[] = {
        {command::SecureFlashHeader, 0xF0001052},
        {{command::FlashWrite.code, 2}, 0xF000100D},
        {command::SecureFlashVerify, 0xF000104F},
        {command::SecureFlashStatus, 0xF0001053},
        {command::SecureFlashCommit, 0xF0001050}};
    for (const auto& [step, code] : steps) {
        AnswerSecure(true);
        port->On({command::FlashWrite.code, 2}, Reply{});
        port->On(step, Reply{.status = 22});
        port->On(command::SecureFlashAbort, Reply{.status = 21});
        EXPECT_EQ(HXMGT_DEVICE_OFFLINE, update());
        const auto sent = Steps();
        ASSERT_GE(sent.size(), 2u);
        EXPECT_EQ(0xF0001051u, sent.back());
        EXPECT_EQ(code, sent[sent.size() - 2]);
    }
    AnswerSecure(true);
    for (const auto& [result, status] :
         {std::pair<uint32_t, HX_STATUS>{1, HXMGT_OPTION_ROM_INVALID_FIRMWARE},
          {2, HXMGT_OPTION_ROM_WRITE_ERROR},
          {0xFFFFFFFF, HXMGT_OPTION_ROM_WRITE_ERROR}}) {
        AnswerResult(result);
        EXPECT_EQ(status, update());
        EXPECT_EQ(0xF0001051u, Steps().back());
    }
    // A session that did not begin needs no end.
    port->On(command::SecureFlashBegin, Reply{.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, update());
    EXPECT_EQ((std::vector<uint32_t>{0xF000104E}), Steps());
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXUpdateSecureOptionRomEx(handle, 0, image.data(), 99, 2));
}

TEST_F(FlashRegionTest, OnlyBankedChipsAreAskedForSecurity) {
    Bytes image(100, 7);
    const auto codes = [&](uint16_t deviceId, bool inForce) {
        StartWith(deviceId, {{3, 100}});
        AnswerSecure(inForce);
        EXPECT_EQ(0u, Update2(image, 3));
        return Steps();
    };
    using Codes = std::vector<uint32_t>;
    EXPECT_EQ((Codes{0xF000104D, 0xF000104C, 0xF000100D}), codes(0x7740, false));
    EXPECT_EQ((Codes{0xF000100D}), codes(0x7700, true));
    EXPECT_EQ((Codes{0xF000100D}), codes(0x7760, true));
    StartWith(0x7740, {{3, 100}});  // the state query fails
    EXPECT_EQ(0u, Update2(image, 3));
    EXPECT_EQ((Codes{0xF000104D, 0xF000100D}), Steps());
}

}  // namespace
