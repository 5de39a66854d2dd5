// SCSI pass-through over drivers below 7.05.03.

#include "support/scratch_file.h"
#include "support/scsi_fixture.h"

namespace {

using namespace support;
using properties::LegacySelector;

// A driver below 7.05.03 with three targets, the second without a loop identifier.
class LegacyScsiTest : public ScsiPassThruTest {
  protected:
    void SetUp() override {
        Start("7.05.02", 0x7300);
        properties::LegacyTargetListReply targets = {};
        targets.count = 3;
        PutTarget(targets, 0, 0x1201, 1);
        PutTarget(targets, 1, 0xFFFF, 2);
        PutTarget(targets, 2, 0x3401, 3);
        PutTarget(targets, 3, 0x5601, 4);  // beyond the count
        List(targets);
        Answer(0);
        port->Forget();
    }
    static void PutTarget(properties::LegacyTargetListReply& list, size_t index, uint16_t loopId,
                          uint8_t mark) {
        properties::LegacyTargetEntry& entry = list.entries[index];
        entry.loopId = loopId;
        entry.bus = static_cast<uint8_t>(0x10 + mark);
        entry.target = static_cast<uint8_t>(0x20 + mark);
        memset(entry.portId, 0x30 + mark, 3);
        memset(entry.nodeName, 0x40 + mark, 8);
        memset(entry.portName, 0x50 + mark, 8);
    }
    void List(const properties::LegacyTargetListReply& targets) {
        port->OnSelector(LegacySelector::TargetList, {.data = BytesOf(targets)});
    }
    // Byte 8 on: SCSI status, key 5, code 0x24, qualifier 0x01; data that counts from 101.
    void Answer(uint8_t scsiStatus) {
        Bytes reply(4128);
        reply[8] = scsiStatus;
        reply[9] = 5;
        reply[10] = 0x24;
        reply[11] = 0x01;
        for (size_t i = 32; i < reply.size(); ++i) {
            reply[i] = static_cast<uint8_t>(101 + i - 32);
        }
        port->OnPlain(command::LegacyScsiPassThrough, {.data = reply});
    }
    static HX_SCSI_ADDRESS Named(uint8_t byte, uint16_t type) {
        HX_SCSI_ADDRESS address = {type, {}, 0x1234};
        memset(address.address, byte, 8);
        return address;
    }
};

TEST_F(LegacyScsiTest, RequestByteForByte) {
    const HX_SCSI_ADDRESS busAndTarget = {4, {0x13, 0, 0x23, 0, 9, 9, 9, 9}, 0x1234};
    for (const HX_SCSI_ADDRESS& target :
         {Named(0x43, 1), Named(0x53, 2), Named(0x33, 3), busAndTarget}) {
        SCOPED_TRACE(target.type);
        port->Forget();
        const Bytes out = Counting(5000, 0x70);
        EXPECT_EQ(0u, Send({.target = target,
                            .cdb = Counting(16, 0xA0),
                            .dataOut = out.data(),
                            .dataOutLength = 5000}));
        ASSERT_EQ(2u, port->Requests().size());
        EXPECT_EQ((Bytes{0, 0, 0x80, 0, 11, 0, 0, 0, 0, 0, 0, 0}), port->Requests()[0].Data());
        EXPECT_EQ(28u + 32812u, port->Requests()[0].outputSize);
        Bytes expected = {0x01, 0x34, 0x34, 0xFF, 0, 0, 0, 0x10, 0, 0, 0, 0, 16, 0, 0, 0};
        Append(expected, Counting(16, 0xA0));
        expected.insert(expected.end(), out.begin(), out.begin() + 4096);
        EXPECT_EQ(expected, port->Last().Data());
        EXPECT_EQ(0xF00060C4u, port->Last().Code());
        EXPECT_EQ(28u + 4128u, port->Last().outputSize);
    }
    uint8_t in[4];
    EXPECT_EQ(0u, Send({.target = Named(0x51, 2), .dataIn = in, .dataInLength = 4}));
    const Bytes data = port->Last().Data();
    EXPECT_EQ((Bytes{0x01, 0x12, 0x34, 0xFF, 0, 0x10, 0, 0, 0, 0, 0, 0, 6, 0, 0, 0}),
              Bytes(data.begin(), data.begin() + 16));
    EXPECT_EQ(Bytes(4112), Bytes(data.begin() + 16, data.end()));
}

TEST_F(LegacyScsiTest, TargetsThatAreNotThere) {
    const HX_SCSI_ADDRESS wideBus = {4, {0x11, 1, 0x21, 0}, 0};
    const HX_SCSI_ADDRESS wideTarget = {4, {0x11, 0, 0x21, 1}, 0};
    const HX_SCSI_ADDRESS otherLastByte = {3, {0x31, 0x31, 0x32}, 0};
    for (const HX_SCSI_ADDRESS& target :
         {Named(0x52, 2), Named(0x54, 2), Named(0x51, 1), Named(0x51, 0), Named(0x51, 5),
          Named(0x51, 0x102), wideBus, wideTarget, otherLastByte}) {
        EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send({.target = target})) << target.type;
    }
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send({.target = Named(0x51, 2), .cdb = Bytes(17)}));
    for (const SentRequest& request : port->Requests()) {
        EXPECT_EQ(uint32_t{command::LegacyQuery}, request.Code()) << "no command went out";
    }
    // The first entry of a name counts, even when it cannot be used.
    properties::LegacyTargetListReply targets = {};
    targets.count = 2;
    PutTarget(targets, 0, 0xFFFF, 1);
    PutTarget(targets, 1, 0x3401, 1);
    List(targets);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send({.target = Named(0x51, 2)}));
    targets.count = 0;
    List(targets);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send({.target = Named(0x51, 2)}));
    port->OnSelector(LegacySelector::TargetList, {.error = ERROR_NOT_READY});
    EXPECT_EQ(Windows(ERROR_NOT_READY), Send({.target = Named(0x51, 2)}));
}

TEST_F(LegacyScsiTest, CountBeyondTheList) {
    const auto targets = std::make_unique<properties::LegacyTargetListReply>();
    targets->count = 0xFFFF;
    PutTarget(*targets, 1023, 0x7701, 9);
    List(*targets);
    EXPECT_EQ(0u, Send({.target = Named(0x59, 2)}));
    EXPECT_EQ(0x77, port->Last().Data()[1]);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send({.target = Named(0x58, 2)}));
}

TEST_F(LegacyScsiTest, DataIn) {
    GuardedBuffer in(10000);
    EXPECT_EQ(0u, Send({.target = Named(0x51, 2), .dataIn = in.Data(), .dataInLength = 10000}));
    EXPECT_TRUE(in.Is(Counting(4096, 101)));
    GuardedBuffer tight(3);
    EXPECT_EQ(0u, Send({.target = Named(0x51, 2), .dataIn = tight.Data(), .dataInLength = 3}));
    EXPECT_EQ(Counting(3, 101), tight.First(3));
}

TEST_F(LegacyScsiTest, StatusAndSense) {
    const std::pair<uint8_t, HX_STATUS> rows[] = {
        {0x02, HXMGT_SCSI_CHECK_CONDITION},
        {0x04, HXMGT_SCSI_CONDITION_MET},
        {0x08, HXMGT_SCSI_BUSY},
        {0x10, HXMGT_SCSI_INTERMEDIATE},
        {0x14, HXMGT_SCSI_INTERMEDIATE_CONDITION_MET},
        {0x18, HXMGT_SCSI_RESERVATION_CONFLICT},
        {0x22, HXMGT_SCSI_COMMAND_TERMINATED},
        {0x28, HXMGT_SCSI_QUEUE_FULL},
        {0x01, HXMGT_SCSI_CHECK_CONDITION},
        {0x30, HXMGT_SCSI_CHECK_CONDITION},
        {0xFF, HXMGT_SCSI_CHECK_CONDITION},
    };
    for (const auto& [scsiStatus, status] : rows) {
        SCOPED_TRACE(scsiStatus);
        Answer(scsiStatus);
        GuardedBuffer in(16);
        GuardedBuffer sense(14);
        EXPECT_EQ(status, Send({.target = Named(0x51, 2),
                                .dataIn = in.Data(),
                                .dataInLength = 16,
                                .sense = sense.Data(),
                                .senseLength = 14}));
        EXPECT_TRUE(in.Holds(0xEE));
        Bytes expected(14, 0xEE);
        if (status == HXMGT_SCSI_CHECK_CONDITION) {
            expected[2] = 5;
            expected[7] = 6;
            expected[12] = 0x24;
            expected[13] = 0x01;
        }
        EXPECT_EQ(expected, sense.First(14));
    }
    GuardedBuffer narrow(13);
    EXPECT_EQ(HXMGT_SCSI_CHECK_CONDITION,
              Send({.target = Named(0x51, 2), .sense = narrow.Data(), .senseLength = 13}));
    EXPECT_TRUE(narrow.Holds(0xEE));
}

TEST_F(LegacyScsiTest, TraceLines) {
    const ScratchFile file;
    ASSERT_EQ(0u, HXEnableDebugTrace(&handle, file.Path().c_str(), 1));
    Answer(8);
    EXPECT_EQ(HXMGT_SCSI_BUSY, Send({.target = Named(0x51, 2)}));
    port->OnPlain(command::LegacyScsiPassThrough, {.error = ERROR_IO_DEVICE});
    EXPECT_EQ(Windows(ERROR_IO_DEVICE), Send({.target = Named(0x51, 2)}));
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Send({.target = Named(0x54, 2)}));
    HXEnableDebugTrace(&handle, nullptr, 0);
    const std::string trace = file.Contents();
    const size_t returned = trace.find("HXSendScsiPassThru(Old) returned 0x20000042\n");
    ASSERT_NE(std::string::npos, returned);
    EXPECT_EQ(std::string::npos, trace.find("HXSendScsiPassThru", returned + 1))
        << "a call that fails before its result says so in no further line";
    EXPECT_TRUE(Has(trace, "SendMiniPortControl() failed with status 0x45d\n"));
}

}  // namespace
