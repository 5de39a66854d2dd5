// Statistics and management address, both driver generations: exact bytes both ways.
#include "statistics/statistics_records.h"
#include "support/byte_fields.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

using StatisticsTest = OneAdapterTest;

TEST_F(StatisticsTest, Counters) {
    const Bytes reply = Patterned(112);
    port->On(command::LinkStatistics, Reply{.data = reply});
    Guarded<HX_STATISTICS> record;
    ASSERT_EQ(0u, HXGetStatistics(handle, 0, record.Get()));
    EXPECT_EQ(reply, BytesOf(*record.Get()));
    EXPECT_EQ(Word32(reply, 24), record->linkFailures);
    EXPECT_EQ(116u, port->Last().inputSize);
    EXPECT_EQ(116u + 112u, port->Last().outputSize);

    Guarded<HX_STATISTICS> untouched;
    port->On(command::LinkStatistics, Reply{.status = 21, .data = reply});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetStatistics(handle, 0, untouched.Get()));
    EXPECT_TRUE(untouched.Raw().Holds(0xEE));
    port->On(command::LinkStatistics, Reply{.data = Part(reply, 0, 30)});
    ASSERT_EQ(0u, HXGetStatistics(handle, 0, record.Get()));
    EXPECT_EQ(0u, record->invalidCrcs) << "what did not come is zero";
}

TEST_F(StatisticsTest, LegacyCounters) {
    Reopen("7.05.02", 0x7200);
    const Bytes reply = Patterned(140);
    port->OnSelector(static_cast<properties::LegacySelector>(7), {.data = reply});
    Guarded<HX_STATISTICS> record;
    ASSERT_EQ(0u, HXGetStatistics(handle, 0, record.Get()));
    EXPECT_EQ(Part(reply, 12, 112), BytesOf(*record.Get()));
    EXPECT_EQ(0xF000000Bu, port->Last().Code());
    EXPECT_EQ((Bytes{0, 0, 0x80, 0, 7, 0, 0, 0, 0, 0, 0, 0}), port->Last().Data());
    EXPECT_EQ(28u + 140u, port->Last().outputSize);

    Guarded<HX_STATISTICS> untouched;
    port->OnSelector(static_cast<properties::LegacySelector>(7), {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(31u, HXGetStatistics(handle, 0, untouched.Get()));
    EXPECT_TRUE(untouched.Raw().Holds(0xEE));
}

TEST_F(StatisticsTest, Reset) {
    port->On(command::ResetStatistics, Reply{});
    EXPECT_EQ(0u, HXResetStatistics(handle));
    EXPECT_EQ(0xF0001008u, port->Last().Code());
    EXPECT_EQ(116u, port->Last().outputSize);

    Reopen("7.05.02", 0x7200);
    port->OnPlain(command::LegacyResetStatistics, {});
    EXPECT_EQ(1u, HXResetStatistics(handle)) << "the second step's failure";
    port->OnPlain(command::LegacyResetStatistics2, {});
    port->Forget();
    EXPECT_EQ(0u, HXResetStatistics(handle));
    ASSERT_EQ(2u, port->Requests().size());
    EXPECT_EQ(0xF000000Cu, port->Requests()[0].Code());
    EXPECT_EQ(0xF0000026u, port->Requests()[1].Code());
    EXPECT_EQ(28u, port->Requests()[1].inputSize);
    port->OnPlain(command::LegacyResetStatistics, {.error = ERROR_GEN_FAILURE});
    port->Forget();
    EXPECT_EQ(31u, HXResetStatistics(handle));
    EXPECT_EQ(1u, port->Requests().size()) << "no second step after a failure";
}

TEST_F(StatisticsTest, ManagementAddress) {
    const Bytes reply = Patterned(256);
    port->On(command::ManagementAddress, Reply{.data = reply});
    for (const uint32_t size : {0u, 1u, 52u, 256u}) {
        GuardedBuffer record(size + 1);
        ASSERT_EQ(0u, HXGetMgmtAddress(handle, record.Data(), size));
        EXPECT_EQ(Part(reply, 0, size), record.First(size));
        EXPECT_EQ(0xEE, record[size]);
    }
    const HX_MGMT_ADDRESS_SETTING setting = {{0, 1}, {0, 161}, {192, 0, 2, 1}};
    port->On(command::SetManagementAddress, Reply{});
    ASSERT_EQ(0u, HXSetMgmtAddress(handle, &setting));
    Bytes expected = BytesOf(setting);
    expected.resize(84);
    EXPECT_EQ(expected, port->Last().Data());
    EXPECT_EQ(109u, port->Last().Envelope().ext.subCode);

    Reopen("7.05.02", 0x7200);
    uint8_t record[256];
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXGetMgmtAddress(handle, record, sizeof record));
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXSetMgmtAddress(handle, &setting));
}

}  // namespace
