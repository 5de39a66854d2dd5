// Queries for one record: exact bytes both ways, and replies that are not what they should be.
#include "support/query_fixture.h"

namespace {

using namespace support;

class QueryRecordsTest : public QueryTest {
  protected:
    // Registers as the firmware gives them back, the completion first.
    static Reply Registers(std::initializer_list<uint16_t> registers, uint32_t status = 0) {
        Bytes data(196);
        size_t at = 68;
        for (const uint16_t value : registers) {
            Put16(data, at, value);
            at += 2;
        }
        return {.status = status, .data = data};
    }
    // Those of the last mailbox command.
    std::vector<uint16_t> Sent() {
        const Bytes data = port->Last().Data();
        std::vector<uint16_t> words(data[0] + 1u);
        memcpy(words.data(), &data[2], 2 * words.size());  // the count out, then those in
        return words;
    }
    using Words = std::vector<uint16_t>;
};

// Records that are the reply itself: whole, short, and untouched by a failure.
TEST_F(QueryRecordsTest, RepliesAsTheyAre) {
    const auto same = [&](transport::Command command, auto call) {
        using Record = std::remove_pointer_t<decltype(RecordOf(call))>;
        SCOPED_TRACE(testing::Message() << std::hex << command.code << '/' << command.subCode);
        const Bytes reply = Patterned(sizeof(Record));
        Guarded<Record> record;
        port->On(command, Reply{.data = reply});
        EXPECT_EQ(0u, call(record.Get()));
        EXPECT_EQ(reply, Seen(record));
        const size_t half = sizeof(Record) / 2;
        port->On(command, Reply{.data = Part(reply, 0, half)});
        EXPECT_EQ(0u, call(record.Get()));
        EXPECT_EQ(Part(reply, 0, half), Part(Seen(record), 0, half));
        EXPECT_TRUE(record.Raw().Holds(0, half, sizeof(Record))) << "what did not come is zero";
        Fails(HXMGT_TIMED_OUT, command, {.status = 30, .data = reply}, call);
        Fails(HXMGT_BUFFER_TOO_SMALL, command, {.status = 16, .data = reply}, call);
    };
    same(command::DestinationStatistics,
         [&](HX_PORT_STATISTICS* x) { return HXGetPortStatisticsFC(handle, &kTarget, x); });
    same(command::DestinationStatisticsV1,
         [&](HX_PORT_STATISTICS* x) { return HXGetPortStatisticsFCV1(handle, nullptr, x); });
    same(command::DestinationStatisticsV2,
         [&](HX_PORT_STATISTICS_V2* x) { return HXGetPortStatisticsFCV2(handle, &kTarget, x); });
    same(command::BbCreditRecovery, [&](HX_BBCR_DATA* x) { return HXGetBBCRData(handle, x); });
    same(command::LunQos, [&](HX_LUN_QOS* x) { return HXGetLunQos(handle, &kTarget, x); });
    same(command::PositionalMap,
         [&](HX_POSITIONAL_MAP* x) { return HXGetPositionalMap(handle, x); });
}

// Each generation of drivers has its request; 32 bits that are all ones are a number.
TEST_F(QueryRecordsTest, PortCountersByDriver) {
    HX_PORT_STATISTICS record;
    Bytes wide(136);
    Put64(wide, 8, 0xFFFFFFFF);
    Put64(wide, 16, 0x100000000);
    Put64(wide, 48, HX_NOT_COUNTED);
    for (const auto& [text, first, second] : {std::tuple("8.01.00", 0xF000100Bu, 0xF000100Bu),
                                              {"9.00.99", 0xF000100B, 0xF000100B},
                                              {"9.01.00", 0xF000100B, 0xF0001056}}) {
        Reopen(text);
        port->On(command::DestinationStatistics, Reply{.data = wide});
        port->On(command::DestinationStatisticsV1, Reply{.data = wide});
        ASSERT_EQ(0u, HXGetPortStatisticsFC(handle, nullptr, &record));
        EXPECT_EQ(first, port->Last().Code());
        ASSERT_EQ(0u, HXGetPortStatisticsFCV1(handle, nullptr, &record));
        EXPECT_EQ(second, port->Last().Code());
        EXPECT_EQ(wide, BytesOf(record));
        HX_PORT_SCM_STATISTICS scm;
        EXPECT_EQ(HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER, HXGetPortSCMStatsFC(handle, nullptr, &scm))
            << "a driver without pages answers with its counters";
        EXPECT_EQ(second, port->Last().Code());
    }
    Bytes scmPage = Patterned(136);
    Put32(scmPage, 0, 0x314D4353);
    const auto scm = [&](HX_PORT_SCM_STATISTICS* x) {
        return HXGetPortSCMStatsFC(handle, &kTarget, x);
    };
    port->On(command::DestinationStatisticsV1, Reply{.data = scmPage});
    Guarded<HX_PORT_SCM_STATISTICS> scmRecord;
    EXPECT_EQ(0u, scm(scmRecord.Get()));
    EXPECT_EQ(scmPage, Seen(scmRecord));
    for (const size_t length : {0u, 3u}) {
        Fails(HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER, command::DestinationStatisticsV1,
              {.data = Part(scmPage, 0, length)}, scm);
    }

    Reopen("8.00.99");
    HX_STATISTICS counted;
    auto* const words = reinterpret_cast<uint32_t*>(&counted);
    for (uint32_t i = 0; i < 28; ++i) {
        words[i] = 0xFFFFFFFF - i;
    }
    port->On(command::PortStatistics, Reply{.data = BytesOf(counted)});
    ASSERT_EQ(0u, HXGetPortStatisticsFC(handle, &kTarget, &record));
    EXPECT_EQ(BlockOfTarget(), port->Last().Data());
    EXPECT_EQ(112u, port->Last().Envelope().ext.responseLen);
    constexpr uint64_t n = 0xFFFFFFFF;
    const uint64_t expected[] = {
        n,     n - 1, n - 3, n - 2, n - 4,  n - 5,  HX_NOT_COUNTED, HX_NOT_COUNTED, HX_NOT_COUNTED,
        n - 6, n - 7, n - 8, n - 9, n - 10, n - 11, HX_NOT_COUNTED, HX_NOT_COUNTED};
    EXPECT_EQ(0, memcmp(expected, &record, sizeof expected));
    Fails(HXMGT_DEVICE_NOT_FOUND, command::PortStatistics, {.status = 9},
          [&](HX_PORT_STATISTICS* x) { return HXGetPortStatisticsFC(handle, &kTarget, x); });
}

TEST_F(QueryRecordsTest, ScmTakesTheLinkErrors) {
    const Bytes scm = Patterned(512), link = Patterned(112);
    port->On(command::ScmStatistics, Reply{.data = scm});
    port->On(command::LinkStatistics, Reply{.data = link});
    Guarded<HX_SCM_STATISTICS> record;
    ASSERT_EQ(0u, HXGetSCMStatistics(handle, record.Get()));
    Bytes expected = scm;
    std::copy_n(link.begin() + 24, 24, expected.begin() + 312);
    EXPECT_EQ(expected, Seen(record));
    const auto get = [&](HX_SCM_STATISTICS* x) { return HXGetSCMStatistics(handle, x); };
    Fails(HXMGT_DEVICE_OFFLINE, command::LinkStatistics, {.status = 22}, get);
    Fails(HXMGT_INVALID_SUBCODE, command::ScmStatistics, {.status = 12}, get);
}

// Of the caller's record the options travel, and nothing else of it.
TEST_F(QueryRecordsTest, PrivateCounters) {
    Bytes reply = Patterned(512), request(512);
    for (const uint32_t option : {0u, 1u}) {
        Guarded<HX_PRIVATE_STATISTICS> counters;
        Guarded<HX_PRIVATE_STATISTICS_EX> times;
        counters->options = times->options = request[0] = static_cast<uint8_t>(option);
        port->On(command::PrivateStatistics, Reply{.data = reply});
        ASSERT_EQ(0u, HXGetPrivStats(handle, counters.Get()));
        EXPECT_EQ(request, port->Last().Data());
        EXPECT_EQ(reply, Seen(counters));
        // A caller walks the buckets: there are never more than the record has.
        for (const auto& [said, told] : {std::pair(24u, 24u), {5, 5}, {25, 24}, {~0u, 24}}) {
            Put32(reply, 4, said);
            times->options = option;
            port->On(command::PrivateStatisticsEx, Reply{.data = reply});
            ASSERT_EQ(0u, HXGetPrivStatsEx(handle, times.Get()));
            EXPECT_EQ(request, port->Last().Data());
            EXPECT_EQ(told, times->buckets);
            EXPECT_EQ(Part(reply, 8, 504), Part(Seen(times), 8, 504));
        }
    }
    Guarded<HX_PRIVATE_STATISTICS> refused;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXGetPrivStats(handle, refused.Get()));
    EXPECT_TRUE(refused.Raw().Holds(0xEE));
}

TEST_F(QueryRecordsTest, Temperature) {
    struct Row {
        uint16_t now, warning, critical, state;
    };
    constexpr uint16_t kFrost = 0xFF80;  // -0.5 degrees
    for (const Row& row : {Row{0x54FF, 0x5500, 0x5F00, 0},
                           {0x5500, 0x5500, 0x5F00, 1},
                           {0x5EFF, 0x5500, 0x5F00, 1},
                           {0x5F00, 0x5500, 0x5F00, 2},
                           {kFrost, 0x5500, 0x5F00, 0},
                           {0x5500, 0, 0, 0},
                           {0x5500, 0, 0x5400, 2},
                           {kFrost, 0xFF00, 0, 1}}) {
        port->On(command::Mailbox, Registers({0x4000, row.now, row.warning, row.critical, 0x6900,
                                              0x5678, 0x1234, 0x9ABC}));
        Guarded<HX_BOARD_TEMPERATURE> board;
        ASSERT_EQ(0u, HXGetBoardTemp(handle, board.Get()));
        EXPECT_EQ((Words{8, 0x90}), Sent());
        EXPECT_EQ(static_cast<int16_t>(row.now), board->now);
        EXPECT_EQ(static_cast<int16_t>(row.warning), board->warning);
        EXPECT_EQ(static_cast<int16_t>(row.critical), board->critical);
        EXPECT_EQ(0x6900, board->shutdown);
        EXPECT_EQ(0x5678, board->highest);
        EXPECT_EQ(row.state, board->state) << row.now;
        EXPECT_EQ(0x9ABC1234u, board->secondsAbove);
    }
}

TEST_F(QueryRecordsTest, Registers) {
    uint16_t narrow = 0;
    uint32_t wide = 0;
    const auto sends = [&](HX_STATUS status, Words registers) {
        EXPECT_EQ(0u, status);
        EXPECT_EQ(registers, Sent());
    };
    port->On(command::Mailbox, Registers({0x4000, 0x1122, 0x3344}));
    sends(HXGetFCSerDesRegister(handle, 0x0102, &narrow), {2, 0x91, 0x0102});
    EXPECT_EQ(0x1122, narrow);
    sends(HXSetFCSerDesRegister(handle, 0x0102, 0x0304), {1, 0x92, 0x0102, 0x0304});
    sends(HXGetFCSerDesRegisterEx(handle, 7, 0x01020304, &wide), {3, 0x93, 7, 0x0304, 0x0102});
    EXPECT_EQ(0x33441122u, wide);
    sends(HXSetFCSerDesRegisterEx(handle, 7, 0x01020304, 0x05060708),
          {1, 0x94, 7, 0x0304, 0x0102, 0x0708, 0x0506});
    narrow = 0;
    sends(HXGetQuarnI2CRegister(handle, 0x18, 0x1234, &narrow), {2, 0x95, 0x18, 0x1234});
    EXPECT_EQ(0x1122, narrow);
    sends(HXSetQuarnI2CRegister(handle, 0x18, 2, 3), {1, 0x96, 0x18, 2, 3});
}

// The completion tells a failure, whether the driver calls it one or not.
TEST_F(QueryRecordsTest, MailboxCompletions) {
    const auto get = [&](uint16_t* x) { return HXGetFCSerDesRegister(handle, 1, x); };
    constexpr std::pair<uint16_t, HX_STATUS> kCompletions[] = {
        {0x4001, HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER},
        {0x4005, HXMGT_DEVICE_NOT_FOUND},
        {0x4006, HXMGT_INVALID_PARAMETER},
        {0x4002, HXMGT_MAILBOX_FAILED},
        {0, HXMGT_MAILBOX_FAILED},
        {0x4000, HXMGT_MAILBOX_FAILED}};
    for (const auto& [completion, status] : kCompletions) {
        Fails(status, command::Mailbox, Registers({completion, 7}, 11), get);
        if (completion != 0x4000) {
            Fails(status, command::Mailbox, Registers({completion, 7}), get);
        }
    }
    Fails(HXMGT_MAILBOX_FAILED, command::Mailbox, {}, get);
    Fails(HXMGT_MAILBOX_FAILED, command::Mailbox, {.status = 11}, get);
    Fails(HXMGT_TIMED_OUT, command::Mailbox, Registers({0x4005}, 30), get);
    Fails(Windows(ERROR_IO_DEVICE), command::Mailbox, {.error = ERROR_IO_DEVICE}, get);
}

TEST_F(QueryRecordsTest, Beacon) {
    const auto reply = [](uint32_t mark, uint32_t supported, uint32_t length = 696) {
        Bytes data = Patterned(length);
        const uint32_t tail[] = {mark, 0x77, 1, 60, 3, supported};
        memcpy(&data[668], tail, std::min<size_t>(sizeof tail, length - 668));
        return Reply{.data = data};
    };
    constexpr uint32_t kMark = 0x4E434542;
    const auto get = [&](HX_BEACON* x) { return HXGetBeaconControl(handle, x); };
    Bytes expected(696);
    Put32(expected, 668, kMark);
    Put32(expected, 672, 1);
    Guarded<HX_BEACON> beacon;
    for (const uint32_t supported : {1u, 5u}) {
        port->On(command::NodeProperties, reply(kMark, supported));
        ASSERT_EQ(0u, get(beacon.Get()));
        EXPECT_EQ(expected, port->Last().Data());
        EXPECT_EQ((HX_BEACON{1, 60, 3, 1}.seconds), beacon->seconds);
        EXPECT_EQ(3u, beacon->leds);
        EXPECT_EQ(1u, beacon->on);
        EXPECT_EQ(1u, beacon->supported);
    }
    const HX_BEACON set = {1, 86400, 0xFFFFFFFF, 0xFFFFFFFF};
    EXPECT_EQ(0u, HXUpdateBeaconControl(handle, &set));
    Put32(expected, 672, 2);
    Put32(expected, 676, 1);
    Put32(expected, 680, 86400);
    EXPECT_EQ(expected, port->Last().Data()) << "on and seconds alone";
    const std::pair<Reply, HX_STATUS> rows[] = {
        {reply(kMark, 0), HXMGT_NOT_SUPPORTED},
        {reply(0, 1), HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER},
        {reply(kMark, 1, 671), HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER},
        {reply(kMark, 1, 684), HXMGT_NOT_SUPPORTED},
        {{.status = 21}, HXMGT_DEVICE_NOT_READY},
    };
    for (const auto& [answer, status] : rows) {
        Fails(status, command::NodeProperties, answer, get);
        EXPECT_EQ(status, HXUpdateBeaconControl(handle, &set));
    }
}

TEST_F(QueryRecordsTest, LoopMap) {
    Bytes reply = Patterned(144);
    Guarded<HX_POSITIONAL_MAP> map;
    for (const uint8_t count : {uint8_t{0}, uint8_t{127}, uint8_t{128}, uint8_t{255}}) {
        reply[16] = count;
        const Bytes records = Part(reply, 16, 128);
        const auto expect = [&] {
            ASSERT_EQ(0u, HXGetPositionalMap(handle, map.Get()));
            EXPECT_EQ(std::min<int>(count, 127), map->count);
            EXPECT_EQ(Part(records, 1, 127), Part(Seen(map), 1, 127));
        };
        Reopen("7.05.03", 0x7200);
        port->On(command::PositionalMap, Reply{.data = records});
        expect();
        Reopen("7.05.02", 0x7200);
        port->OnSelector(static_cast<properties::LegacySelector>(10), {.data = reply});
        expect();
        EXPECT_EQ((Bytes{0, 0, 0x80, 0, 10, 0, 0, 0, 0, 0, 0, 0}), port->Last().Data());
        EXPECT_EQ(28u + 144u, port->Last().outputSize);
    }
    Guarded<HX_POSITIONAL_MAP> untouched;
    port->OnSelector(static_cast<properties::LegacySelector>(10), {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(31u, HXGetPositionalMap(handle, untouched.Get()));
    EXPECT_TRUE(untouched.Raw().Holds(0xEE));
}

TEST_F(QueryRecordsTest, LinkSpeed) {
    const Bytes reply = Patterned(34);
    port->On(command::TargetLinkSpeed, Reply{.data = reply});
    Guarded<HX_TARGET_LINK_SPEED> record;
    ASSERT_EQ(0u, HXGetTargetIDMALinkSpeed(handle, &kTarget, record.Get()));
    EXPECT_EQ(Part(reply, 16, 8), Seen(record));
    Bytes request = BlockOfTarget();
    request.resize(34);
    EXPECT_EQ(request, port->Last().Data());
    Fails(HXMGT_DEVICE_NOT_FOUND, command::TargetLinkSpeed, {.status = 9},
          [&](HX_TARGET_LINK_SPEED* x) { return HXGetTargetIDMALinkSpeed(handle, &kTarget, x); });
    port->On(command::SetTargetLinkSpeed, Reply{.data = reply});
    const std::vector<uint16_t> codes = {0, 1, 2, 4, 8, 16, 22, 50, 100};
    for (uint16_t speed = 0; speed < 0x120; ++speed) {
        port->Forget();
        const bool valid = std::count(codes.begin(), codes.end(), speed) != 0;
        EXPECT_EQ(valid ? HXMGT_SUCCESS : HXMGT_INVALID_PARAMETER,
                  HXSetTargetIDMALinkSpeed(handle, &kTarget, speed))
            << speed;
        EXPECT_EQ(valid, !port->Requests().empty());
    }
    HXSetTargetIDMALinkSpeed(handle, &kTarget, 50);
    request[16] = 50;
    EXPECT_EQ(request, port->Last().Data());
}

TEST_F(QueryRecordsTest, Priorities) {
    Guarded<HX_LUN_QOS> qos(3);
    qos->levels[0] = 0;
    Bytes request = BlockOfTarget();
    Append(request, Seen(qos));
    port->On(command::SetLunQos, Reply{.data = Patterned(256)});
    ASSERT_EQ(0u, HXSetLunQos(handle, &kTarget, qos.Get()));
    EXPECT_EQ(request, port->Last().Data());
    EXPECT_EQ(Patterned(256), Seen(qos)) << "what is in force now";

    uint8_t enabled = 0;
    for (const auto& [reply, told] : {std::pair(Bytes{0}, 0), {{1}, 1}, {{0xFE}, 1}, {{}, 0}}) {
        port->On(command::LunQosEnable, Reply{.data = reply});
        enabled = 0xEE;
        ASSERT_EQ(0u, HXGetLunQosEnable(handle, &enabled));
        EXPECT_EQ(told, enabled);
        EXPECT_EQ(Bytes{0}, port->Last().Data());
    }
    Fails(HXMGT_INVALID_SUBCODE, command::LunQosEnable, {.status = 12},
          [&](uint8_t* x) { return HXGetLunQosEnable(handle, x); });
}

TEST_F(QueryRecordsTest, NvmeController) {
    Bytes reply = Patterned(1024);
    port->On(command::NvmeTargetInfo, Reply{.data = reply});
    Guarded<HX_NVME_TARGET> record;
    ASSERT_EQ(0u, HXGetNVMeTargetInfo(handle, &kTarget, record.Get()));
    reply[64 + 255] = reply[320 + 255] = 0;
    EXPECT_EQ(reply, Seen(record)) << "both names end, whatever the driver says";
    EXPECT_EQ((Bytes{5, 0, 1, 0, 2, 0, 5, 6, 7, 8, 3, 2}), port->Last().Data());
    Fails(HXMGT_DEVICE_NOT_FOUND, command::NvmeTargetInfo, {.status = 9},
          [&](HX_NVME_TARGET* x) { return HXGetNVMeTargetInfo(handle, &kTarget, x); });
}

}  // namespace
