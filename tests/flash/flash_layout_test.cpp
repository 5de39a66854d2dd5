#include "machine/flash_driver.h"

namespace {

using namespace support;

class FlashLayoutTest : public FlashTest {};

const std::vector<RegionSpec> kFour = {{1, 0x20000}, {7, 0x40000, 1}, {21, 512}, {0xFFF0, 4}};

TEST_F(FlashLayoutTest, TablesOfBothKinds) {
    const Bytes reply = LayoutReply(kFour, 0x12345678);
    port->On(command::FlashLayout, Reply{.data = reply});
    port->On(command::FlashLayoutEx, Reply{.data = reply});

    GuardedBuffer plain(8 + 4 * 8);
    auto* const layout = reinterpret_cast<HX_FLASH_LAYOUT*>(plain.Data());
    layout->count = 4;
    ASSERT_EQ(0u, HXGetOptionRomLayout(handle, 0, layout));
    EXPECT_EQ(0x12345678u, layout->size);
    EXPECT_EQ(4u, layout->count);
    EXPECT_EQ(0x99010007u, layout->regions[1].code) << "code, flags and the byte behind them";
    EXPECT_EQ(0x40000u, layout->regions[1].size);
    EXPECT_EQ(4u, layout->regions[3].size);

    const SentRequest request = port->Last();
    EXPECT_EQ(4104u + 116, request.inputSize);
    EXPECT_EQ(4104u + 116, request.outputSize);
    Bytes asked(4104, 0);
    asked[0] = 0x08, asked[1] = 0x10, asked[4] = 255;
    EXPECT_EQ(asked, request.Data());

    GuardedBuffer extended(8 + 4 * 16);
    auto* const layoutEx = reinterpret_cast<HX_FLASH_LAYOUT_EX*>(extended.Data());
    layoutEx->count = 4;
    ASSERT_EQ(0u, HXGetOptionRomLayoutEx(handle, 0, layoutEx));
    EXPECT_EQ(7u, layoutEx->regions[1].code);
    EXPECT_EQ(1u, layoutEx->regions[1].flags);
    EXPECT_EQ(0xEEu, layoutEx->regions[1].reserved3) << "the caller's byte";
    EXPECT_EQ(7u * 256, layoutEx->regions[1].start);
    EXPECT_EQ(0xE0E0E0E0u, layoutEx->regions[1].end);
    EXPECT_EQ(6144u + 116, port->Last().outputSize);
    EXPECT_EQ(0u, HXGetOptionRomLayout(handle, 0, nullptr));
}

TEST_F(FlashLayoutTest, TableLargerThanTheCallersRoom) {
    port->On(command::FlashLayout, Reply{.data = LayoutReply(kFour, 4104)});
    GuardedBuffer buffer(8 + 3 * 8);
    auto* const layout = reinterpret_cast<HX_FLASH_LAYOUT*>(buffer.Data());
    layout->count = 3;
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetOptionRomLayout(handle, 0, layout));
    EXPECT_EQ(4u, layout->count);
    EXPECT_TRUE(buffer.Holds(0xEE, 0, 4) && buffer.Holds(0xEE, 8, 32));

    port->On(command::FlashLayout, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetOptionRomLayout(handle, 0, layout));
    port->On(command::ChipProperties, Reply{.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, HXGetOptionRomLayout(handle, 0, layout));
}

// A count says more than what came: only what came counts.
TEST_F(FlashLayoutTest, TablesThatLie) {
    GuardedBuffer buffer(8 + 1000 * 16);
    const auto count = [&](transport::Command command, const Bytes& reply) {
        port->On(command, Reply{.data = reply});
        auto* const layout = reinterpret_cast<HX_FLASH_LAYOUT*>(buffer.Data());
        layout->count = 1000;
        EXPECT_EQ(0u, command.code == command::FlashLayout.code
                          ? HXGetOptionRomLayout(handle, 0, layout)
                          : HXGetOptionRomLayoutEx(handle, 0,
                                                   reinterpret_cast<HX_FLASH_LAYOUT_EX*>(layout)));
        return layout->count;
    };
    EXPECT_EQ(4u, count(command::FlashLayout, LayoutReply(kFour, 4104, 0xFFFFFFFF)));
    EXPECT_EQ(2u, count(command::FlashLayout, LayoutReply(kFour, 4104, 2)));
    const std::vector<RegionSpec> many(500, {9, 9});
    EXPECT_EQ(256u, count(command::FlashLayout, LayoutReply(many, 4104)));
    EXPECT_EQ(383u, count(command::FlashLayoutEx, LayoutReply(many, 6144)));
    EXPECT_EQ(0u, count(command::FlashLayout, {1, 2, 3, 4, 5}));
    EXPECT_EQ(0u, count(command::FlashLayout, {}));
}

}  // namespace
