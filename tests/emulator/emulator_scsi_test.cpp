// The emulated targets: addressing, identity, blocks, sense data and masks.
#include "emulator/emulator_model_fixture.h"

#include "passthru/scsi_records.h"
#include "persist/driver_records.h"
#include "properties/port_database_records.h"

namespace {

using namespace emulator_test;
using passthru::DriverAddress;
using passthru::ScsiRequest;

struct ScsiAnswer {
    Answer answer;
    ScsiRequest head = {};
    Bytes data;

    uint8_t Key() const { return head.sense[2]; }
    uint8_t Code() const { return head.sense[12]; }
};

class EmulatorScsi : public ModelFixture {
  protected:
    static constexpr uint16_t kArrayA = 0, kArrayB = 1, kOldArray = 2, kOtherHost = 3, kLost = 4;

    static ScsiRequest Request(uint16_t target, uint16_t lun, const Bytes& cdb) {
        ScsiRequest request = {};
        std::memcpy(request.address + 2, &target, sizeof target);
        request.addressType = static_cast<uint16_t>(DriverAddress::BusAndTarget);
        request.lun = lun;
        request.cdbLength = static_cast<uint8_t>(cdb.size());
        std::copy(cdb.begin(), cdb.end(), request.cdb);
        return request;
    }

    ScsiAnswer Scsi(ScsiRequest request, uint32_t room, const Bytes& out = {},
                    uint32_t port = kNewest) {
        request.direction = !out.empty() ? 2 : room != 0 ? 1 : 0;
        Bytes input(sizeof request + std::max<size_t>(room, out.size()));
        std::memcpy(input.data(), &request, sizeof request);
        std::copy(out.begin(), out.end(), input.begin() + sizeof request);
        ScsiAnswer result;
        result.answer = Ask(port, ScsiPassThrough, static_cast<uint32_t>(input.size()), input);
        const Bytes& data = result.answer.data;
        if (data.size() >= sizeof result.head) {
            std::memcpy(&result.head, data.data(), sizeof result.head);
            result.data.assign(data.begin() + sizeof result.head, data.end());
        }
        return result;
    }

    ScsiAnswer Scsi(uint16_t target, uint16_t lun, const Bytes& cdb, uint32_t room,
                    const Bytes& out = {}, uint32_t port = kNewest) {
        return Scsi(Request(target, lun, cdb), room, out, port);
    }

    static size_t BigEndian16(const Bytes& page) { return page[2] * 256u + page[3]; }

    void ExpectSense(const ScsiAnswer& result, uint8_t key, uint8_t code, uint8_t qualifier = 0) {
        EXPECT_EQ(result.answer.Status(), ScsiStatus);
        EXPECT_EQ(result.answer.envelope.ext.detailStatus, 2u);
        EXPECT_EQ(result.head.sense[0], 0x70);
        EXPECT_EQ(result.Key(), key);
        EXPECT_EQ(result.head.sense[7], 10);
        EXPECT_EQ(result.Code(), code);
        EXPECT_EQ(result.head.sense[13], qualifier);
    }

    static Bytes ReadOrWrite16(uint8_t operation, uint64_t address, uint32_t count) {
        Bytes cdb(16);
        cdb[0] = operation;
        for (int at = 0; at < 8; ++at) {
            cdb[9 - at] = static_cast<uint8_t>(address >> (8 * at));
        }
        for (int at = 0; at < 4; ++at) {
            cdb[13 - at] = static_cast<uint8_t>(count >> (8 * at));
        }
        return cdb;
    }

    static constexpr uint8_t kInquiry[] = {0x12, 0, 0, 0, 255, 0};
    const Bytes inquiry{std::begin(kInquiry), std::end(kInquiry)};
    const Bytes reportLuns{0xA0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0};
};

TEST_F(EmulatorScsi, EveryAddressTypeNamesTheTarget) {
    const vxemu::TargetProfile target = MakeProfile("lab")->targets[kArrayB];
    ScsiRequest request = Request(0, 1, inquiry);
    struct Case {
        DriverAddress type;
        const uint8_t* bytes;
        size_t size;
    };
    const uint8_t busAndTarget[] = {0, 0, 1, 0};
    const Case cases[] = {{DriverAddress::NodeName, target.nodeName, 8},
                          {DriverAddress::PortName, target.portName, 8},
                          {DriverAddress::PortId, target.portId, 3},
                          {DriverAddress::BusAndTarget, busAndTarget, 4}};
    for (const Case& test : cases) {
        SCOPED_TRACE(static_cast<int>(test.type));
        std::memset(request.address, 0, sizeof request.address);
        std::memcpy(request.address, test.bytes, test.size);
        request.addressType = static_cast<uint16_t>(test.type);
        const ScsiAnswer found = Scsi(request, 96);
        EXPECT_EQ(found.answer.Status(), Success);
        EXPECT_EQ(std::string(found.data.begin() + 8, found.data.begin() + 36),
                  "EMULATEDEmulated disk   1.00");
        request.address[0] ^= 0x55;
        EXPECT_EQ(Scsi(request, 96).answer.Status(), DeviceNotFound);
    }
    // No address, an unknown type, a host, a device that has gone, and nobody at all.
    for (uint16_t type : {0, 4, 6, 0xFFFF}) {
        request.addressType = type;
        EXPECT_EQ(Scsi(request, 96).answer.Status(), DeviceNotFound) << type;
    }
    for (uint16_t number : {kOtherHost, kLost, uint16_t{5}, uint16_t{256}}) {
        EXPECT_EQ(Scsi(number, 0, inquiry, 96).answer.Status(), DeviceNotFound);
    }
    Link(3, 0);
    EXPECT_EQ(Scsi(kArrayA, 0, inquiry, 96).answer.Status(), DeviceNotFound);
    EXPECT_EQ(Scsi(kArrayA, 0, inquiry, 96, {}, 1).answer.Status(), Success);
}

TEST_F(EmulatorScsi, InquiryAndItsPages) {
    const ScsiAnswer standard = Scsi(kArrayA, 0, inquiry, 1000);
    EXPECT_EQ(standard.data.size(), 96u);
    EXPECT_EQ(standard.data[4], 91);
    EXPECT_EQ(standard.answer.envelope.ext.responseLen, 352u + 96u);
    EXPECT_EQ(Scsi(kArrayA, 0, {0x12, 0, 0, 0, 5, 0}, 96).data.size(), 5u);
    EXPECT_EQ(Scsi(kArrayA, 0, {0x12, 0, 0, 0, 0, 0}, 96).data.size(), 0u);
    // More than the buffer holds.
    const ScsiAnswer cut = Scsi(kArrayA, 0, inquiry, 95);
    EXPECT_EQ(cut.answer.Status(), DataOverrun);
    EXPECT_EQ(cut.data, Bytes(standard.data.begin(), standard.data.begin() + 95));

    auto page = [&](uint8_t code, uint16_t lun = 2) {
        return Scsi(kArrayA, lun, {0x12, 1, code, 0, 255, 0}, 255);
    };
    EXPECT_EQ(page(0x00).data, (Bytes{0, 0, 0, 3, 0x00, 0x80, 0x83}));
    const Bytes serial = page(0x80).data;
    EXPECT_EQ(std::string(serial.begin() + 4, serial.end()), "EMU00L0002");
    EXPECT_EQ(serial[3], serial.size() - 4);
    const Bytes identity = page(0x83).data;
    EXPECT_EQ(BigEndian16(identity), identity.size() - 4);
    EXPECT_EQ(identity[4 + 4] >> 4, 3);
    EXPECT_NE(identity, page(0x83, 3).data);
    ExpectSense(page(0x84), 5, 0x24);
    ExpectSense(Scsi(kArrayA, 0, {0x12, 0, 0x80, 0, 255, 0}, 255), 5, 0x24);

    // No LUN there: the qualifier says so, and there are no pages.
    const ScsiAnswer absent = Scsi(kArrayA, 4, inquiry, 255);
    EXPECT_EQ(absent.answer.Status(), Success);
    EXPECT_EQ(absent.data[0], 0x7F);
    ExpectSense(page(0x80, 4), 5, 0x24);
}

TEST_F(EmulatorScsi, LunListsFollowTargetAndMask) {
    const ScsiAnswer all = Scsi(kArrayB, 0, reportLuns, 256);
    const Bytes expected = {0, 0, 0, 24, 0, 0, 0, 0, 0,    0, 0, 0, 0, 0, 0, 0,
                            0, 1, 0, 0,  0, 0, 0, 0, 0x41, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(all.data, expected);
    ExpectSense(Scsi(kOldArray, 0, reportLuns, 256), 5, 0x20);
    EXPECT_NE(Scsi(kOldArray, 3, inquiry, 96).data[0], 0x7F);
    EXPECT_EQ(Scsi(kOldArray, 1, inquiry, 96).data[0], 0x7F);
    Bytes shortList = reportLuns;
    shortList[8] = 0;
    shortList[9] = 15;
    ExpectSense(Scsi(kArrayB, 0, shortList, 256), 5, 0x24);
    Bytes unknown = reportLuns;
    unknown[2] = 3;
    ExpectSense(Scsi(kArrayB, 0, unknown, 256), 5, 0x24);

    // The port's mask hides LUN 1 from it, and from nobody else.
    Bytes mask(16 + 1);
    mask[2] = kArrayB;
    mask[16] = 0xFD;
    EXPECT_EQ(Ask(kNewest, SetTargetLunMask, 0, mask).Status(), Success);
    EXPECT_EQ(Scsi(kArrayB, 0, reportLuns, 256).data[3], 16);
    EXPECT_EQ(Scsi(kArrayB, 1, inquiry, 96).data[0], 0x7F);
    ExpectSense(Scsi(kArrayB, 1, Bytes(6), 0), 5, 0x25);
    EXPECT_EQ(Scsi(kArrayB, 0, reportLuns, 256, {}, 1).data, expected);
}

TEST_F(EmulatorScsi, SenseOfCommandsThatCannotBe) {
    ExpectSense(Scsi(kArrayA, 0, {0xFE, 0, 0, 0, 0, 0}, 16), 5, 0x20);
    ExpectSense(Scsi(kArrayA, 9, {0xFE, 0, 0, 0, 0, 0}, 16), 5, 0x25);
    ExpectSense(Scsi(kArrayA, 2048, Bytes(6), 0), 5, 0x25);
    ExpectSense(Scsi(kArrayA, 0xFFFF, Bytes(6), 0), 5, 0x25);
    EXPECT_EQ(Scsi(kArrayA, 0, Bytes(6), 0).answer.Status(), Success);
    // Sense data as data: nothing wrong, or no LUN.
    EXPECT_EQ(Scsi(kArrayA, 0, {0x03, 0, 0, 0, 18, 0}, 18).data[2], 0);
    EXPECT_EQ(Scsi(kArrayA, 9, {0x03, 0, 0, 0, 18, 0}, 18).data[12], 0x25);
    // Sense data of an earlier command does not stay.
    ScsiRequest request = Request(kArrayA, 0, inquiry);
    std::memset(request.sense, 0xAA, sizeof request.sense);
    const ScsiAnswer clean = Scsi(request, 96);
    EXPECT_EQ(std::count(std::begin(clean.head.sense), std::end(clean.head.sense), 0), 256);
}

TEST_F(EmulatorScsi, Capacities) {
    EXPECT_EQ(Scsi(kArrayA, 0, {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 8).data,
              (Bytes{0x00, 0x1F, 0xFF, 0xFF, 0, 0, 2, 0}));
    EXPECT_EQ(Scsi(kArrayA, 2, {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 8).data,
              (Bytes{0x00, 0x03, 0xFF, 0xFF, 0, 0, 16, 0}));
    // Two to the 33rd blocks do not fit the short form.
    EXPECT_EQ(Scsi(kArrayA, 3, {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 8).data,
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 2, 0}));
    Bytes longForm = {0x9E, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0};
    const Bytes capacity = Scsi(kArrayA, 3, longForm, 32).data;
    ASSERT_EQ(capacity.size(), 32u);
    EXPECT_EQ(Bytes(capacity.begin(), capacity.begin() + 12),
              (Bytes{0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 2, 0}));
    longForm[1] = 0x11;
    ExpectSense(Scsi(kArrayA, 3, longForm, 32), 5, 0x24);
}

TEST_F(EmulatorScsi, BlocksKeepWhatIsWritten) {
    // Blocks 6 to 9 cross from one piece of memory into the next.
    const Bytes read = ReadOrWrite16(0x88, 6, 4);
    const Bytes before = Scsi(kArrayA, 0, read, 2048).data;
    ASSERT_EQ(before.size(), 2048u);
    Bytes written(1024);
    for (size_t at = 0; at < written.size(); ++at) {
        written[at] = static_cast<uint8_t>(at * 7);
    }
    EXPECT_EQ(Scsi(kArrayA, 0, {0x2A, 0, 0, 0, 0, 7, 0, 0, 2, 0}, 0, written).answer.Status(),
              Success);
    Bytes expected = before;
    std::copy(written.begin(), written.end(), expected.begin() + 512);
    EXPECT_EQ(Scsi(kArrayA, 0, read, 2048).data, expected);
    // Another port sees the same disk; another LUN is another disk.
    EXPECT_EQ(Scsi(kArrayA, 0, read, 2048, {}, kLargeRom).data, expected);
    EXPECT_NE(Scsi(kArrayA, 1, read, 2048).data, expected);
    // The short forms reach the same blocks.
    EXPECT_EQ(Scsi(kArrayA, 0, {0x08, 0, 0, 6, 4, 0}, 2048).data, expected);
    EXPECT_EQ(Scsi(kArrayA, 0, {0xA8, 0, 0, 0, 0, 6, 0, 0, 0, 4, 0, 0}, 2048).data, expected);
    EXPECT_EQ(Scsi(kArrayA, 0, {0x08, 0, 0, 0, 0, 0}, 256 * 512).data.size(), 256u * 512);

    // Less data than the command speaks of, or less room.
    EXPECT_EQ(Scsi(kArrayA, 0, {0x2A, 0, 0, 0, 0, 7, 0, 0, 3, 0}, 0, written).answer.Status(),
              DataOverrun);
    EXPECT_EQ(Scsi(kArrayA, 0, read, 2048).data, expected);
    const ScsiAnswer cut = Scsi(kArrayA, 0, read, 700);
    EXPECT_EQ(cut.answer.Status(), DataOverrun);
    EXPECT_EQ(cut.data, Bytes(expected.begin(), expected.begin() + 700));

    // A LUN that is taken away forgets.
    vxemu::LunSelector lun = {{}, 0};
    const auto profile = MakeProfile("lab");
    std::memcpy(lun.target.portName, profile->targets[kArrayA].portName, 8);
    EXPECT_EQ(Control(control::kLunRemove, lun), Done);
    EXPECT_EQ(Scsi(kArrayA, 0, inquiry, 96).data[0], 0x7F);
    const vxemu::LunRequest again = {lun.target, profile->luns[0]};
    EXPECT_EQ(Control(control::kLunAdd, again), Done);
    EXPECT_EQ(Scsi(kArrayA, 0, read, 2048).data, before);
}

TEST_F(EmulatorScsi, BlocksBeyondTheDisk) {
    const uint64_t blocks = 8'589'934'592;
    const Bytes block(512, 0x5A);
    EXPECT_EQ(Scsi(kArrayA, 3, ReadOrWrite16(0x8A, blocks - 1, 1), 0, block).answer.Status(),
              Success);
    EXPECT_EQ(Scsi(kArrayA, 3, ReadOrWrite16(0x88, blocks - 1, 1), 512).data, block);
    EXPECT_EQ(Scsi(kArrayA, 3, ReadOrWrite16(0x88, blocks, 0), 512).answer.Status(), Success);
    struct Case {
        uint64_t address;
        uint32_t count;
    };
    const Case cases[] = {{blocks, 1}, {blocks - 1, 2},     {blocks + 1, 0},
                          {~0ull, 1},  {~0ull, 0xFFFFFFFF}, {0xFFFFFFFF00000000, 0xFFFFFFFF}};
    for (const Case& test : cases) {
        ExpectSense(Scsi(kArrayA, 3, ReadOrWrite16(0x88, test.address, test.count), 512), 5, 0x21);
        ExpectSense(Scsi(kArrayA, 3, ReadOrWrite16(0x8A, test.address, test.count), 0, block), 5,
                    0x21);
    }
    // A transfer longer than any buffer.
    EXPECT_EQ(Scsi(kArrayA, 3, ReadOrWrite16(0x88, 0, 0xFFFFFFFF), 512).answer.Status(),
              DataOverrun);
}

TEST_F(EmulatorScsi, FullMemoryIsASenseCode) {
    Bytes cluster(4096, 1);
    for (uint32_t at = 0; at < vxemu::kMaxStoreChunks; ++at) {
        ASSERT_EQ(Scsi(kArrayA, 2, ReadOrWrite16(0x8A, at, 1), 0, cluster).answer.Status(),
                  Success);
    }
    ExpectSense(Scsi(kArrayA, 2, ReadOrWrite16(0x8A, 5000, 1), 0, cluster), 7, 0x27, 7);
    // What has its place already can still be written.
    EXPECT_EQ(Scsi(kArrayA, 2, ReadOrWrite16(0x8A, 7, 1), 0, cluster).answer.Status(), Success);
}

TEST_F(EmulatorScsi, RequestsThatLie) {
    ScsiRequest request = Request(kArrayA, 0, inquiry);
    for (uint8_t length : {0, 79, 255}) {
        request.cdbLength = length;
        EXPECT_EQ(Scsi(request, 96).answer.Status(), InvalidParameter);
    }
    request.cdbLength = 78;
    EXPECT_EQ(Scsi(request, 96).answer.Status(), Success);
    request.direction = 3;
    EXPECT_EQ(Ask(kNewest, ScsiPassThrough, 352, BytesOf(request)).Status(), InvalidParameter);
    request.direction = 1;
    Bytes input = BytesOf(request);
    // No room for the head, and none for data.
    EXPECT_EQ(Ask(kNewest, ScsiPassThrough, 351, input).Status(), InvalidParameter);
    EXPECT_EQ(Ask(kNewest, ScsiPassThrough, 352, input).Status(), DataOverrun);
    input.pop_back();
    EXPECT_EQ(Ask(kNewest, ScsiPassThrough, 352, input).Status(), InvalidParameter);
}

// Through a legacy driver: loop identifiers, and sense in three bytes.
TEST_F(EmulatorScsi, LegacyPassThrough) {
    auto send = [&](uint16_t loopId, uint8_t lun, const Bytes& cdb, Completion expected = Done) {
        Bytes input(sizeof(passthru::LegacyScsiRequest));
        auto& request = *reinterpret_cast<passthru::LegacyScsiRequest*>(input.data());
        request.loopId = loopId;
        request.lun = lun;
        request.flags = passthru::kLegacyFlagsIn;
        request.cdbLength = static_cast<uint32_t>(cdb.size());
        std::copy_n(cdb.begin(), std::min<size_t>(cdb.size(), 16), request.cdb);
        return AskPlain(kLegacy, LegacyScsiPassThrough, input, 4128, expected);
    };
    const auto list = std::make_unique<properties::LegacyTargetListReply>(
        AskLegacy<properties::LegacyTargetListReply>(properties::LegacySelector::TargetList));
    const uint16_t loopId = list->entries[0].loopId;
    const Bytes good = send(loopId, 0, inquiry);
    ASSERT_EQ(good.size(), 4128u);
    EXPECT_EQ(good[8], 0);
    EXPECT_EQ(std::string(good.begin() + 40, good.begin() + 48), "EMULATED");
    const Bytes bad = send(loopId, 0, {0xFE});
    EXPECT_EQ(Bytes(bad.begin() + 8, bad.begin() + 12), (Bytes{2, 5, 0x20, 0}));
    EXPECT_EQ(send(loopId, 0, {0x28, 0, 0, 0, 0, 0, 0, 0, 8, 0}).size(), 4128u);
    send(loopId, 0, {0x28, 0, 0, 0, 0, 0, 0, 0, 9, 0}, Invalid);
    send(list->entries[4].loopId, 0, inquiry, Invalid);  // stale
    send(0xFFFF, 0, inquiry, Invalid);
    send(loopId, 0, Bytes(17), Invalid);
    send(loopId, 0, {}, Invalid);
}

}  // namespace
