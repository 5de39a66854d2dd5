// LUN masks in the driver: what goes over the wire, for drivers of both generations.
#include "support/byte_fields.h"
#include "support/persist_mask_fixture.h"

namespace {

using namespace support;

constexpr auto kLunList = static_cast<properties::LegacySelector>(12);

class PersistLiveMasksTest : public PersistMasksTest {
  protected:
    void AnswerLunList(const std::vector<uint8_t>& targets) {
        auto list = std::make_unique<persist::LunDataV1>();
        list->head.version = 1;
        list->head.count = static_cast<uint16_t>(targets.size());
        for (size_t i = 0; i < targets.size(); ++i) {
            SetNames(list->records[i], NameOf(targets[i]), NameOf(targets[i], 0x60));
            const Bytes mask = Counting(256, targets[i]);
            std::copy(mask.begin(), mask.end(), list->records[i].visible);
        }
        port->OnSelector(kLunList, {.data = BytesOf(*list)});
    }
};

TEST_F(PersistLiveMasksTest, LiveRequests) {
    const HX_BUS_TARGET_LUN address = {0x0102, 0x0304, 0x0506};
    port->On(command::TargetLunMask, {.data = Counting(256)});
    for (const size_t size : {size_t{1}, size_t{32}, size_t{256}, size_t{300}}) {
        Bytes mask(size);
        ASSERT_EQ(0u, Get(address, 0, mask));
        Bytes expected = Counting(256);
        expected.resize(size, 0xEE);
        EXPECT_EQ(expected, mask);
        EXPECT_EQ((Bytes{2, 1, 4, 3, 6, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
                  Part(port->Last().Data(), 0, 16));
        EXPECT_EQ(116u + 16u, port->Last().inputSize);
    }
    struct Row {
        DESTINATIONADDRESS address;
        Bytes block;
    };
    const Row rows[] = {
        {ByName(1, {1, 2, 3, 4, 5, 6, 7, 8}), {1, 2, 3, 4, 5, 6, 7, 8, 1, 0, 0, 0, 0, 0, 0, 0}},
        {ByName(2, {1, 2, 3, 4, 5, 6, 7, 8}), {1, 2, 3, 4, 5, 6, 7, 8, 2, 0, 0, 0, 0, 0, 0, 0}},
        {ByName(3, {1, 2, 3, 4, 5, 6, 7, 8}), {1, 2, 3, 0, 0, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0}},
        {ByName(4, {1, 2, 3, 4, 5, 6, 7, 8}), {1, 2, 3, 4, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0}},
    };
    port->On(command::TargetLunMaskFc, {.data = Counting(256)});
    port->On(command::SetTargetLunMaskFc, Reply{});
    port->On(command::SetTargetLunMask, Reply{});
    for (const Row& row : rows) {
        Bytes mask(256);
        ASSERT_EQ(0u, Get(row.address, 0, mask));
        EXPECT_EQ(Counting(256), mask);
        EXPECT_EQ(row.block, port->Last().Data());
        for (const size_t size : {size_t{0}, size_t{1}, size_t{256}, size_t{300}}) {
            const Bytes given = Counting(300);
            ASSERT_EQ(0u, HXUpdateHbaTargetLunMaskFC(handle, 0, &row.address, 0, given.data(),
                                                     static_cast<uint32_t>(size)));
            Bytes expected = row.block;
            Append(expected, Counting(static_cast<uint32_t>(std::min<size_t>(size, 256))));
            expected.resize(16 + size);
            EXPECT_EQ(expected, port->Last().Data()) << "256 bytes of mask at most";
        }
    }
    ASSERT_EQ(0u, Update(address, 0, {0xF0}));
    EXPECT_EQ((Bytes{2, 1, 4, 3, 6, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xF0}), port->Last().Data());
    EXPECT_EQ(103u, port->Last().Envelope().ext.subCode);

    port->Forget();
    for (const uint16_t type : {0, 5, 0xFFFF}) {
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(ByName(type, NameOf(1)), 0));
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Update(ByName(type, NameOf(1)), 0, Bytes(1)));
    }
    EXPECT_TRUE(port->Requests().empty());
    port->On(command::TargetLunMaskFc, Reply{.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(ByName(1, NameOf(1)), 0));
}

TEST_F(PersistLiveMasksTest, ArgumentsAreChecked) {
    const HX_BUS_TARGET_LUN address = {};
    uint8_t mask[256] = {};
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXUpdateHbaTargetLunMask(handle, 0, &address, -1, mask, 256));
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY,
              HXUpdateHbaTargetLunMask(handle, 0, &address, 0, mask, 0xFFFFFFF0u));
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(PersistLiveMasksTest, OlderDriversAreReadByTheirLists) {
    ReopenWith("7.05.02");
    AnswerTargetList({Target(1), Target(2)});
    AnswerLunList({9, 2, 1});
    for (const DESTINATIONADDRESS& address : AddressesOf(2)) {
        for (const size_t size : {size_t{0}, size_t{31}, size_t{256}, size_t{300}}) {
            port->Forget();
            Bytes mask(size);
            ASSERT_EQ(0u, Get(address, 0, mask)) << address.type;
            Bytes expected = Counting(256, 2);
            expected.resize(size, 0xEE);
            EXPECT_EQ(expected, mask);
            ASSERT_EQ(2u, port->Requests().size());
            EXPECT_EQ(11, port->Requests()[0].Data()[4]);
            EXPECT_EQ(12, port->Requests()[1].Data()[4]);
            EXPECT_EQ(28u + 73760u, port->Requests()[1].outputSize);
        }
    }
    Bytes mask(256);
    ASSERT_EQ(0u, Get(HX_BUS_TARGET_LUN{1, 1, 5}, 0, mask));
    EXPECT_EQ(Counting(256, 1), mask);

    for (const DESTINATIONADDRESS& address : Strangers()) {
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(address, 0)) << address.type;
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Update(address, 0, Bytes(1)));
    }
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(HX_BUS_TARGET_LUN{1, 3, 0}, 0));
    // A target that is not listed has a second name of zeros, by bus and target alone.
    auto list = std::make_unique<persist::LunDataV1>();
    list->head.count = 2;
    list->records[0].visible[0] = 0x11;  // a free record
    SetNames(list->records[1], NameOf(1), Name{});
    list->records[1].visible[0] = 0x22;
    port->OnSelector(kLunList, {.data = BytesOf(*list)});
    ASSERT_EQ(0u, Get(HX_BUS_TARGET_LUN{1, 3, 0}, 0, mask));
    EXPECT_EQ(0x22, mask[0]);
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(ByWords(4, 1, 3), 0));
    // A listed target without LUNs; a lying count.
    list->head.count = 65535;
    port->OnSelector(kLunList, {.data = BytesOf(*list)});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Check(ByName(1, NameOf(1)), 0));
    port->OnSelector(kLunList, {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(HX_STATUS{ERROR_GEN_FAILURE}, Check(ByName(1, NameOf(1)), 0));
}

TEST_F(PersistLiveMasksTest, OlderDriversAreToldEntryNamesAndMask) {
    ReopenWith("7.05.02");
    HX_TARGET_ENTRY entry = Target(2);
    memset(entry.reserved4, 0x77, 4);
    AnswerTargetList({Target(1), entry, Target(2)});
    port->OnPlain(0xF0000020, {});
    port->OnPlain(0xF0000029, {});
    for (const size_t size : {size_t{1}, size_t{256}, size_t{300}}) {
        Bytes expected(364);
        memcpy(&expected[44], &entry, 32);
        memcpy(&expected[76], entry.nodeName, 16);
        const Bytes sent = Counting(static_cast<uint32_t>(std::min<size_t>(size, 256)));
        std::copy(sent.begin(), sent.end(), expected.begin() + 108);
        for (const DESTINATIONADDRESS& address : AddressesOf(2)) {
            ASSERT_EQ(0u, Update(address, 0, Counting(static_cast<uint32_t>(size))));
            EXPECT_EQ(0xF0000020u, port->Last().Code());
            EXPECT_EQ(expected, port->Last().Data());
        }
        ASSERT_EQ(0u, Update(HX_BUS_TARGET_LUN{1, 2, 9}, 0, Counting(static_cast<uint32_t>(size))));
        EXPECT_EQ(0xF0000029u, port->Last().Code());
        EXPECT_EQ(expected, port->Last().Data());
    }
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Update(HX_BUS_TARGET_LUN{1, 3, 0}, 0, Bytes(1)));
}

TEST_F(PersistLiveMasksTest, LiveLunsOfAllTargets) {
    std::vector<properties::PortDatabaseEntry> devices(3);
    for (uint8_t i = 0; i < 3; ++i) {
        SetNames(devices[i], NameOf(i), NameOf(i, 0x60));
        devices[i].bus = 0x0102;
        devices[i].target = static_cast<uint16_t>(0x0300 + i);
        devices[i].lun = 0x0405;
    }
    AnswerDatabase(devices);
    port->On(command::TargetLunMask, [](const SentRequest& request) {
        const uint8_t target = request.Data()[2];
        Bytes mask(256, 0xFF);
        mask[0] = 0xFE;
        return target == 1 ? Reply{.status = 9} : Reply{.data = target == 2 ? Bytes(4) : mask};
    });
    Guarded<HX_LUN_DATA> block(0);
    block->version = 77;
    ASSERT_EQ(0u, HXGetLunData(handle, 0, block.Get(), 0));
    const auto expected = Luns(2, 3);
    expected->records[0].luns[0] = 0x80;
    for (const int record : {1, 2}) {  // not known, and a mask cut short
        memset(expected->records[record].luns, 0x80, 256);
    }
    EXPECT_EQ(BytesOf(*expected), BytesOf(*block.Get()));
    const auto requests = port->Requests(command::TargetLunMask);
    ASSERT_EQ(3u, requests.size());
    EXPECT_EQ((Bytes{2, 1, 2, 3, 5, 4}), Part(requests[2].Data(), 0, 6));
    // Bits are only set: what the caller had stays.
    block->records[0].luns[5] = 0x81;
    block->records[0].reserved16[3] = 0x33;
    ASSERT_EQ(0u, IHXFoGetLunData(handle, 1, 2, block.Get(), 0));
    EXPECT_EQ(0x81, block->records[0].luns[5]);
    EXPECT_EQ(0x33, block->records[0].reserved16[3]);

    port->On(command::TargetLunMask, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetLunData(handle, 0, block.Get(), 0));
    port->On(command::PortDatabase, Reply{.status = 22});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, HXGetLunData(handle, 0, block.Get(), 0));
}

TEST_F(PersistLiveMasksTest, SettingLiveLuns) {
    std::vector<properties::PortDatabaseEntry> devices(4);
    for (uint8_t i = 0; i < 4; ++i) {
        SetNames(devices[i], NameOf(static_cast<uint8_t>(i + 50)), NameOf(i, 0x60));
        devices[i].bus = 0x0102;
        devices[i].target = static_cast<uint16_t>(0x0300 + i);
    }
    AnswerDatabase(devices);
    uint32_t last = 0;
    port->On(command::SetTargetLunMaskFc, [&](const SentRequest& request) {
        last = request.Data()[2];
        return last == 2 ? Reply{.status = 9} : Reply{};
    });
    // Records 0, 1, 2 by their second names; one that no device has; and a free one.
    const auto block = Luns(7, 5);
    block->records[0].luns[255] = 0x80;
    block->records[0].luns[256] = 0x80;
    SetNames(block->records[3], NameOf(99), NameOf(99));
    SetNames(block->records[4], Name{}, NameOf(3, 0x60));
    ASSERT_EQ(0u, HXSetLunData(handle, 0, block.get(), 0)) << "an unknown target is no failure";
    EXPECT_EQ(2, block->version);
    auto requests = port->Requests(command::SetTargetLunMaskFc);
    ASSERT_EQ(3u, requests.size());
    Bytes expected = {2, 1, 0, 3, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0};
    expected.insert(expected.end(), 31, 0xFF);
    expected.push_back(0x7F);
    expected.resize(16 + 256);
    EXPECT_EQ(expected, requests[0].Data());

    port->On(command::SetTargetLunMaskFc, [](const SentRequest& request) {
        return Reply{.status = request.Data()[2] == 1 ? 21u : 0u};
    });
    port->Forget();
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXSetLunData(handle, 0, block.get(), 0));
    EXPECT_EQ(2u, port->Requests(command::SetTargetLunMaskFc).size()) << "stops there";
    port->On(command::PortDatabase, Reply{.status = 22});
    block->version = 7;
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, IHXFoSetLunData(handle, 1, 2, block.get(), 0));
    EXPECT_EQ(2, block->version) << "whatever comes after";

    ReopenWith("7.05.02");
    HX_TARGET_ENTRY entry = Target(1);
    AnswerTargetList({entry});
    port->OnPlain(0xF0000020, {});
    ASSERT_EQ(0u, HXSetLunData(handle, 0, block.get(), 0));
    EXPECT_EQ(1, block->version);
    EXPECT_EQ(0xF0000020u, port->Last().Code());
    EXPECT_EQ(0xFF, port->Last().Data()[108]);
}

}  // namespace
