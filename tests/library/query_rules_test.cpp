// Who may ask: drivers, chips and values, in their order, and what then reaches the driver.
#include "support/query_fixture.h"

namespace {

using namespace support;

enum class Chips { Any, Newer, Newest };

uint8_t callerMemory[8192];
template <typename Record>
Record* Room() {
    memset(callerMemory, 0, sizeof callerMemory);
    return reinterpret_cast<Record*>(callerMemory);
}
uint32_t* Count() {
    static uint32_t count;
    count = 1;
    return &count;
}

constexpr DESTINATIONADDRESS kTarget = {HX_ADDRESS_PORT_NAME, {1, 2, 3, 4, 5, 6, 7, 8}, 1};

struct QueryRow {
    uint32_t least;  // driver
    Chips chips;
    uint32_t code;
    uint16_t subCode;
    uint32_t in, out;
    HX_STATUS (*run)(uint32_t handle);
};
#define VX_QUERY(least, chips, code, subCode, in, out, call)                                      \
    {                                                                                             \
        least, Chips::chips, code, subCode, in, out, [](uint32_t h) -> HX_STATUS { return call; } \
    }

// Those whose request changes with the driver stand here as the newest ones are asked.
const QueryRow kQueries[] = {
    VX_QUERY(70503, Any, 0xF000100B, 0, 16, 136,
             HXGetPortStatisticsFC(h, nullptr, Room<HX_PORT_STATISTICS>())),
    VX_QUERY(80100, Any, 0xF0001056, 0, 16, 136,
             HXGetPortStatisticsFCV1(h, &kTarget, Room<HX_PORT_STATISTICS>())),
    VX_QUERY(90100, Any, 0xF000105A, 0, 16, 496,
             HXGetPortStatisticsFCV2(h, nullptr, Room<HX_PORT_STATISTICS_V2>())),
    VX_QUERY(80100, Any, 0xF0001056, 0, 16, 136,
             HXGetPortSCMStatsFC(h, &kTarget, Room<HX_PORT_SCM_STATISTICS>())),
    VX_QUERY(70503, Any, 0xF0001007, 9, 0, 512, HXGetSCMStatistics(h, Room<HX_SCM_STATISTICS>())),
    VX_QUERY(70503, Any, 0xF0001007, 115, 512, 512,
             HXGetPrivStats(h, Room<HX_PRIVATE_STATISTICS>())),
    VX_QUERY(70503, Any, 0xF0001007, 116, 512, 512,
             HXGetPrivStatsEx(h, Room<HX_PRIVATE_STATISTICS_EX>())),
    VX_QUERY(70503, Any, 0xF0001007, 114, 16, 64, HXGetBBCRData(h, Room<HX_BBCR_DATA>())),
    VX_QUERY(70503, Newer, 0xF000104A, 0, 196, 196,
             HXGetBoardTemp(h, Room<HX_BOARD_TEMPERATURE>())),
    VX_QUERY(70503, Newest, 0xF000104A, 0, 196, 196, HXGetFCSerDesRegister(h, 1, Room<uint16_t>())),
    VX_QUERY(70503, Newest, 0xF000104A, 0, 196, 196, HXSetFCSerDesRegister(h, 1, 2)),
    VX_QUERY(70503, Newest, 0xF000104A, 0, 196, 196,
             HXGetFCSerDesRegisterEx(h, 1, 2, Room<uint32_t>())),
    VX_QUERY(70503, Newest, 0xF000104A, 0, 196, 196, HXSetFCSerDesRegisterEx(h, 1, 2, 3)),
    VX_QUERY(70503, Newest, 0xF000104A, 0, 196, 196,
             HXGetQuarnI2CRegister(h, 0x7F, 2, Room<uint16_t>())),
    VX_QUERY(70503, Newest, 0xF000104A, 0, 196, 196, HXSetQuarnI2CRegister(h, 0x7F, 2, 0xFF)),
    VX_QUERY(70503, Newest, 0xF0001007, 113, 0, 520,
             HXReadSerdesParams(h, Room<HX_SERDES_LANE>(), Count())),
    VX_QUERY(70503, Any, 0xF0001007, 107, 0, 128, HXGetPositionalMap(h, Room<HX_POSITIONAL_MAP>())),
    VX_QUERY(70503, Any, 0xF0001007, 12, 32, 32800,
             HXGetRemotePortInfo(h, Room<HX_REMOTE_PORT>(), Count())),
    VX_QUERY(90100, Newest, 0xF0001059, 7, 73, 6049,
             HXGetSecurePortInfo(h, Room<HX_SECURE_PORT>(), Count())),
    VX_QUERY(70503, Any, 0xF0001018, 0, 34, 34,
             HXGetTargetIDMALinkSpeed(h, &kTarget, Room<HX_TARGET_LINK_SPEED>())),
    VX_QUERY(70503, Any, 0xF0001019, 0, 34, 34, HXSetTargetIDMALinkSpeed(h, &kTarget, 16)),
    VX_QUERY(70503, Any, 0xF0001007, 118, 16, 256, HXGetLunQos(h, &kTarget, Room<HX_LUN_QOS>())),
    VX_QUERY(70503, Any, 0xF0001007, 119, 1, 1, HXGetLunQosEnable(h, Room<uint8_t>())),
    VX_QUERY(70503, Any, 0xF0001008, 114, 272, 256, HXSetLunQos(h, &kTarget, Room<HX_LUN_QOS>())),
    VX_QUERY(70503, Any, 0xF0001007, 10, 3640, 3640,
             HXGetNPIVAttributes(h, nullptr, Room<HX_VIRTUAL_PORT>(), Count())),
    VX_QUERY(90100, Any, 0xF0001054, 0, 16, 4112, HXRGetNVMeInfo(h, Room<HX_NVME_PORT>(), Count())),
    VX_QUERY(90100, Any, 0xF0001060, 0, 12, 1024,
             HXGetNVMeTargetInfo(h, &kTarget, Room<HX_NVME_TARGET>())),
    VX_QUERY(90100, Any, 0xF0001062, 0, 12, 4096,
             HXGetNVMeNSInfo(h, &kTarget, Room<HX_NVME_NAMESPACE>(), Count())),
};

using QueryRulesTest = QueryTest;

// A request that is sent fails with a status of its own here.
constexpr HX_STATUS kSent = HXMGT_INVALID_REQUEST;

TEST_F(QueryRulesTest, Drivers) {
    constexpr std::pair<uint32_t, const char*> kDrivers[] = {
        {70502, "7.05.02"}, {70503, "7.05.03"}, {80099, "8.00.99"},
        {80100, "8.01.00"}, {90099, "9.00.99"}, {90100, "9.01.00"}};
    for (const auto& [version, text] : kDrivers) {
        Reopen(text);
        for (const QueryRow& row : kQueries) {
            SCOPED_TRACE(testing::Message() << text << ' ' << std::hex << row.code << '/'
                                            << row.subCode << ' ' << (&row - kQueries));
            const bool everyDriver = row.subCode == 107;
            port->Forget();
            const HX_STATUS status = row.run(handle);
            if (version < 70503) {
                EXPECT_EQ(everyDriver ? Windows(ERROR_INVALID_FUNCTION) : HXMGT_NOT_SUPPORTED,
                          status);
                EXPECT_EQ(everyDriver, !port->Requests().empty());
                continue;
            }
            EXPECT_EQ(version < row.least ? HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER : kSent, status);
            if (version < row.least) {
                EXPECT_TRUE(port->Requests().empty());
            } else if (version == 90100) {
                const transport::ExtRequest sent = port->Last().Envelope();
                EXPECT_EQ(row.code, sent.srb.controlCode);
                EXPECT_EQ(row.subCode, sent.ext.subCode);
                EXPECT_EQ(row.in, sent.ext.requestLen);
                EXPECT_EQ(row.out, sent.ext.responseLen);
                EXPECT_EQ(116 + std::max(row.in, row.out), port->Last().outputSize);
            }
        }
    }
}

TEST_F(QueryRulesTest, Chips) {
    constexpr std::pair<uint16_t, Chips> kChips[] = {
        {0x7100, Chips::Any},    {0x7312, Chips::Any},    {0x7400, Chips::Newer},
        {0x7611, Chips::Newer},  {0x7620, Chips::Newest}, {0x7700, Chips::Newest},
        {0x7780, Chips::Newest}, {0x7790, Chips::Any}};
    for (const auto& [id, chips] : kChips) {
        Reopen("9.01.00", id);
        for (const QueryRow& row : kQueries) {
            port->Forget();
            EXPECT_EQ(row.chips <= chips ? kSent : HXMGT_NOT_SUPPORTED, row.run(handle))
                << std::hex << id << ' ' << (&row - kQueries);
            EXPECT_EQ(row.chips == Chips::Any ? 0u : 1u,
                      port->Requests(command::ChipProperties).size());
        }
    }
    port->On(command::ChipProperties, Reply{.status = 21});
    for (const QueryRow& row : kQueries) {
        EXPECT_EQ(row.chips == Chips::Any ? kSent : HXMGT_DEVICE_NOT_READY, row.run(handle));
    }
}

// Values come last: a driver or a chip that does not serve the call is told first.
TEST_F(QueryRulesTest, Values) {
    static const DESTINATIONADDRESS unknown = {5, {}, 0}, none = {0, {}, 0};
    static const DESTINATIONADDRESS controller = {HX_ADDRESS_PORT_NAME, {}, 256};
    static const HX_BEACON tooLong = {1, 86401, 0, 0}, neither = {2, 0, 0, 0};
    static HX_PRIVATE_STATISTICS option = {};
    static HX_LUN_QOS levels = {};
    option.options = 2;
    levels.levels[255] = 4;
    using Call = HX_STATUS (*)(uint32_t);
    constexpr auto onAnyChip = std::to_array<Call>({
        [](uint32_t h) { return HXGetPortStatisticsFC(h, &unknown, Room<HX_PORT_STATISTICS>()); },
        [](uint32_t h) { return HXGetPortStatisticsFCV1(h, &none, Room<HX_PORT_STATISTICS>()); },
        [](uint32_t h) {
            return HXGetPortStatisticsFCV2(h, &unknown, Room<HX_PORT_STATISTICS_V2>());
        },
        [](uint32_t h) { return HXGetPortSCMStatsFC(h, &none, Room<HX_PORT_SCM_STATISTICS>()); },
        [](uint32_t h) { return HXGetPrivStats(h, &option); },
        [](uint32_t h) { return HXUpdateBeaconControl(h, &tooLong); },
        [](uint32_t h) { return HXUpdateBeaconControl(h, &neither); },
        [](uint32_t h) {
            return HXGetTargetIDMALinkSpeed(h, &unknown, Room<HX_TARGET_LINK_SPEED>());
        },
        [](uint32_t h) { return HXSetTargetIDMALinkSpeed(h, &unknown, 8); },
        [](uint32_t h) { return HXSetTargetIDMALinkSpeed(h, &kTarget, 32); },
        [](uint32_t h) { return HXSetTargetIDMALinkSpeed(h, &kTarget, 0x116); },
        [](uint32_t h) { return HXGetLunQos(h, &none, Room<HX_LUN_QOS>()); },
        [](uint32_t h) { return HXSetLunQos(h, &kTarget, &levels); },
        [](uint32_t h) { return HXGetNVMeTargetInfo(h, &unknown, Room<HX_NVME_TARGET>()); },
        [](uint32_t h) { return HXGetNVMeNSInfo(h, &unknown, Room<HX_NVME_NAMESPACE>(), Count()); },
        [](uint32_t h) {
            return HXGetNVMeNSInfo(h, &controller, Room<HX_NVME_NAMESPACE>(), Count());
        },
    });
    constexpr auto onNewest = std::to_array<Call>({
        [](uint32_t h) { return HXGetQuarnI2CRegister(h, 0x80, 0, Room<uint16_t>()); },
        [](uint32_t h) { return HXSetQuarnI2CRegister(h, 0x80, 0, 0); },
        [](uint32_t h) { return HXSetQuarnI2CRegister(h, 0x18, 0, 0x100); },
    });
    const auto expect = [&](HX_STATUS anyChip, HX_STATUS newest) {
        for (const Call& run : onAnyChip) {
            EXPECT_EQ(anyChip, run(handle)) << (&run - onAnyChip.data());
        }
        EXPECT_TRUE(port->Requests().empty());
        for (const Call& run : onNewest) {
            EXPECT_EQ(newest, run(handle)) << (&run - onNewest.data());
        }
        EXPECT_TRUE(port->Requests(command::Mailbox).empty());
    };
    expect(HXMGT_INVALID_PARAMETER, HXMGT_INVALID_PARAMETER);
    Reopen("7.05.02");
    expect(HXMGT_NOT_SUPPORTED, HXMGT_NOT_SUPPORTED);
    Reopen("9.01.00", 0x7611);
    expect(HXMGT_INVALID_PARAMETER, HXMGT_NOT_SUPPORTED);
    uint32_t room = 1;
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXReadSerdesParams(handle, nullptr, &room))
        << "a pointer comes before the chip";
    EXPECT_EQ(1u, room);
}

// Each kind of address in the two forms in which it travels.
TEST_F(QueryRulesTest, Addresses) {
    struct Row {
        uint16_t type, driverType;
        size_t bytes;
    };
    for (const Row& row : {Row{1, 1, 8}, {2, 2, 8}, {3, 3, 3}, {4, 5, 4}}) {
        const DESTINATIONADDRESS target = {row.type, {1, 2, 3, 4, 5, 6, 7, 8}, 0x0A0B};
        Bytes block(16), whole = BytesOf(target);
        memcpy(block.data(), target.address, row.bytes);
        block[8] = whole[0] = static_cast<uint8_t>(row.driverType);
        HXGetPortStatisticsFCV2(handle, &target, Room<HX_PORT_STATISTICS_V2>());
        EXPECT_EQ(block, port->Last().Data());
        block[10] = 1;
        HXGetPortSCMStatsFC(handle, &target, Room<HX_PORT_SCM_STATISTICS>());
        EXPECT_EQ(block, port->Last().Data());
        block[10] = 0;
        HXGetLunQos(handle, &target, Room<HX_LUN_QOS>());
        EXPECT_EQ(block, port->Last().Data()) << "no LUN in it";
        HXGetNVMeTargetInfo(handle, &target, Room<HX_NVME_TARGET>());
        EXPECT_EQ(whole, port->Last().Data());
    }
    HXGetPortStatisticsFCV2(handle, nullptr, Room<HX_PORT_STATISTICS_V2>());
    EXPECT_EQ(Bytes(16), port->Last().Data());
    HXGetBBCRData(handle, Room<HX_BBCR_DATA>());
    EXPECT_EQ(Bytes(16), port->Last().Data());
    port->On(command::DestinationStatisticsV2, Reply{.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND,
              HXGetPortStatisticsFCV2(handle, &kTarget, Room<HX_PORT_STATISTICS_V2>()));
}

}  // namespace
