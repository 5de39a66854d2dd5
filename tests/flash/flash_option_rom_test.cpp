// The whole flash, and the flash by byte offset.
#include "machine/flash_driver.h"
#include "support/rom_builder.h"

namespace {

using namespace support;

constexpr uint32_t kWhole = 128 * 1024;

class FlashOptionRomTest : public FlashTest {
  protected:
    HX_STATUS ReadWhole(GuardedBuffer& buffer) {
        return HXGetOptionRom(handle, 0, buffer.Data(), static_cast<uint32_t>(buffer.Size()));
    }
};

TEST_F(FlashOptionRomTest, WholeFlashByDriver) {
    struct Row {
        const char* driver;
        transport::Command read, write;
    };
    const Row rows[] = {{"7.05.03", command::OptionRomReadOld, command::OptionRomWriteOld},
                        {"8.00.99", command::OptionRomReadOld, command::OptionRomWriteOld},
                        {"8.01.00", command::FlashRead, command::FlashWrite}};
    for (const Row& row : rows) {
        Reopen(row.driver, 0x7300);
        port->On(row.read, Reply{.data = Counting(kWhole)});
        port->On(row.write, Reply{});
        GuardedBuffer buffer(kWhole);
        ASSERT_EQ(0u, ReadWhole(buffer)) << row.driver;
        EXPECT_EQ(Counting(kWhole), buffer.First(kWhole));
        const auto reads = port->Requests(row.read);
        ASSERT_EQ(1u, reads.size());
        EXPECT_EQ((FlashAccess{row.read.subCode, 0, 0, 0, kWhole}), AccessOf(reads[0]));
        Bytes image = Counting(3000, 5);
        ASSERT_EQ(0u, HXUpdateOptionRom(handle, 0, image.data(), 3000));
        EXPECT_EQ((FlashAccess{row.write.subCode, 0, 3000, 3000, 3000}), AccessOf(port->Last()));
        EXPECT_EQ(Counting(3000, 5), port->Last().Data()) << "nothing to carry over";
    }
}

TEST_F(FlashOptionRomTest, WholeFlashIsRefused) {
    GuardedBuffer buffer(16);
    const auto both = [&](HX_STATUS status, const char* driver, uint16_t deviceId) {
        Reopen(driver, deviceId);
        EXPECT_EQ(status, ReadWhole(buffer)) << driver;
        EXPECT_EQ(status, HXUpdateOptionRom(handle, 0, buffer.Data(), 16)) << driver;
        EXPECT_TRUE(Writes().empty() && Reads().empty());
    };
    both(HXMGT_NOT_SUPPORTED, "7.05.02", 0x7300);
    both(HXMGT_INVALID_REQUEST, "8.01.00", 0x7400);
    both(HXMGT_INVALID_REQUEST, "8.01.00", 0x7600);
    both(HXMGT_INVALID_REQUEST, "8.01.00", 0x7740);
    // An older driver is not asked for the chip.
    Reopen("8.00.99", 0x7740);
    port->On(command::OptionRomReadOld, Reply{.data = Counting(16)});
    EXPECT_EQ(0u, ReadWhole(buffer));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, HXUpdateOptionRomEx3(0, 0, nullptr, 0, 0));
}

TEST_F(FlashOptionRomTest, ReturnedLengthDecides) {
    Reopen("9.04.02", 0x7300);
    GuardedBuffer small(100);
    struct Row {
        Reply reply;
        HX_STATUS status;
    };
    const Row rows[] = {
        {{.data = Counting(100)}, 0},
        {{.data = Counting(101)}, HXMGT_CALLER_BUFFER_TOO_SMALL},
        {{.status = 16, .data = Counting(100)}, HXMGT_BUFFER_TOO_SMALL},
        {{.status = 16, .data = Counting(101)}, HXMGT_CALLER_BUFFER_TOO_SMALL},
        {{.data = {}, .responseLength = 0xFFFFFFFF}, HXMGT_CALLER_BUFFER_TOO_SMALL},
        {{.error = ERROR_GEN_FAILURE}, ERROR_GEN_FAILURE},
    };
    for (const Row& row : rows) {
        port->On(command::FlashRead, row.reply);
        memset(small.Data(), 0xEE, 100);
        EXPECT_EQ(row.status, ReadWhole(small));
        EXPECT_EQ(row.status != 0, small.Holds(0xEE));
    }
}

TEST_F(FlashOptionRomTest, WholeUpdateCarriesTheIdentityOver) {
    Reopen("9.04.02", 0x7300);
    port->On(command::FlashWrite, Reply{});
    const Bytes current = MakeRom({.subsystemVendor = 0x1ED0, .nvramFill = 0xC1});
    port->On(command::FlashRead, Reply{.data = current});
    Bytes image = MakeRom({.subsystemVendor = 0x1234, .nvramFill = 0x0F});
    ASSERT_EQ(0u, HXUpdateOptionRom(handle, 0, image.data(), static_cast<uint32_t>(image.size())));
    EXPECT_EQ(image, Written()) << "the caller's image is changed in place";
    EXPECT_EQ(0x1E, image[33]);
    EXPECT_EQ(0xC1, image[kRomNvramAt + 255]);
    EXPECT_TRUE(ChecksumHolds(image, 0));

    // An image that cannot have a checksum is not written.
    port->Forget();
    Bytes bad = MakeRom({.subsystemVendor = 0x1234});
    bad[2] = 200;
    EXPECT_EQ(HXMGT_OPTION_ROM_CHECKSUM_ERROR,
              HXUpdateOptionRom(handle, 0, bad.data(), static_cast<uint32_t>(bad.size())));
    EXPECT_TRUE(Writes().empty());

    // A flash that cannot be read has nothing to carry over.
    port->On(command::FlashRead, Reply{.status = 21, .data = current});
    Bytes fresh = MakeRom({.subsystemVendor = 0x1234});
    const Bytes before = fresh;
    EXPECT_EQ(0u, HXUpdateOptionRom(handle, 0, fresh.data(), static_cast<uint32_t>(fresh.size())));
    EXPECT_EQ(before, Written());
    port->On(command::FlashWrite, Reply{.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, HXUpdateOptionRom(handle, 0, fresh.data(), 64));
}

TEST_F(FlashOptionRomTest, ByOffset) {
    Reopen("9.04.02", 0x7740);
    const transport::Command read = {command::FlashRead.code, 0xFFFF};
    const transport::Command write = {command::FlashWrite.code, 0xFFFF};
    port->On(write, Reply{});
    port->On(read, [](const SentRequest& request) {
        const FlashAccess access = AccessOf(request);
        return Reply{.data =
                         Counting(access.requestLen, static_cast<uint8_t>(access.parameter >> 8))};
    });
    const auto part = [](uint32_t length, uint32_t offset) { return std::pair(length, offset); };
    using Parts = std::vector<std::pair<uint32_t, uint32_t>>;
    const std::pair<uint32_t, Parts> rows[] = {
        {0, {part(0, 0x300)}},
        {1, {part(1, 0x300)}},
        {65536, {part(65536, 0x300)}},
        {65537, {part(65536, 0x300), part(1, 0x10300)}},
        {131072, {part(65536, 0x300), part(65536, 0x10300)}},
        {200000,
         {part(65536, 0x300), part(65536, 0x10300), part(65536, 0x20300),
          part(200000 - 196608, 0x30300)}},
    };
    for (const auto& [length, parts] : rows) {
        port->Forget();
        GuardedBuffer buffer(length);
        ASSERT_EQ(0u, HXGetOptionRomOffset(handle, 0, buffer.Data(), length, 0x300));
        std::vector<FlashAccess> reads, writes;
        Bytes expected;
        for (const auto& [bytes, offset] : parts) {
            reads.push_back({0xFFFF, offset, bytes, 8, std::max(bytes, 8u)});
            writes.push_back({0xFFFF, offset, bytes, bytes, std::max(bytes, 8u)});
            Append(expected, Counting(bytes, static_cast<uint8_t>(offset >> 8)));
        }
        EXPECT_EQ(reads, Reads()) << length;
        EXPECT_EQ(expected, buffer.First(length));
        ASSERT_EQ(0u, HXUpdateOptionRomOffset(handle, 0, buffer.Data(), length, 0x300));
        writes.push_back({0xFFFF, 0, 0, 0, 8});  // the end marker
        EXPECT_EQ(writes, Writes()) << length;
        EXPECT_EQ(expected, Written());
    }
}

TEST_F(FlashOptionRomTest, OffsetFailures) {
    const transport::Command read = {command::FlashRead.code, 0xFFFF};
    const transport::Command write = {command::FlashWrite.code, 0xFFFF};
    Bytes data(131072);
    const auto length = static_cast<uint32_t>(data.size());
    for (const auto& [deviceId, aligned] : {std::pair<uint16_t, bool>{0x7300, false},
                                            {0x7400, false},
                                            {0x7500, true},
                                            {0x7600, true},
                                            {0x7780, true}}) {
        Reopen("9.04.02", deviceId);
        port->On(read, Reply{});
        port->On(write, Reply{});
        const HX_STATUS refused = aligned ? HX_STATUS{HXMGT_INVALID_PARAMETER} : 0;
        EXPECT_EQ(refused, HXGetOptionRomOffset(handle, 0, data.data(), 4, 0x1FF)) << deviceId;
        EXPECT_EQ(refused, HXUpdateOptionRomOffset(handle, 0, data.data(), 4, 0x101)) << deviceId;
        EXPECT_EQ(0u, HXUpdateOptionRomOffset(handle, 0, data.data(), 4, 0xFFFFFF00));
    }
    // A read or write that fails midway ends there; behind the last piece the end marker goes out
    // whatever became of both.
    port->Forget();
    port->Next({.data = BytesOf(port->chip)});
    port->Next({.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXUpdateOptionRomOffset(handle, 0, data.data(), length, 0));
    EXPECT_EQ(1u, Writes().size());
    port->Forget();
    port->Next({.data = BytesOf(port->chip)});
    port->Next({});
    port->Next({.status = 22});
    port->Next({.status = 23});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, HXUpdateOptionRomOffset(handle, 0, data.data(), length, 0));
    EXPECT_EQ(3u, Writes().size());
    port->On(write, [](const SentRequest& request) {
        return Reply{.status = AccessOf(request).requestLen == 0 ? 23u : 0u};
    });
    EXPECT_EQ(0u, HXUpdateOptionRomOffset(handle, 0, data.data(), length, 0));
    port->Next({.data = BytesOf(port->chip)});
    port->Next({.status = 21});
    port->Forget();
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetOptionRomOffset(handle, 0, data.data(), length, 0));
    EXPECT_EQ(1u, Reads().size());
}

}  // namespace
