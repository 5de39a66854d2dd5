// Stored target and LUN blocks without any platform. Every block stands in a heap block of exactly
// its size, so that the sanitizers of the native build see each byte touched beyond it.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "persist/blocks.h"
#include "persist/store_names.h"
#include "persist/stored_masks.h"

namespace {

using persist::LunDataV1;
using persist::LunRecordV1;

// A block of exactly so many bytes, with this head and every other byte counting up.
std::vector<uint8_t> BlockOf(size_t size, uint16_t version, uint16_t count) {
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(1 + i % 251);
    }
    const uint16_t head[] = {version, count};
    if (size != 0) {
        memcpy(bytes.data(), head, std::min(size, sizeof head));
    }
    bytes.shrink_to_fit();
    return bytes;
}

std::span<const uint8_t> Const(const std::vector<uint8_t>& bytes) {
    return bytes;
}

void Name(uint8_t (&field)[8], uint8_t first, uint8_t last) {
    memset(field, first, 8);
    field[7] = last;
}

TEST(PersistBlocks, ChecksumStartsAtZeroAndIsNotInverted) {
    auto block = std::make_unique<HX_TARGET_DATA>();
    auto* const bytes = reinterpret_cast<uint8_t*>(block.get());
    EXPECT_EQ(0u, persist::TargetDataChecksum(*block));
    bytes[0] = 1;
    EXPECT_EQ(0xBA2B2592u, persist::TargetDataChecksum(*block));
    bytes[0] = 0;
    bytes[8223] = 1;
    EXPECT_EQ(0x77073096u, persist::TargetDataChecksum(*block)) << "the last byte counts too";
    for (size_t i = 0; i < sizeof *block; ++i) {
        bytes[i] = static_cast<uint8_t>(i % 251);
    }
    EXPECT_EQ(0x621861DDu, persist::TargetDataChecksum(*block));
}

TEST(PersistBlocks, RecordsAreBoundByCountLimitAndBytes) {
    struct Row {
        size_t size;
        uint16_t count;
        size_t records;
    };
    const Row rows[] = {
        {0, 0, 0},           {31, 5, 0},        {32, 5, 0},           {32 + 287, 1, 0},
        {32 + 288, 1, 1},    {32 + 288, 0, 0},  {32 + 288, 65535, 1}, {32 + 2 * 288 + 287, 9, 2},
        {73760, 65535, 256}, {80000, 300, 256},
    };
    for (const Row& row : rows) {
        const std::vector<uint8_t> block = BlockOf(row.size, 1, row.count);
        const auto records = persist::RecordsIn<LunRecordV1>(Const(block));
        EXPECT_EQ(row.records, records.size()) << row.size << " " << row.count;
        HX_WWN_LIST list = {};
        persist::AddKeys<LunRecordV1>(Const(block), list);  // touches every one
    }
    EXPECT_EQ(0, persist::VersionOf(Const(BlockOf(31, 2, 0)))) << "no whole head, no version";
    EXPECT_EQ(2, persist::VersionOf(Const(BlockOf(32, 2, 0))));
}

TEST(PersistBlocks, Version1KeepsTheStateOfLuns0To255) {
    auto block = std::make_unique<HX_LUN_DATA>();
    block->version = 1;
    block->count = 256;
    for (uint32_t r = 0; r < 256; ++r) {
        Name(block->records[r].nodeName, 0x50, static_cast<uint8_t>(r));
        Name(block->records[r].portName, 0x60, static_cast<uint8_t>(r));
        for (uint32_t lun = 0; lun < 2048; ++lun) {
            // Every LUN of every record by itself, with other bits that must get lost.
            block->records[r].luns[lun] =
                static_cast<uint8_t>((lun * 7 + r) % 3 == 0 ? 0x80 | (lun & 0x7F) : lun & 0x7F);
        }
    }
    auto packed = std::make_unique<LunDataV1>();
    memset(packed.get(), 0xEE, sizeof *packed);
    ASSERT_EQ(73760u, persist::PackVersion1(*block, *packed));
    EXPECT_EQ(1, packed->head.version);
    EXPECT_EQ(256, packed->head.count);
    const auto* const bytes = reinterpret_cast<const uint8_t*>(packed.get());
    for (uint32_t r = 0; r < 256; ++r) {
        const uint8_t* const record = bytes + 32 + r * 288;
        EXPECT_EQ(0, memcmp(record, &block->records[r], 16));
        for (uint32_t lun = 0; lun < 256; ++lun) {
            ASSERT_EQ(block->records[r].luns[lun] < 0x80,
                      (record[32 + lun / 8] >> lun % 8 & 1) != 0);
        }
        EXPECT_EQ(std::vector<uint8_t>(16), std::vector<uint8_t>(record + 16, record + 32));
        EXPECT_EQ(std::vector<uint8_t>(224), std::vector<uint8_t>(record + 64, record + 288));
    }
    auto again = std::make_unique<HX_LUN_DATA>();
    memset(again.get(), 0xEE, sizeof *again);
    persist::ExpandVersion1({bytes, sizeof *packed}, *again);
    EXPECT_EQ(1, again->version);
    EXPECT_EQ(256, again->count);
    for (uint32_t r = 0; r < 256; ++r) {
        EXPECT_EQ(0, memcmp(&again->records[r], &block->records[r], 16));
        for (uint32_t lun = 0; lun < 2048; ++lun) {
            const uint8_t expected = lun < 256 ? block->records[r].luns[lun] & 0x80 : 0;
            ASSERT_EQ(expected, again->records[r].luns[lun]) << r << " " << lun;
        }
    }
    auto packedAgain = std::make_unique<LunDataV1>();
    persist::PackVersion1(*again, *packedAgain);
    EXPECT_EQ(0, memcmp(packed.get(), packedAgain.get(), sizeof *packed));
}

TEST(PersistBlocks, ExpansionOfCutBlocks) {
    // A head that promises more than the block carries, and holes that stay holes.
    for (const size_t size : {size_t{32}, size_t{319}, size_t{320}, size_t{32 + 3 * 288}}) {
        std::vector<uint8_t> stored = BlockOf(size, 1, 256);
        auto block = std::make_unique<HX_LUN_DATA>();
        memset(block.get(), 0xEE, sizeof *block);
        persist::ExpandVersion1(stored, *block);
        EXPECT_EQ((size - 32) / 288, block->count);
        EXPECT_EQ(0, block->records[255].nodeName[0]);
    }
    std::vector<uint8_t> stored = BlockOf(32 + 2 * 288, 1, 2);
    memset(stored.data() + 32, 0, 288);
    auto block = std::make_unique<HX_LUN_DATA>();
    persist::ExpandVersion1(stored, *block);
    auto packed = std::make_unique<LunDataV1>();
    EXPECT_EQ(32u + 2 * 288, persist::PackVersion1(*block, *packed));
    const auto* const bytes = reinterpret_cast<const uint8_t*>(packed.get());
    EXPECT_EQ(std::vector<uint8_t>(288), std::vector<uint8_t>(bytes + 32, bytes + 320));
}

TEST(PersistBlocks, MaskOfAVersion2RecordStartsAtTheLunBase) {
    std::vector<uint8_t> block = BlockOf(32 + 2 * 2080, 2, 2);
    auto* const records = reinterpret_cast<HX_LUN_RECORD*>(block.data() + 32);
    Name(records[0].nodeName, 0, 0);  // free, though its second name fits
    Name(records[0].portName, 0x60, 1);
    Name(records[1].nodeName, 0x50, 1);
    Name(records[1].portName, 0x60, 1);
    memset(records[1].luns, 0x80, 2048);
    records[1].luns[3] = 0x7F;
    records[1].luns[2047] = 0x00;
    HX_TARGET_ENTRY entry = {};
    Name(entry.portName, 0x60, 1);
    const std::pair<uint16_t, std::vector<int>> rows[] = {
        {0, {3, 2047}}, {3, {0, 2044}}, {4, {2043}}, {2047, {0}}, {2048, {}}, {65535, {}}};
    for (const auto& [base, visible] : rows) {
        entry.lunBase = base;
        std::vector<uint8_t> expected(256);
        for (const int lun : visible) {
            expected[lun / 8] |= static_cast<uint8_t>(1 << lun % 8);
        }
        std::vector<uint8_t> mask(256, 0xEE);
        ASSERT_TRUE(persist::ReadStoredMask(2, Const(block), entry, mask.data(), 1));
        EXPECT_EQ(expected, mask) << base;
    }
    Name(entry.portName, 0x60, 2);
    uint8_t untouched = 0xEE;
    EXPECT_FALSE(persist::ReadStoredMask(2, Const(block), entry, &untouched, 1));
    EXPECT_EQ(0xEE, untouched);
}

TEST(PersistBlocks, WritingAMaskKeepsEverythingElse) {
    persist::MaskedTarget target = {};
    Name(target.nodeName, 0x50, 2);
    Name(target.portName, 0x60, 9);
    for (const bool bySecondName : {false, true}) {
        std::vector<uint8_t> room(sizeof(HX_LUN_DATA));
        std::vector<uint8_t> stored = BlockOf(32 + 3 * 2080, 2, 3);
        auto* const records = reinterpret_cast<HX_LUN_RECORD*>(stored.data() + 32);
        Name(records[0].nodeName, 0x50, 1);
        Name(records[0].portName, 0x60, 1);
        Name(records[1].nodeName, 0x50, 2);
        Name(records[1].portName, 0x60, 2);
        Name(records[2].nodeName, 0x50, 3);
        Name(records[2].portName, 0x60, 9);
        std::copy(stored.begin(), stored.end(), room.begin());
        std::vector<uint8_t> mask(256, 0xA5);
        EXPECT_EQ(stored.size(),
                  (target.bySecondName = bySecondName,
                   persist::WriteStoredMask(2, room, static_cast<uint32_t>(stored.size()), target,
                                            mask)));
        for (uint32_t lun = 0; lun < 2048; ++lun) {
            uint8_t& byte = records[bySecondName ? 2 : 1].luns[lun];
            byte = static_cast<uint8_t>((byte & 0x7F) | ((0xA5 >> lun % 8 & 1) != 0 ? 0 : 0x80));
        }
        EXPECT_TRUE(std::equal(stored.begin(), stored.end(), room.begin())) << bySecondName;
        // A short mask changes no more LUNs than it has bits; a long one is cut.
        const std::vector<uint8_t> before = room;
        const std::vector<uint8_t> shortMask = {static_cast<uint8_t>(~0xA5)};
        persist::WriteStoredMask(2, room, static_cast<uint32_t>(stored.size()), target, shortMask);
        const size_t at = 32 + (bySecondName ? 2 : 1) * 2080 + 32;
        for (size_t i = 0; i < room.size(); ++i) {
            EXPECT_EQ(i >= at && i < at + 8, room[i] != before[i]) << i;
        }
        const std::vector<uint8_t> longMask(1000, 0xA5);
        persist::WriteStoredMask(2, room, static_cast<uint32_t>(stored.size()), target, longMask);
        EXPECT_EQ(before, room);
    }
}

TEST(PersistBlocks, WritingAMaskOfATargetWithoutRecordAddsOne) {
    persist::MaskedTarget target = {};
    Name(target.nodeName, 0x50, 2);
    Name(target.portName, 0x60, 2);
    const std::vector<uint8_t> mask = {0x0F};

    std::vector<uint8_t> room(sizeof(HX_LUN_DATA), 0x77);
    const std::vector<uint8_t> second = BlockOf(2112, 2, 1);
    std::copy(second.begin(), second.end(), room.begin());
    ASSERT_EQ(2112u + 2080, persist::WriteStoredMask(2, room, 2112, target, mask));
    EXPECT_EQ(2, room[2]);
    EXPECT_TRUE(std::equal(second.begin() + 4, second.end(), room.begin() + 4));
    HX_LUN_RECORD expected = {};
    memcpy(expected.nodeName, target.nodeName, 8);
    memcpy(expected.portName, target.portName, 8);
    memset(expected.luns, 0x80, 2048);
    memset(expected.luns, 0, 4);
    EXPECT_EQ(0, memcmp(&expected, room.data() + 2112, sizeof expected));
    EXPECT_EQ(0x77, room[2112 + 2080]);

    std::vector<uint8_t> room1(sizeof(LunDataV1), 0x77);
    const std::vector<uint8_t> first = BlockOf(320, 1, 1);
    std::copy(first.begin(), first.end(), room1.begin());
    ASSERT_EQ(608u, persist::WriteStoredMask(1, room1, 320, target, mask));
    LunRecordV1 expected1 = {};
    memcpy(expected1.nodeName, target.nodeName, 8);
    memcpy(expected1.portName, target.portName, 8);
    expected1.visible[0] = 0x0F;
    EXPECT_EQ(0, memcmp(&expected1, room1.data() + 320, sizeof expected1));

    // The last free place, and none.
    std::vector<uint8_t> full = BlockOf(sizeof(LunDataV1), 1, 255);
    EXPECT_EQ(73760u, persist::WriteStoredMask(1, full, 73760, target, mask));
    Name(target.nodeName, 0x50, 3);
    const std::vector<uint8_t> before = full;
    EXPECT_EQ(0u, persist::WriteStoredMask(1, full, 73760, target, mask));
    EXPECT_EQ(before, full);
    // A count beyond the bytes: the new record goes behind what is there.
    std::vector<uint8_t> lying = BlockOf(sizeof(LunDataV1), 1, 65535);
    EXPECT_EQ(608u, persist::WriteStoredMask(1, lying, 320, target, mask));
    EXPECT_EQ(0, memcmp(target.nodeName, lying.data() + 320, 8));
    EXPECT_EQ(2, lying[2]);
    EXPECT_EQ(0, lying[3]);
}

TEST(PersistBlocks, PortNames) {
    const persist::Wwn wwn = {0x21, 0x00, 0x00, 0x24, 0xFF, 0x0A, 0x0B, 0x0C};
    EXPECT_EQ(wwn, persist::ParseWwn("21-00-00-24-ff-0a-0b-0c"));
    EXPECT_EQ(wwn, persist::ParseWwn("21-00-00-24-FF-0A-0B-0C\\LunData"));
    for (const char* name : {"", "-", "21-00-00-24-ff-0a-0b", "21-00-00-24-ff-0a-0b0c", "Device",
                             "21:00:00:24:ff:0a:0b:0c"}) {
        EXPECT_FALSE(persist::HasWwnForm(name)) << name;
        EXPECT_FALSE(persist::ParseWwn(name).has_value()) << name;
    }
    // One digit will do.
    EXPECT_EQ(wwn, persist::ParseWwn("21-00-00-24-ff- a-0b-c"));
    EXPECT_EQ(wwn, persist::ParseWwn("21-+0-00-24-ff-0a-0b-0c-old"));
    for (const char* name : {"21-00-00-24-ff-0a-0b-", "2g-00-00-24-ff-0a-0b-0c",
                             "21-0 -00-24-ff-0a-0b-0c", "21-00-00-24-ff-0a-0b-/c"}) {
        EXPECT_TRUE(persist::HasWwnForm(name)) << name;
        EXPECT_FALSE(persist::ParseWwn(name).has_value()) << name;
    }
}

}  // namespace
