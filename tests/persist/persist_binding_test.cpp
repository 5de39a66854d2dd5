// Bindings in the driver: what is read from it, what goes over the wire, for every generation.
#include "support/persist_fixture.h"

namespace {

using namespace support;
using properties::PortDatabaseEntry;

class PersistBindingTest : public PersistTest {
  protected:
    // A device that has this target ID and the names of its number.
    static PortDatabaseEntry Device(uint8_t number) {
        PortDatabaseEntry entry = {};
        SetNames(entry, NameOf(number), NameOf(number, 0x60));
        entry.target = number;
        return entry;
    }
    static HX_TARGET_ENTRY Listed(uint8_t number) {
        HX_TARGET_ENTRY entry;
        memset(&entry, 0xA0 + number, sizeof entry);
        SetNames(entry, NameOf(number), NameOf(number, 0x60));
        return entry;
    }
    // The driver's mask of every target, one byte of it.
    void AnswerMask(size_t at, uint8_t byte) {
        Bytes mask(256);
        mask[at] = byte;
        port->On(command::TargetLunMask, {.data = mask});
    }
    HX_STATUS Apply(const std::vector<HX_TARGET_ENTRY>& entries) {
        HX_TARGET_DATA block = {};
        block.count = static_cast<uint16_t>(entries.size());
        std::copy(entries.begin(), entries.end(), block.entries);
        port->Forget();
        return HXSetTargetData(handle, 0, &block, 0);
    }
    std::vector<SentRequest> Bindings() const {
        std::vector<SentRequest> found = port->Requests();
        std::erase_if(found, [](const SentRequest& r) { return r.Code() != 0xF0000020; });
        return found;
    }
};

TEST_F(PersistBindingTest, LiveTargetsLeaveTheRestOfTheBlock) {
    PortDatabaseEntry entry;
    const Bytes bytes = Counting(sizeof entry, 0x41);
    memcpy(&entry, bytes.data(), sizeof entry);
    AnswerDatabase({entry, entry});
    Guarded<HX_TARGET_DATA> block;
    ASSERT_EQ(0u, HXGetTargetData(handle, 0, block.Get(), 0));
    Bytes expected(sizeof(HX_TARGET_DATA), 0xEE);
    expected[2] = 2;
    expected[3] = 0;
    for (const size_t at : {size_t{32}, size_t{64}}) {
        std::copy_n(bytes.begin() + 40, 2, &expected[at]);
        expected[at + 3] = bytes[22];
        expected[at + 8] = bytes[19];
        std::copy_n(bytes.begin() + 16, 3, &expected[at + 12]);
        std::copy_n(bytes.begin(), 16, &expected[at + 16]);
    }
    EXPECT_EQ(expected, BytesOf(*block.Get()));
    EXPECT_EQ((Bytes{7, 0, 0, 0}), port->Last().Data()) << "every device";
}

TEST_F(PersistBindingTest, NoMoreThan256LiveTargets) {
    std::vector<PortDatabaseEntry> entries(257, Device(1));
    AnswerDatabase(entries);
    Guarded<HX_TARGET_DATA> block;
    ASSERT_EQ(0u, HXGetTargetData(handle, 0, block.Get(), 0));
    EXPECT_EQ(256, block->count);
    EXPECT_EQ(1, block->entries[255].target);
    entries.push_back(Device(1));
    AnswerDatabase(entries);
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetTargetData(handle, 0, block.Get(), 0));
    // The same of the masks.
    AnswerMask(0, 1);
    Guarded<HX_LUN_DATA> luns(0);
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetLunData(handle, 0, luns.Get(), 0));
    EXPECT_TRUE(luns.Raw().Holds(0));
    entries.pop_back();
    AnswerDatabase(entries);
    ASSERT_EQ(0u, HXGetLunData(handle, 0, luns.Get(), 0));
    EXPECT_EQ(256, luns->count);
    EXPECT_EQ(0x80, luns->records[255].luns[1]);
}

TEST_F(PersistBindingTest, ApplySendsTheDriversEntryAndItsMask) {
    AnswerDatabase({Device(1), Device(2)});
    AnswerTargetList({Listed(1), Listed(2)});
    AnswerMask(31, 0x80);
    port->OnPlain(0xF0000020, {});
    HX_TARGET_ENTRY wanted = {};
    SetNames(wanted, NameOf(2), NameOf(2, 0x60));
    wanted.bindingFlags = 0x5A;
    ASSERT_EQ(0u, Apply({HX_TARGET_ENTRY{}, wanted}));
    const auto bindings = Bindings();
    ASSERT_EQ(1u, bindings.size()) << "the free slot is passed over";
    HX_TARGET_ENTRY entry = Listed(2);
    entry.bindingFlags = 0x5A;
    Bytes expected(364);
    memcpy(&expected[44], &entry, 32);
    memcpy(&expected[76], entry.nodeName, 16);
    expected[108 + 31] = 0x80;
    EXPECT_EQ(expected, bindings[0].Data());
    EXPECT_EQ(28u, bindings[0].outputSize) << "no reply";

    // In the caller's order, the masks fetched for each.
    wanted = {};
    SetNames(wanted, NameOf(1), NameOf(1, 0x60));
    HX_TARGET_ENTRY other = wanted;
    SetNames(other, NameOf(2), NameOf(2, 0x60));
    ASSERT_EQ(0u, Apply({other, wanted}));
    ASSERT_EQ(2u, Bindings().size());
    EXPECT_EQ(2, Bindings()[0].Data()[76 + 7]);
    EXPECT_EQ(1, Bindings()[1].Data()[76 + 7]);
    EXPECT_EQ(2u, port->Requests(command::PortDatabase).size());
}

TEST_F(PersistBindingTest, ApplyOfNothingAsksForTheTargetListAlone) {
    AnswerTargetList({Listed(1)});
    EXPECT_EQ(0u, Apply({}));
    ASSERT_EQ(1u, port->Requests().size());
    EXPECT_EQ(0xF000000Bu, port->Last().Code());
    EXPECT_EQ(11, port->Last().Data()[4]);
    EXPECT_EQ(28u + 32812u, port->Last().outputSize);
    port->OnSelector(properties::LegacySelector::TargetList, {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(HX_STATUS{ERROR_GEN_FAILURE}, Apply({}));
}

TEST_F(PersistBindingTest, ApplyStopsAtTheFirstFailure) {
    AnswerMask(0, 1);
    port->OnPlain(0xF0000020, {});
    HX_TARGET_ENTRY first = {};
    SetNames(first, NameOf(1), NameOf(1, 0x60));
    HX_TARGET_ENTRY second = {};
    SetNames(second, NameOf(2), NameOf(2, 0x60));
    HX_TARGET_ENTRY half = second;  // one name alone does not make a target
    memset(half.portName, 0, 8);

    AnswerDatabase({Device(1), Device(2)});
    AnswerTargetList({});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Apply({first}));
    AnswerTargetList({Listed(1), Listed(2)});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Apply({first, half, second}));
    EXPECT_EQ(1u, Bindings().size()) << "what came before stays bound";
    // Known to the target list, not to the database.
    AnswerDatabase({Device(1)});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Apply({second}));
    AnswerDatabase({});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Apply({first}));
    AnswerDatabase({Device(1), Device(2)});
    port->On(command::TargetLunMask, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, Apply({first}));
    AnswerMask(0, 1);
    port->OnPlain(0xF0000020, {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(HX_STATUS{ERROR_GEN_FAILURE}, Apply({first, second}));
    EXPECT_EQ(1u, Bindings().size());
    // A count beyond the block.
    HX_TARGET_DATA block = {};
    block.count = 65535;
    EXPECT_EQ(0u, HXSetTargetData(handle, 0, &block, 0));
}

TEST_F(PersistBindingTest, AddAndSwapByDriverVersion) {
    HX_DEVICE_RECORD oldDevice;
    HX_DEVICE_RECORD newDevice;
    const Bytes oldBytes = Counting(290, 1);
    const Bytes newBytes = Counting(290, 101);
    memcpy(&oldDevice, oldBytes.data(), 290);
    memcpy(&newDevice, newBytes.data(), 290);
    const auto payload = [](const Bytes& record) {
        Bytes bytes(172);
        std::copy_n(record.begin(), 21, bytes.begin());
        bytes[22] = record[22];
        std::copy_n(record.begin() + 154, 8, bytes.begin() + 36);
        return bytes;
    };
    const auto legacy = [](const Bytes& record) {
        Bytes bytes(32);
        std::copy_n(record.begin() + 158, 2, bytes.begin());
        bytes[2] = record[20];
        bytes[3] = record[22];
        std::copy_n(record.begin() + 154, 4, bytes.begin() + 4);
        bytes[8] = record[19];
        std::copy_n(record.begin() + 160, 2, bytes.begin() + 10);
        std::copy_n(record.begin() + 16, 3, bytes.begin() + 12);
        std::copy_n(record.begin(), 16, bytes.begin() + 16);
        return bytes;
    };
    const auto joined = [](Bytes a, const Bytes& b) {
        Append(a, b);
        return a;
    };
    Bytes legacyAdd = joined(Bytes(44), joined(legacy(oldBytes), Bytes(288)));
    std::copy_n(oldBytes.begin(), 16, legacyAdd.begin() + 76);
    const Bytes legacySwap = joined(Bytes(12), joined(legacy(oldBytes), legacy(newBytes)));

    struct Row {
        const char* version;
        bool extended;
        transport::Command add, swap;
    };
    const Row rows[] = {
        {"7.05.02", false, {0xF0000029, 0}, {0xF0000011, 0}},
        {"7.05.03", true, {0xF0001008, 112}, {0xF0001008, 113}},
        {"8.00.99", true, {0xF0001008, 112}, {0xF0001008, 113}},
        {"8.01.00", true, {0xF000100E, 0}, {0xF0001011, 0}},
        {"9.04.02", true, {0xF000100E, 0}, {0xF0001011, 0}},
    };
    for (const Row& row : rows) {
        ReopenWith(row.version);
        if (row.extended) {
            port->On(row.add, Reply{});
            port->On(row.swap, Reply{});
        } else {
            port->OnPlain(row.add.code, {});
            port->OnPlain(row.swap.code, {});
        }
        EXPECT_EQ(0u, HXAddTargetDevice(handle, &oldDevice)) << row.version;
        EXPECT_EQ(row.add.code, port->Last().Code());
        EXPECT_EQ(row.extended ? payload(oldBytes) : legacyAdd, port->Last().Data());
        EXPECT_EQ(0u, HXSwapTargetDevice(handle, &oldDevice, &newDevice)) << row.version;
        EXPECT_EQ(row.swap.code, port->Last().Code());
        EXPECT_EQ(row.extended ? joined(payload(oldBytes), payload(newBytes)) : legacySwap,
                  port->Last().Data());
        if (row.extended) {
            EXPECT_EQ(row.swap.subCode, port->Last().Envelope().ext.subCode);
        }
        EXPECT_EQ(2u, port->Requests().size());
    }
    port->On(command::AddTarget, Reply{.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXAddTargetDevice(handle, &oldDevice));
}

}  // namespace
