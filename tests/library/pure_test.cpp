// Code that reads foreign bytes or holds tables, without any platform: every input stands in a heap
// block of exactly its size, so that the sanitizers of the native build see each byte touched
// beyond it.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "events/event_ring.h"
#include "formats/loop_address.h"
#include "frame/driver_parameter_text.h"
#include "frame/driver_version.h"
#include "frame/hex_dump.h"
#include "properties/adapter_texts.h"
#include "properties/chip_families.h"
#include "transport/envelope.h"

namespace {

// A copy of exactly the text's size.
class Exact {
  public:
    explicit Exact(std::string_view text) : size_(text.size()), bytes_(new char[text.size()]) {
        if (!text.empty()) {
            memcpy(bytes_.get(), text.data(), size_);
        }
    }
    std::span<const char> Span() const { return {bytes_.get(), size_}; }
    std::string_view View() const { return {bytes_.get(), size_}; }

  private:
    size_t size_;
    std::unique_ptr<char[]> bytes_;
};

// Of the 8b/10b data characters, those of neutral disparity: both sub-blocks are balanced, or
// neither.
bool IsNeutral(uint32_t byte) {
    constexpr uint32_t kUnbalanced6 = 0xE9818117;  // by the low five bits
    constexpr uint32_t kUnbalanced4 = 0x91;        // by the high three bits
    return ((kUnbalanced6 >> (byte & 0x1F)) & 1) == ((kUnbalanced4 >> (byte >> 5)) & 1);
}

TEST(Pure, LoopIdsAreTheNeutralCharactersDownwardsFromEf) {
    uint16_t id = 0;
    for (int byte = 0xEF; byte >= 0; --byte) {
        if (IsNeutral(static_cast<uint32_t>(byte))) {
            EXPECT_EQ(byte, formats::LoopAddressOf(id)) << id;
            ++id;
        }
    }
    EXPECT_EQ(127, id);
    EXPECT_EQ(0u, formats::LoopAddressOf(127));
    EXPECT_EQ(0u, formats::LoopAddressOf(0xFFFF));
}

TEST(Pure, ChipTable) {
    using properties::ChipTrait;
    uint16_t before = 0;
    for (const properties::Chip& chip : properties::kChips) {
        EXPECT_GT(chip.deviceId, before) << "in order, none twice";
        before = chip.deviceId;
        EXPECT_EQ(chip.deviceId, properties::ChipOf(chip.deviceId).deviceId);
        // Traits that follow from others.
        EXPECT_EQ(chip.family < 'P', chip.Has(ChipTrait::Newer));
        EXPECT_TRUE(!chip.Has(ChipTrait::Banked) || chip.Has(ChipTrait::SecureFlash));
        EXPECT_TRUE(!chip.Has(ChipTrait::SecureFlash) || chip.Has(ChipTrait::RegionLayout));
        EXPECT_FALSE(chip.Has(ChipTrait::LargeRom) && chip.Has(ChipTrait::RegionLayout));
        char model[8];
        snprintf(model, sizeof model, "%x", chip.deviceId);
        EXPECT_EQ(chip.deviceId, properties::ChipOfModelText(Exact(model).View()).deviceId);
    }
    for (const char* text : {"", "7", "771", "77402", "1234", "7a40"}) {
        EXPECT_EQ('?', properties::ChipOfModelText(Exact(text).View()).family) << text;
    }
    for (const uint16_t unknown : {0, 0x7101, 0x7741, 0xFFFF}) {
        EXPECT_EQ(ChipTrait::None, properties::ChipOf(unknown).traits);
    }
}

TEST(Pure, TextsThatDoNotEnd) {
    EXPECT_EQ(70503u, frame::ParseDriverVersion(Exact("7.05.03").Span()));
    EXPECT_EQ(70503u, frame::ParseDriverVersion(Exact("7.05.03\n").Span()));
    EXPECT_EQ(0u, frame::ParseDriverVersion(Exact("").Span()));
    frame::ParseDriverVersion(Exact(std::string(500, '9')).Span());
    frame::ParseDriverVersion(Exact("4294967296.4294967295.1").Span());

    EXPECT_EQ("abc", properties::TextOf(Exact("abc").Span()));
    EXPECT_EQ("a", properties::TextOf(Exact(std::string_view("a\0c", 3)).Span()));
    EXPECT_TRUE(properties::ReportsSpeeds(Exact("8.1.2").View()));
    EXPECT_FALSE(properties::ReportsSpeeds(Exact("8.1.").View()));
    EXPECT_FALSE(properties::ReportsSpeeds(Exact("8.").View()));
    EXPECT_FALSE(properties::ReportsSpeeds(Exact("").View()));
    EXPECT_TRUE(properties::ReportsSpeeds(Exact("9").View()));
    EXPECT_FALSE(properties::FirmwareReportsSpeeds(Exact("9.1").View()));
    EXPECT_TRUE(properties::FirmwareReportsSpeeds(Exact("9.1.0").View()));
    const Exact onlySeparators("---");
    EXPECT_TRUE(properties::SplitManufacturerAndSerial(onlySeparators.View()).manufacturer.empty());
    char field[4];
    properties::PutText("abcdef", field);
    EXPECT_EQ(0, memcmp(field, "abcd", 4));
    properties::PutText("a", field);
    EXPECT_EQ(0, memcmp(field, "a\0\0\0", 4));
}

TEST(Pure, ParameterEditNeedsItsRoomAndNoMore) {
    const Exact text("x=1;y=22;z=333");
    const std::string_view expected = "x=1;y=4444;z=333";
    for (size_t room = 0; room <= expected.size() + 2; ++room) {
        std::vector<char> out(room, '#');
        out.shrink_to_fit();
        const auto length = frame::EditParameters(text.View(), "y", "4444", out);
        ASSERT_EQ(room >= expected.size(), length.has_value()) << room;
        if (length.has_value()) {
            EXPECT_EQ(expected, std::string_view(out.data(), *length));
        }
    }
    // The room that its comment promises to suffice, for texts of any shape.
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string any(random() % 30, ' ');
        for (char& letter : any) {
            letter = "ab=; "[random() % 5];
        }
        const Exact given(any);
        std::vector<char> out(any.size() + 2 + 2);
        const auto length = frame::EditParameters(given.View(), "a", "b", out);
        ASSERT_TRUE(length.has_value()) << any;
        EXPECT_EQ("b", frame::FindParameter(std::string_view(out.data(), *length), "a")) << any;
    }
}

TEST(Pure, DumpRowsStayInsideTheirData) {
    const Exact data(std::string(33, 'A'));
    const std::span<const uint8_t> bytes(reinterpret_cast<const uint8_t*>(data.Span().data()), 33);
    for (const size_t offset : {0u, 16u, 32u}) {
        frame::DumpRowText row;
        frame::FormatDumpRow(bytes, offset, row);
        EXPECT_EQ(79u, strlen(row)) << row;  // every row is as long as a full one
        EXPECT_EQ('\n', row[78]);
    }
}

TEST(Pure, RingsWithAnyIndexes) {
    auto slot = std::make_unique<frame::EventSlot>();
    std::mt19937 random(11);
    const uint32_t shapes[] = {0, 1, 31, 32, 33, 64, 0x80000000, 0xFFFFFFFF};
    for (int round = 0; round < 4000; ++round) {
        memset(slot.get(), 0, sizeof *slot);
        const uint32_t handle = random() % frame::kHandleRecords;
        for (auto& event : slot->queue[handle]) {
            event.code = 0x8011;
        }
        slot->writeIndex[handle] = shapes[random() % 8];
        slot->readIndex[handle] = shapes[random() % 8];
        slot->capacity[handle] = shapes[random() % 8];
        std::vector<HX_EVENT> room(random() % 40);
        events::Delivery delivery(room);
        events::DeliverQueued(*slot, handle, delivery);
        ASSERT_LE(delivery.Delivered(), room.size());
        ASSERT_LE(delivery.Delivered(), 31u);
    }
}

TEST(Pure, EnvelopeReadsNoMoreOfTheBuffersThanItNeeds) {
    const Exact four(std::string_view("\x40\x00\x03\x00", 4));
    const Exact three(std::string_view("\xA0\x00\x00", 3));
    const Exact one("\xA0");
    transport::ExtRequest envelope;
    const auto call = [](uint32_t code, uint16_t subCode, const Exact& input, uint32_t length) {
        return transport::ExtendedCall{code, subCode, input.Span().data(), length, nullptr,
                                       0,    false};
    };
    EXPECT_FALSE(transport::CarriesItsRecord(call(0xF0001012, 0xFFFF, four, 4)));
    ASSERT_TRUE(transport::CarriesItsRecord(call(0xF0001012, 0x90, four, 4)));
    transport::BuildExtended(call(0xF0001012, 0x90, four, 4), envelope);
    EXPECT_TRUE(transport::RetriesBusyMailbox(call(0xF0001023, 0, three, 3)));
    EXPECT_FALSE(transport::RetriesBusyMailbox(call(0xF0001023, 0, one, 1)));
}

}  // namespace
