// SCSI pass-through: request bytes, what comes back and where it ends, lists made by probing.

#include "support/scratch_file.h"
#include "support/scsi_fixture.h"

namespace {

using namespace support;

TEST_F(ScsiPassThruTest, RequestByteForByte) {
    struct Row {
        uint16_t type;
        Bytes address;
        uint16_t sentType;
        Bytes lun;
    };
    const Row rows[] = {
        {1, {1, 2, 3, 4, 5, 6, 7, 8}, 1, {0x34, 0x12}},
        {2, {1, 2, 3, 4, 5, 6, 7, 8}, 2, {0x34, 0x12}},
        {3, {1, 2, 3, 0, 0, 0, 0, 0}, 3, {0x34, 0x12}},
        {4, {1, 2, 3, 4, 0, 0, 0, 0}, 5, {0x34, 0x12}},
        {0, Bytes(8), 0, {0, 0}},
        {5, Bytes(8), 0, {0, 0}},
        {0x102, Bytes(8), 0, {0, 0}},
    };
    const Bytes out = Counting(5, 0xC0);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.type);
        port->Next({});
        EXPECT_EQ(0u, Send({.target = Address(row.type, 0x1234),
                            .cdb = Counting(10, 0xA0),
                            .dataOut = out.data(),
                            .dataOutLength = 5}));
        Bytes expected(kHead + 5);
        std::copy(row.address.begin(), row.address.end(), expected.begin());
        expected[8] = static_cast<uint8_t>(row.sentType);
        std::copy(row.lun.begin(), row.lun.end(), expected.begin() + 10);
        expected[16] = 2;
        expected[17] = 10;
        for (size_t i = 0; i < 10; ++i) {
            expected[18 + i] = static_cast<uint8_t>(0xA0 + i);
        }
        std::copy(out.begin(), out.end(), expected.begin() + kHead);
        const SentRequest request = port->Last();
        EXPECT_EQ(expected, request.Data());
        EXPECT_EQ(0xF0001009u, request.Code());
        EXPECT_EQ(1u, request.Envelope().ext.subCode);
        EXPECT_EQ(116 + kHead + 5, request.outputSize);
    }
}

TEST_F(ScsiPassThruTest, DirectionAndSize) {
    Bytes out = Counting(40, 0x80);
    GuardedBuffer in(40);
    struct Row {
        const char* what;
        const void* dataOut;
        uint32_t outLength;
        void* dataIn;
        uint32_t inLength;
        uint8_t direction;
        size_t room;
    };
    const Row rows[] = {
        {"nothing", nullptr, 0, nullptr, 0, 0, 0},
        {"in", nullptr, 0, in.Data(), 40, 1, 40},
        {"out", out.data(), 40, nullptr, 0, 2, 40},
        {"out before in", out.data(), 8, in.Data(), 40, 2, 40},
        {"out longer than in", out.data(), 40, in.Data(), 8, 2, 40},
        {"out without bytes", out.data(), 0, in.Data(), 8, 1, 8},
        {"out without a pointer", nullptr, 16, in.Data(), 8, 1, 16},
        {"in without a pointer", nullptr, 0, nullptr, 16, 0, 16},
        {"in without bytes", nullptr, 0, in.Data(), 0, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        port->Next({.data = ReplyWith(static_cast<uint32_t>(row.room))});
        memset(in.Data(), 0xEE, in.Size());
        EXPECT_EQ(0u, Send({.dataOut = row.dataOut,
                            .dataOutLength = row.outLength,
                            .dataIn = row.dataIn,
                            .dataInLength = row.inLength}));
        const Bytes data = port->Last().Data();
        ASSERT_EQ(kHead + row.room, data.size());
        EXPECT_EQ(row.direction, data[16]);
        if (row.direction == 2) {
            EXPECT_TRUE(std::equal(out.begin(), out.begin() + row.outLength, &data[kHead]));
        }
        // What comes back is handed over after a command with data out as well.
        const size_t taken = row.dataIn == nullptr ? 0 : row.inLength;
        EXPECT_EQ(Counting(static_cast<uint32_t>(taken), 101), in.First(taken));
        EXPECT_TRUE(in.Holds(0xEE, taken, in.Size()));
    }
}

TEST_F(ScsiPassThruTest, DataInEndsWhereItEnds) {
    // A short reply leaves zeros; a reply that claims more than there is room overruns nothing.
    GuardedBuffer in(1000);
    port->Next({.data = ReplyWith(36)});
    const HX_SCSI_ADDRESS target = Address(2);
    EXPECT_EQ(0u, HXSendScsiInquiryCmdFC(handle, &target, in.Data(), 1000, nullptr, 0));
    EXPECT_EQ(Counting(36, 101), in.First(36));
    EXPECT_TRUE(in.Holds(0, 36, 1000));
    EXPECT_EQ(255, Head()[18 + 4]) << "the allocation length has one byte";

    GuardedBuffer tight(7);
    port->Next({.data = ReplyWith(7), .responseLength = 0xFFFFFFFF});
    EXPECT_EQ(0u, HXSendScsiInquiryCmdFC(handle, &target, tight.Data(), 7, nullptr, 0));
    EXPECT_EQ(Counting(7, 101), tight.First(7));
}

TEST_F(ScsiPassThruTest, SenseData) {
    GuardedBuffer in(8);
    for (const uint32_t room : {0u, 1u, 14u, 255u, 256u, 257u, 300u}) {
        SCOPED_TRACE(room);
        GuardedBuffer sense(room);
        port->Next({.status = 15, .detailStatus = 2, .data = ReplyWith(8)});
        EXPECT_EQ(HXMGT_SCSI_CHECK_CONDITION, Send({.dataIn = in.Data(),
                                                    .dataInLength = 8,
                                                    .sense = sense.Data(),
                                                    .senseLength = room}));
        const uint32_t copied = std::min(room, 256u);
        EXPECT_TRUE(sense.Is(Counting(copied)));
        EXPECT_TRUE(in.Holds(0xEE)) << "no data after a check condition";
    }
    port->Next({.status = 15, .detailStatus = 2, .data = ReplyWith(0)});
    EXPECT_EQ(HXMGT_SCSI_CHECK_CONDITION, Send({.senseLength = 18})) << "nowhere to put it";

    // Any other result leaves both buffers alone.
    GuardedBuffer sense(18);
    for (const Reply& reply :
         {Reply{.status = 15, .detailStatus = 8, .data = ReplyWith(8)},
          Reply{.status = 8, .data = ReplyWith(8)}, Reply{.error = ERROR_IO_DEVICE}}) {
        port->Next(reply);
        EXPECT_NE(0u, Send({.dataIn = in.Data(),
                            .dataInLength = 8,
                            .sense = sense.Data(),
                            .senseLength = 18}));
        EXPECT_TRUE(in.Holds(0xEE));
        EXPECT_TRUE(sense.Holds(0xEE));
    }
    port->Next({.status = 15, .detailStatus = 40, .data = ReplyWith(0)});
    EXPECT_EQ(HXMGT_SCSI_QUEUE_FULL, Send({}));
    port->Next({.data = ReplyWith(0)});
    EXPECT_EQ(0u, Send({.sense = sense.Data(), .senseLength = 18}));
    EXPECT_TRUE(sense.Holds(0xEE)) << "success has no sense data";
}

TEST_F(ScsiPassThruTest, CommandBlockLengths) {
    for (const uint32_t length : {1u, 78u, 79u, 255u}) {
        port->Next({});
        EXPECT_EQ(0u, Send({.cdb = Counting(length)}));
        const Bytes head = Head();
        EXPECT_EQ(length, head[17]);
        // A block longer than its field goes on in the sense area.
        EXPECT_EQ(Counting(length), Bytes(head.begin() + 18, head.begin() + 18 + length));
        EXPECT_EQ(Bytes(kHead - 18 - length), Bytes(head.begin() + 18 + length, head.end()));
    }
}

TEST_F(ScsiPassThruTest, RefusedBeforeAnythingIsSent) {
    const HX_SCSI_ADDRESS target = Address(2);
    const uint8_t cdb[256] = {};
    for (const uint32_t length : {0u, 256u, 0x10006u}) {
        EXPECT_EQ(
            HXMGT_INVALID_PARAMETER,
            HXSendScsiPassThruFC(handle, &target, cdb, length, nullptr, 0, nullptr, 0, nullptr, 0));
    }
    // More than a request can carry.
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Send({.dataInLength = 0xFFFFFFFF}));
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Send({.dataOutLength = 0xFFFFFFFF - 351}));
    for (const auto call : {&HXSendScsiPassThru, &HXSendScsiInquiryCmd, &HXSendScsiReadCapacityCmd,
                            &HXSendScsiReportLunsCmd}) {
        EXPECT_EQ(HXMGT_NOT_SUPPORTED, call());
    }
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(ScsiPassThruTest, MemoryThatRunsOut) {
    const auto calloc = NoClearedMemory();
    EXPECT_EQ(HXMGT_OUT_OF_MEMORY, Send({}));
    EXPECT_TRUE(port->Requests().empty());
}

TEST_F(ScsiPassThruTest, CommandBlocksOfTheShortcuts) {
    const HX_SCSI_ADDRESS target = Address(1, 7);
    GuardedBuffer in(0x1234);
    const auto sent = [&] {
        const Bytes head = Head();
        EXPECT_EQ(7, head[10]);
        EXPECT_EQ(1, head[16]);
        return Bytes(head.begin() + 18, head.begin() + 18 + head[17]);
    };
    port->On(command::ScsiPassThrough, Reply{});
    for (const auto& [length, allocation] :
         {std::pair(1u, 1), {254u, 254}, {255u, 255}, {256u, 255}}) {
        EXPECT_EQ(0u, HXSendScsiInquiryCmdFC(handle, &target, in.Data(), length, nullptr, 0));
        EXPECT_EQ((Bytes{0x12, 0, 0, 0, static_cast<uint8_t>(allocation), 0}), sent());
        EXPECT_EQ(kHead + length, port->Last().Data().size());
    }
    EXPECT_EQ(0u, HXSendScsiReadCapacityCmdFC(handle, &target, in.Data(), 8, nullptr, 0));
    EXPECT_EQ((Bytes{0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0}), sent());
    EXPECT_EQ(0u, HXSendScsiReportLunsCmdFC(handle, &target, in.Data(), 0x1234, nullptr, 0));
    EXPECT_EQ((Bytes{0xA0, 0, 0, 0, 0, 0, 0, 0, 0x12, 0x34, 0, 0}), sent());
    EXPECT_EQ(6u, port->Requests().size()) << "a list that came is taken as it is";
}

TEST_F(ScsiPassThruTest, TraceLines) {
    const ScratchFile file;
    ASSERT_EQ(0u, HXEnableDebugTrace(&handle, file.Path().c_str(), 1));
    port->Next({.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Send({}));
    HXEnableDebugTrace(&handle, nullptr, 0);
    const std::string trace = file.Contents();
    EXPECT_TRUE(Has(trace, "SRBWithHeaderDeviceIoControl() failed with status 0x2000006d\n"));
    EXPECT_TRUE(Has(trace, "HXSendScsiPassThru() returned 0x2000006d\n"));
}

// A target that refuses REPORT LUNS. The masks say which of the first LUNs answer INQUIRY, and
// which of those answer that there is no device.
class ReportLunsTest : public ScsiPassThruTest {
  protected:
    void Refuse(uint32_t present, uint32_t noDevice = 0, Reply refusal = {.status = 12}) {
        port->On(command::ScsiPassThrough, [=](const SentRequest& request) {
            const Bytes data = request.Data();
            if (data[18] != 0x12) {
                return refusal;
            }
            const uint32_t bit = 1u << data[10];
            Bytes reply(kHead + 36);
            reply[kHead] = (noDevice & bit) != 0 ? 0x7F : 0;
            return (present & bit) != 0 ? Reply{.data = reply} : Reply{.status = 9};
        });
    }
    static Bytes ListOf(const Bytes& luns) {
        Bytes list(8 + 8 * luns.size());
        list[3] = static_cast<uint8_t>(8 * luns.size());
        std::fill_n(list.begin() + 4, 4, 0xEE);  // not written
        for (size_t i = 0; i < luns.size(); ++i) {
            list[8 + 8 * i + 1] = luns[i];
        }
        return list;
    }
};

TEST_F(ReportLunsTest, ListMadeByProbing) {
    struct Row {
        const char* what;
        uint32_t present, noDevice, room;
        HX_STATUS status;
        Bytes luns;
    };
    const Row rows[] = {
        {"two", 0x09, 0, 24, HXMGT_BUILT_BY_API, {0, 3}},
        {"two, more room", 0x09, 0, 100, HXMGT_BUILT_BY_API, {0, 3}},
        {"two, room for one", 0x09, 0, 16, HXMGT_BUFFER_TOO_SMALL, {0}},
        {"two, one byte short", 0x09, 0, 23, HXMGT_BUFFER_TOO_SMALL, {0}},
        {"one byte short of any", 0x09, 0, 15, HXMGT_BUFFER_TOO_SMALL, {}},
        {"all", 0xFF, 0, 72, HXMGT_BUILT_BY_API, {0, 1, 2, 3, 4, 5, 6, 7}},
        {"all, one byte short", 0xFF, 0, 71, HXMGT_BUFFER_TOO_SMALL, {0, 1, 2, 3, 4, 5, 6}},
        {"LUN 8 is not asked", 0x102, 0, 72, HXMGT_BUILT_BY_API, {1}},
        {"no device there", 0x0F, 0x05, 72, HXMGT_BUILT_BY_API, {1, 3}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Refuse(row.present, row.noDevice);
        GuardedBuffer list(row.room);
        const HX_SCSI_ADDRESS target = Address(2, 0x55);
        EXPECT_EQ(row.status,
                  HXSendScsiReportLunsCmdFC(handle, &target, list.Data(), row.room, nullptr, 0));
        const Bytes expected = ListOf(row.luns);
        EXPECT_EQ(expected, Bytes(list.Data(), list.Data() + expected.size()));
        EXPECT_TRUE(list.Holds(0xEE, expected.size(), row.room));
    }
}

TEST_F(ReportLunsTest, ListWithoutRoom) {
    Refuse(0x09);
    const HX_SCSI_ADDRESS target = Address(2);
    for (const uint32_t room : {0u, 3u, 4u}) {
        GuardedBuffer list(room);
        EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL,
                  HXSendScsiReportLunsCmdFC(handle, &target, list.Data(), room, nullptr, 0));
        EXPECT_TRUE(list.Holds(room < 4 ? 0xEE : 0)) << room;
    }
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL,
              HXSendScsiReportLunsCmdFC(handle, &target, nullptr, 64, nullptr, 0));
}

TEST_F(ReportLunsTest, NothingFoundKeepsTheRefusal) {
    const HX_SCSI_ADDRESS target = Address(2);
    GuardedBuffer list(72);
    GuardedBuffer sense(18);
    Refuse(0xFF, 0xFF, {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(Windows(ERROR_GEN_FAILURE),
              HXSendScsiReportLunsCmdFC(handle, &target, list.Data(), 72, nullptr, 0));
    EXPECT_TRUE(list.Holds(0xEE));
    Refuse(0, 0, {.status = 15, .detailStatus = 2, .data = ReplyWith(72)});
    EXPECT_EQ(HXMGT_SCSI_CHECK_CONDITION,
              HXSendScsiReportLunsCmdFC(handle, &target, list.Data(), 72, sense.Data(), 18));
    EXPECT_TRUE(list.Holds(0xEE));
    EXPECT_EQ(Counting(18), sense.First(18));

    // The probes: LUN 0 to 7 of the same target, 256 bytes, of which 255 are asked for.
    port->Forget();
    EXPECT_NE(0u, HXSendScsiReportLunsCmdFC(handle, &target, list.Data(), 72, nullptr, 0));
    const auto requests = port->Requests();
    ASSERT_EQ(9u, requests.size());
    for (uint8_t lun = 0; lun < 8; ++lun) {
        const Bytes probe = requests[lun + 1u].Data();
        EXPECT_EQ(kHead + 256, probe.size());
        EXPECT_EQ(Counting(8), Bytes(probe.begin(), probe.begin() + 8));
        EXPECT_EQ((Bytes{2, 0, lun, 0, 0, 0, 0, 0, 1, 6, 0x12, 0, 0, 0, 255, 0}),
                  Bytes(probe.begin() + 8, probe.begin() + 24));
    }
}

}  // namespace
