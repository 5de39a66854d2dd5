// Bindings and LUN masks as vxmgr edits them, writes them to documents and takes them back: every
// byte survives, and no document does harm.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "support/document.h"
#include "support/has.h"
#include "support/json_schema.h"
#include "vxmgr/bindings/bind_edit.h"
#include "vxmgr/bindings/lunmask_luns.h"
#include "vxmgr/bindings/store_blocks.h"
#include "vxmgr/bindings/store_difference.h"
#include "vxmgr/bindings/store_documents.h"
#include "vxmgr/targets/qos_levels.h"
#include "vxmgr/targets/target_luns.h"

namespace {

using namespace vxmgr;
using tools::Wwn;

Wwn NameOf(uint8_t last, uint8_t first = 0x2B) {
    return {{first, 0, 0, 0, 0, 0, 0, last}};
}

HX_DEVICE_RECORD Device(uint8_t last, uint16_t target, uint8_t flags = 1) {
    HX_DEVICE_RECORD device{};
    SetNames(device, NameOf(last, 0x2A), NameOf(last));
    SetPortId(0x020000u + last, device.portId);
    device.target = target;
    device.bindingFlags = flags;
    return device;
}

const DocumentPort kPort{NameOf(1, 0x21), NameOf(1, 0x20), "EMU7740A0001"};

TEST(ToolsLuns, ListsAtTheirLimits) {
    const struct {
        const char* text;
        const char* shown;  // null: refused
    } kRows[] = {
        {"0", "0"},           {"2047", "2047"},
        {"0-2047", "0-2047"}, {"all", "0-2047"},
        {"ALL", "0-2047"},    {"12,0-7", "0-7,12"},
        {"3,2,1,0", "0-3"},   {"5-5", "5"},
        {"0x10", "16"},       {"", nullptr},
        {",", nullptr},       {"1,", nullptr},
        {"2048", nullptr},    {"0-2048", nullptr},
        {"-1", nullptr},      {"1-", nullptr},
        {"3-1", nullptr},     {"1-2-3", nullptr},
        {"1,1", nullptr},     {"0-7,7", nullptr},
        {"1, 2", nullptr},    {"18446744073709551616", nullptr},
        {"0-7 ", nullptr},    {"4294967296", nullptr},
        {"1,all", nullptr},
    };
    for (const auto& row : kRows) {
        LunSet luns;
        std::string error;
        const bool parsed = ParseLuns(row.text, &luns, &error);
        EXPECT_EQ(parsed, row.shown != nullptr) << row.text;
        EXPECT_EQ(error.empty(), parsed) << row.text;
        if (parsed) {
            EXPECT_EQ(LunsText(luns), row.shown ? row.shown : "") << row.text;
        }
    }
    EXPECT_EQ(LunsText({}), "");
}

TEST(ToolsLuns, MasksAndRecordsMeanTheSame) {
    LunSet masked;
    masked.set(0).set(9).set(255).set(256).set(2047);
    uint8_t mask[HX_LUN_MASK_SIZE];
    SetMasked(masked, mask);
    EXPECT_EQ(mask[0], 0xFE);  // set is visible
    EXPECT_EQ(mask[1], 0xFD);
    EXPECT_EQ(mask[31], 0x7F);
    EXPECT_EQ(mask[32], 0xFE);
    EXPECT_EQ(mask[255], 0x7F);
    EXPECT_EQ(MaskedOf(mask), masked);

    HX_LUN_RECORD record{};
    record.luns[8] = 0xFF;
    record.luns[9] = 0x05;
    SetMasked(masked, record);
    EXPECT_EQ(record.luns[8], 0x7F);
    EXPECT_EQ(record.luns[9], 0x85);
    EXPECT_EQ(record.luns[2047], 0x80);
    EXPECT_EQ(MaskedOf(record), masked);
    EXPECT_EQ(LunsText(masked & FirstLuns(kLegacyLuns)), "0,9,255");
}

TEST(ToolsLuns, RunsJoinWhatLooksTheSame) {
    LunSet seen = FirstLuns(4);
    seen.set(256);
    LunSet live;
    live.set(4).set(5);
    LunSet stored = live;
    stored.set(2);
    const auto runs = LunRuns({seen, live, stored});
    std::string text;
    for (const LunRun& run : runs) {
        text += RangeText(run.luns) + (run.seen.value() ? "s" : "-") +
                (run.maskedLive.value() ? "l" : "-") + (run.maskedStored.value() ? "r" : "-") + " ";
    }
    EXPECT_EQ(text, "0-1s-- 2s-r 3s-- 4-5-lr 256s-- ");
    EXPECT_TRUE(LunRuns({LunSet(), LunSet(), std::nullopt}).empty());
    const auto blind = LunRuns({std::nullopt, FirstLuns(HX_MAX_LUNS), std::nullopt});
    ASSERT_EQ(blind.size(), 1u);
    EXPECT_EQ(blind[0].luns.last, 2047u);
    EXPECT_FALSE(blind[0].seen || blind[0].maskedStored);
}

TEST(ToolsLuns, PrioritiesByNameAndInRuns) {
    EXPECT_EQ(ParseQosLevel("none"), 0);
    EXPECT_EQ(ParseQosLevel("High"), 3);
    EXPECT_EQ(ParseQosLevel("0x2"), 2);
    for (const char* wrong : {"", "4", "-1", "highest", "256"}) {
        EXPECT_FALSE(ParseQosLevel(wrong)) << wrong;
    }
    HX_LUN_QOS before{};
    HX_LUN_QOS now{};
    now.levels[0] = now.levels[1] = now.levels[255] = 3;
    before.levels[1] = 3;
    const auto text = [](const std::vector<QosRun>& runs) {
        std::string all;
        for (const QosRun& run : runs) {
            all += RangeText(run.luns) + "=" + std::to_string(run.level) +
                   (run.before ? "<" + std::to_string(*run.before) : "") + " ";
        }
        return all;
    };
    EXPECT_EQ(text(QosRuns(now, nullptr)), "0-1=3 2-254=0 255=3 ");
    EXPECT_EQ(text(QosRuns(now, &before)), "0=3<0 1=3<3 2-254=0<0 255=3<0 ");
}

TEST(ToolsBindings, HolesAreFilledAndFullIsFull) {
    HX_TARGET_DATA block{};
    for (int i = 0; i < 256; ++i) {
        HX_DEVICE_RECORD device = Device(static_cast<uint8_t>(i), static_cast<uint16_t>(i));
        ASSERT_TRUE(PutBinding(block, device, std::nullopt)) << i;
    }
    EXPECT_EQ(block.count, 256);
    HX_DEVICE_RECORD one = Device(0, 0);
    one.portName[1] = 1;
    EXPECT_FALSE(PutBinding(block, one, std::nullopt));
    one = Device(7, 200, 3);  // a known one is changed in its place
    EXPECT_EQ(AddressHolder(block, one), NameOf(200));
    one.bus = 5;
    EXPECT_EQ(AddressHolder(block, one), std::nullopt) << "on another bus";
    EXPECT_TRUE(PutBinding(block, one, uint16_t{2}));
    EXPECT_EQ(block.entries[7].bus, 5);
    EXPECT_EQ(block.entries[7].target, 200);
    EXPECT_EQ(block.entries[7].lunBase, 2);

    EXPECT_TRUE(RemoveBinding(block, NameOf(100)));
    EXPECT_FALSE(RemoveBinding(block, NameOf(100)));
    EXPECT_EQ(block.count, 256);
    EXPECT_TRUE(IsNothing(block.entries[100]));
    one = Device(0, 100);
    one.portName[1] = 1;
    EXPECT_TRUE(PutBinding(block, one, std::nullopt));
    EXPECT_EQ(Wwn::Of(block.entries[100].portName), Wwn::Of(one.portName));

    // A stored count is foreign: it leads nowhere beyond the block.
    block.count = 0xFFFF;
    EXPECT_EQ(RowsOf(block).size(), 256u);
    EXPECT_EQ(FindRow(block, NameOf(0, 0x2C)), nullptr);
    // Rows beyond the count are no bindings, whatever they hold.
    block.count = 1;
    EXPECT_EQ(FindRow(block, NameOf(7)), nullptr);
}

TEST(ToolsBindings, SwapGivesThePlaceAway) {
    HX_TARGET_DATA block{};
    PutBinding(block, Device(1, 10, 3), uint16_t{8});
    PutBinding(block, Device(2, 20, 5), std::nullopt);
    const HX_TARGET_DATA before = block;
    EXPECT_FALSE(SwapBindings(block, NameOf(9), Device(1, 0)));
    EXPECT_TRUE(SameBytes(before, block));

    EXPECT_TRUE(SwapBindings(block, NameOf(1), Device(2, 99)));
    EXPECT_EQ(Wwn::Of(block.entries[0].portName), NameOf(2));
    EXPECT_EQ(Wwn::Of(block.entries[0].nodeName), NameOf(2, 0x2A));
    EXPECT_EQ(PortIdOf(block.entries[0].portId), 0x020002u);
    EXPECT_EQ(block.entries[0].target, 10);
    EXPECT_EQ(block.entries[0].lunBase, 8);
    EXPECT_EQ(Wwn::Of(block.entries[1].portName), NameOf(1));
    EXPECT_EQ(block.entries[1].target, 20);

    EXPECT_TRUE(SwapBindings(block, NameOf(2), Device(3, 99)));  // one that is not bound
    EXPECT_EQ(Wwn::Of(block.entries[0].portName), NameOf(3));
    EXPECT_EQ(FindRow(block, NameOf(2)), nullptr);
    EXPECT_EQ(block.count, 2);
}

TEST(ToolsBindings, BothAreBoundWhereASwapLeavesThem) {
    BindingSwap swap = SwapOf(Device(1, 10, 1), Device(2, 20, 0));
    swap.newAfter.bindingFlags = 1;
    swap.oldAfter.bindingFlags = 3;
    HX_TARGET_DATA block{};
    PutBinding(block, Device(2, 77, 5), std::nullopt);  // stored elsewhere than the driver has it
    ASSERT_TRUE(PutSwap(block, swap, true));
    EXPECT_EQ(block.count, 2);
    EXPECT_EQ(FindRow(block, NameOf(2))->target, 10);
    EXPECT_EQ(FindRow(block, NameOf(2))->bindingFlags, 1);
    EXPECT_EQ(FindRow(block, NameOf(1))->target, 20);
    EXPECT_EQ(FindRow(block, NameOf(1))->bindingFlags, 3);

    HX_TARGET_DATA alone{};
    ASSERT_TRUE(PutSwap(alone, swap, false));
    EXPECT_EQ(FindRow(alone, NameOf(2))->target, 10);
    EXPECT_EQ(FindRow(alone, NameOf(1)), nullptr) << "its place went with it";

    HX_TARGET_DATA full{};
    for (int i = 3; i < 258; ++i) {
        HX_DEVICE_RECORD device = Device(static_cast<uint8_t>(i), 1);
        device.portName[1] = static_cast<uint8_t>(1 + i / 256);
        ASSERT_TRUE(PutBinding(full, device, std::nullopt));
    }
    EXPECT_FALSE(PutSwap(full, swap, true)) << "room for one of the two";
}

// Every byte random; node names differ and are sometimes zero.
template <class Block>
std::unique_ptr<Block> RandomBlock(std::mt19937& random, uint16_t count) {
    auto block = std::make_unique<Block>();
    auto* bytes = reinterpret_cast<uint8_t*>(block.get());
    for (size_t i = 0; i < sizeof *block; ++i) {
        bytes[i] = static_cast<uint8_t>(random());
    }
    block->count = count;
    for (size_t slot = 0; slot < HX_MAX_TARGETS; ++slot) {
        auto& row = SlotsOf(*block)[slot];
        SetNames(row, slot % 5 == 0 ? Wwn() : NameOf(static_cast<uint8_t>(slot), 0x50),
                 NameOf(static_cast<uint8_t>(slot)));
        if (slot % 7 == 0) {
            row = {};
        }
    }
    return block;
}

std::vector<std::string> SchemaErrors(const std::string& text, const char* schema) {
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    return schemas.Check(support::Document::Parse(text), schema);
}

TEST(ToolsDocuments, EveryByteOfABindingBlockReturns) {
    std::mt19937 random(1);
    for (const uint16_t count : {0, 1, 17, 255, 256}) {
        const auto block = RandomBlock<HX_TARGET_DATA>(random, count);
        const std::string text = BindDocument(kPort, *block);
        EXPECT_EQ(SchemaErrors(text, "vxmgr.bindings.json"), std::vector<std::string>());
        HX_TARGET_DATA read;
        std::memset(&read, 0xA5, sizeof read);
        const DocumentPort port = ReadBindDocument(text, &read);
        EXPECT_TRUE(SameBytes(*block, read)) << count;
        EXPECT_EQ(port.portName, kPort.portName);
        EXPECT_EQ(port.serial, kPort.serial);
    }
}

TEST(ToolsDocuments, EveryStoredByteOfALunBlockReturns) {
    std::mt19937 random(2);
    const auto read = std::make_unique<HX_LUN_DATA>();
    for (const uint16_t count : {0, 1, 3, 256}) {
        const auto block = AsStored(*RandomBlock<HX_LUN_DATA>(random, count));
        // Runs that end at the last LUN, and LUNs without any bit.
        if (count > 1) {
            std::memset(block->records[1].luns + 1000, 0x81, HX_MAX_LUNS - 1000);
            std::memset(block->records[1].luns, 0, 1000);
        }
        // A run per LUN in each of them would be half a million.
        for (size_t slot = 3; slot < count; ++slot) {
            std::memset(block->records[slot].luns, static_cast<uint8_t>(random()), HX_MAX_LUNS / 2);
            std::memset(block->records[slot].luns + HX_MAX_LUNS / 2, static_cast<uint8_t>(slot),
                        HX_MAX_LUNS / 2);
        }
        const std::string text = LunMaskDocument(kPort, *block);
        EXPECT_EQ(SchemaErrors(text, "vxmgr.lun_masks.json"), std::vector<std::string>());
        std::memset(read.get(), 0xA5, sizeof *read);
        ReadLunMaskDocument(text, read.get());
        EXPECT_TRUE(SameBytes(*block, *read)) << count;
    }
}

template <class Block>
std::string ErrorOf(DocumentPort (*read)(std::string_view, Block*), const std::string& text) {
    const auto block = std::make_unique<Block>();
    try {
        read(text, block.get());
        return "";
    } catch (const DocumentError& error) {
        return error.text;
    }
}

// One change to a document that is right otherwise, and a part of what is said of it.
struct WrongDocument {
    const char* place;
    const char* holds;  // null: the place is missing
    const char* says;
};

template <class Block>
void ExpectRefused(DocumentPort (*read)(std::string_view, Block*), const std::string& good,
                   const std::vector<WrongDocument>& wrong) {
    ASSERT_EQ(ErrorOf(read, good), "");
    for (const WrongDocument& one : wrong) {
        const std::string document =
            support::Document::Parse(good).With(one.place, one.holds).dump();
        EXPECT_TRUE(support::Has(ErrorOf(read, document), one.says)) << document;
    }
}

TEST(ToolsDocuments, WrongBindingsAreRefused) {
    HX_TARGET_DATA block{};
    PutBinding(block, Device(1, 10), std::nullopt);
    PutBinding(block, Device(2, 20), std::nullopt);
    ExpectRefused<HX_TARGET_DATA>(
        ReadBindDocument, BindDocument(kPort, block),
        {
            {"", "[]", "no object"},
            {"/document", R"("vxmgr.lun_masks")", "is not \"vxmgr.bindings\""},
            {"/version", "2", "version 2 is not known"},
            {"/version", R"("1")", "version"},
            {"/version", nullptr, "version is missing"},
            {"/port", "1", "the document.port is no object"},
            {"/port/serial", nullptr, "serial is missing"},
            {"/port/model", R"("x")", "\"model\" is no key"},
            {"/comment", R"("x")", "\"comment\" is no key"},
            {"/count", "257", "count is no number from 0 to 256"},
            {"/count", "-1", "count is no number"},
            {"/count", "2.0", "count is no number"},
            {"/header", "65536", "header is no number"},
            {"/reserved4", R"("00")", "not 28 bytes"},
            {"/targets", "{}", "no list"},
            {"/targets/1", "null", "targets[1] is no object"},
            {"/targets/1/slot", "0", "slot 0 stands twice"},
            {"/targets/1/slot", "256", "slot is no number from 0 to 255"},
            {"/targets/1/target_wwn", R"("2b00000000000001")",
             "targets[1]: target_wwn 2b00000000000001 stands twice"},
            {"/targets/0/target_wwn", R"("2b:00:00:00:00:00:00:01")", "no name"},
            {"/targets/0/node_wwn", R"("2b0000000000000")", "no name"},
            {"/targets/0/node_wwn", R"("0000000000000000")", "free"},
            {"/targets/0/free", "true", "free"},
            {"/targets/0/free", "1", "neither true nor false"},
            {"/targets/0/port_id", R"("0x1000000")", "port_id"},
            {"/targets/0/port_id", R"("020000")", "port_id"},
            {"/targets/0/bus", "256", "bus is no number from 0 to 255"},
            {"/targets/0/target", R"("1")", "target is no number"},
            {"/targets/0/flags", R"("0x100")", "flags"},
            {"/targets/0/lun_base", "65536", "lun_base"},
            {"/targets/0/reserved9", R"("0g")", "not 1 bytes"},
            {"/targets/0/lun", "1", "\"lun\" is no key"},
        });
}

TEST(ToolsDocuments, WrongMasksAreRefused) {
    const auto block = std::make_unique<HX_LUN_DATA>();
    block->version = 2;
    for (const uint8_t name : {1, 2}) {
        HX_LUN_RECORD* record = NewRow(*block);
        SetNames(*record, NameOf(name, 0x2A), NameOf(name));
        record->luns[3] = 0x81;
    }
    ExpectRefused<HX_LUN_DATA>(
        ReadLunMaskDocument, LunMaskDocument(kPort, *block),
        {
            {"/count", "1", "targets[1]: slot 1 is beyond the count"},
            {"/format", "65536", "format"},
            {"/targets/0/masked", R"("2048")", "masked holds no LUNs"},
            {"/targets/0/masked", R"("3,3")", "named twice"},
            {"/targets/0/masked", "3", "masked is no text"},
            {"/targets/0/masked", nullptr, "masked is missing"},
            {"/targets/0/other_bits/0/bits", R"("0x80")", "bits"},
            {"/targets/0/other_bits/0/luns", R"("x")", "luns holds no LUNs"},
            {"/targets/0/other_bits/0/lun", "1", "no key"},
            {"/targets/0/other_bits/-", R"({"luns": "3", "bits": "0x01"})", "names a LUN twice"},
            {"/targets/0/other_bits", R"("3")", "no list"},
            {"/targets/0/reserved16", R"("000000000000000000000000000000")", "not 16 bytes"},
            {"/targets/1/target_wwn", R"("2b00000000000001")", "stands twice"},
        });
}

TEST(ToolsDocuments, DamagedTextIsSurvived) {
    HX_TARGET_DATA block{};
    PutBinding(block, Device(1, 10), std::nullopt);
    const std::string good = BindDocument(kPort, block);
    EXPECT_TRUE(support::Has(ErrorOf(ReadBindDocument, ""), "no JSON"));
    EXPECT_NE(ErrorOf(ReadBindDocument, std::string("{\"version\":1\0}", 14)), "");
    EXPECT_NE(ErrorOf(ReadBindDocument, std::string(100000, '[')), "");
    EXPECT_NE(ErrorOf(ReadBindDocument, good + "{}"), "");
    // JSON itself would take the last of two.
    std::string twice = good;
    twice.insert(twice.find("\"bus\""), "\"bus\": 7, ");
    EXPECT_EQ(ErrorOf(ReadBindDocument, twice), "the key \"bus\" stands twice in an object");

    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round) {
        std::string text = good;
        for (int changes = 0; changes < 3; ++changes) {
            text[random() % text.size()] = static_cast<char>(random());
        }
        text.resize(text.size() - random() % 3);
        HX_TARGET_DATA read{};
        try {
            ReadBindDocument(text, &read);
        } catch (const DocumentError&) {
            continue;
        }
        // What is taken is a block that its own document gives back.
        HX_TARGET_DATA again{};
        ReadBindDocument(BindDocument(kPort, read), &again);
        EXPECT_TRUE(SameBytes(read, again)) << text;
    }
}

std::string Joined(const std::vector<DifferenceRow>& rows) {
    std::string text;
    for (const DifferenceRow& row : rows) {
        text += std::string(row.action) + " " + row.target.Digits() + " (" + row.what + ")\n";
    }
    return text;
}

TEST(ToolsDifferences, NameWhatChangesAndNothingElse) {
    HX_TARGET_DATA before{};
    PutBinding(before, Device(1, 10), std::nullopt);
    PutBinding(before, Device(2, 20), std::nullopt);
    PutBinding(before, Device(3, 30), std::nullopt);
    EXPECT_EQ(Joined(DifferencesOf(before, before)), "");
    HX_TARGET_DATA after = before;
    RemoveBinding(after, NameOf(1));
    PutBinding(after, Device(2, 21, 5), std::nullopt);
    after.entries[2].reserved9 = 1;
    PutBinding(after, Device(4, 40), std::nullopt);  // takes the hole
    EXPECT_EQ(Joined(DifferencesOf(before, after)),
              "removed 2b00000000000001 (node name 2a:00:00:00:00:00:00:01, port id 0x020001, "
              "bus:target 0:10, target number 0, flags 0x01, LUN base 0)\n"
              "added 2b00000000000004 (node name 2a:00:00:00:00:00:00:04, port id 0x020004, "
              "bus:target 0:40, target number 0, flags 0x01, LUN base 0)\n"
              "changed 2b00000000000002 (bus:target 0:20 -> 0:21, flags 0x01 -> 0x05)\n"
              "changed 2b00000000000003 (bytes without a name)\n");

    const auto masks = std::make_unique<HX_LUN_DATA>();
    SetNames(*NewRow(*masks), NameOf(1, 0x2A), NameOf(1));
    const auto changed = std::make_unique<HX_LUN_DATA>(*masks);
    changed->records[0].luns[2047] = 0x80;
    EXPECT_EQ(Joined(DifferencesOf(*masks, *changed)),
              "changed 2b00000000000001 (masked LUNs none -> 2047)\n");
}

TEST(ToolsDifferences, OlderFormKeepsNamesAndTheFirstMasks) {
    const auto block = std::make_unique<HX_LUN_DATA>();
    block->version = 2;
    block->reserved4[0] = 9;
    HX_LUN_RECORD* record = NewRow(*block);
    SetNames(*record, NameOf(1, 0x2A), NameOf(1));
    record->reserved16[0] = 7;
    record->luns[255] = 0x83;
    record->luns[256] = 0x80;
    const auto stored = AsVersion1(*block);
    EXPECT_EQ(stored->version, 1);
    EXPECT_EQ(stored->reserved4[0], 0);
    EXPECT_EQ(stored->records[0].reserved16[0], 0);
    EXPECT_EQ(stored->records[0].luns[255], 0x80);
    EXPECT_EQ(stored->records[0].luns[256], 0);
    EXPECT_EQ(Wwn::Of(stored->records[0].portName), NameOf(1));
}

}  // namespace
