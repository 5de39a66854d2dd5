// The queries over the emulated adapters: who answers, what comes, what is kept.
#include "machine/emulated_adapters.h"
#include "support/library_fixture.h"

namespace {

using namespace support;

constexpr DESTINATIONADDRESS kArray = {
    HX_ADDRESS_PORT_NAME, {0x2B, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x01, 0x00}, 0};
constexpr DESTINATIONADDRESS kStranger = {HX_ADDRESS_PORT_NAME, {1}, 0};

class EmulatedQueriesTest : public LibraryTest {
  protected:
    void SetUp() override {
        const auto profile = std::make_unique<vxemu::Profile>();
        ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
        adapters = std::make_unique<EmulatedAdapters>(system, *profile);
    }
    void TearDown() override {
        LibraryTest::TearDown();
        adapters.reset();
    }
    // A list, with room for as many records.
    template <typename Record, typename Call>
    std::vector<Record> List(Call call, uint32_t room = 300) {
        std::vector<Record> records(room);
        uint32_t count = room;
        EXPECT_EQ(HXMGT_SUCCESS, call(records.data(), &count));
        records.resize(count);
        return records;
    }
    void Set(uint32_t scsiPort, const char* name, uint8_t value) {
        vxemu::FieldRequest request = {scsiPort, {}};
        strcpy(request.change.name, name);
        request.change.length = 1;
        request.change.value[0] = value;
        adapters->Control<vxemu::CountReply>(vxemu::control::kSetField, request);
    }
    void SetArray(const char* name, uint8_t value) {
        vxemu::TargetFieldRequest request = {};
        memcpy(request.target.portName, kArray.address, 8);
        strcpy(request.change.name, name);
        request.change.length = 1;
        request.change.value[0] = value;
        const auto reply =
            adapters->Control<vxemu::ChangeReply>(vxemu::control::kTargetSet, request);
        EXPECT_EQ(vxemu::ProfileError::None, reply.error);
    }

    std::unique_ptr<EmulatedAdapters> adapters;
};

struct AnswerRow {
    const char* name;
    HX_STATUS (*run)(uint32_t handle);
    // Of the newest chip and driver, of a newer chip with an older one, of a legacy driver.
    HX_STATUS expected[3];
};

alignas(8) uint8_t answerRoom[16384];
template <typename Record>
Record* In() {
    return reinterpret_cast<Record*>(answerRoom);
}
uint32_t* Number() {
    static uint32_t number;
    number = 8;
    return &number;
}

#define VX_ANSWERS(call, ...)                                  \
    {                                                          \
#call, [](uint32_t h) -> HX_STATUS { return call; }, { \
            __VA_ARGS__                                        \
        }                                                      \
    }
constexpr HX_STATUS kOk = HXMGT_SUCCESS;
constexpr HX_STATUS kNot = HXMGT_NOT_SUPPORTED;
constexpr HX_STATUS kDriver = HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER;
constexpr HX_STATUS kSub = HXMGT_INVALID_SUBCODE;

const AnswerRow kAnswers[] = {
    VX_ANSWERS(HXGetPortStatisticsFC(h, nullptr, In<HX_PORT_STATISTICS>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetPortStatisticsFC(h, &kArray, In<HX_PORT_STATISTICS>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetPortStatisticsFCV1(h, &kArray, In<HX_PORT_STATISTICS>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetPortStatisticsFCV2(h, &kArray, In<HX_PORT_STATISTICS_V2>()), kOk, kDriver,
               kNot),
    VX_ANSWERS(HXGetPortSCMStatsFC(h, &kArray, In<HX_PORT_SCM_STATISTICS>()), kOk, kSub, kNot),
    VX_ANSWERS(HXGetSCMStatistics(h, In<HX_SCM_STATISTICS>()), kOk, kSub, kNot),
    VX_ANSWERS(HXGetPrivStats(h, (*In<uint32_t>() = 0, In<HX_PRIVATE_STATISTICS>())), kOk, kOk,
               kNot),
    VX_ANSWERS(HXGetPrivStatsEx(h, (*In<uint32_t>() = 0, In<HX_PRIVATE_STATISTICS_EX>())), kOk, kOk,
               kNot),
    VX_ANSWERS(HXGetBBCRData(h, In<HX_BBCR_DATA>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetBoardTemp(h, In<HX_BOARD_TEMPERATURE>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetBeaconControl(h, In<HX_BEACON>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetFCSerDesRegister(h, 0x10, In<uint16_t>()), kOk, kNot, kNot),
    VX_ANSWERS(HXReadSerdesParams(h, In<HX_SERDES_LANE>(), Number()), kOk, kNot, kNot),
    VX_ANSWERS(HXGetQuarnI2CRegister(h, 0x18, 8, In<uint16_t>()), kOk, kNot, kNot),
    VX_ANSWERS(HXGetQuarnI2CRegister(h, 0x19, 8, In<uint16_t>()), HXMGT_DEVICE_NOT_FOUND, kNot,
               kNot),
    VX_ANSWERS(HXGetPositionalMap(h, In<HX_POSITIONAL_MAP>()), kOk, kOk, kOk),
    VX_ANSWERS(HXGetRemotePortInfo(h, In<HX_REMOTE_PORT>(), Number()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetSecurePortInfo(h, In<HX_SECURE_PORT>(), Number()), kOk, kDriver, kNot),
    VX_ANSWERS(HXGetTargetIDMALinkSpeed(h, &kArray, In<HX_TARGET_LINK_SPEED>()), kOk, kOk, kNot),
    VX_ANSWERS(HXGetTargetIDMALinkSpeed(h, &kStranger, In<HX_TARGET_LINK_SPEED>()),
               HXMGT_DEVICE_NOT_FOUND, HXMGT_DEVICE_NOT_FOUND, kNot),
    VX_ANSWERS(HXGetLunQos(h, &kArray, In<HX_LUN_QOS>()), kOk, kSub, kNot),
    VX_ANSWERS(HXGetLunQosEnable(h, In<uint8_t>()), kOk, kSub, kNot),
    VX_ANSWERS(HXGetNPIVAttributes(h, nullptr, In<HX_VIRTUAL_PORT>(), Number()), kOk, kOk, kNot),
    VX_ANSWERS(HXRGetNVMeInfo(h, In<HX_NVME_PORT>(), Number()), kOk, kDriver, kNot),
    VX_ANSWERS(HXGetNVMeTargetInfo(h, &kArray, In<HX_NVME_TARGET>()), kOk, kDriver, kNot),
    VX_ANSWERS(HXGetNVMeNSInfo(h, &kArray, In<HX_NVME_NAMESPACE>(), Number()), kOk, kDriver, kNot),
};

TEST_F(EmulatedQueriesTest, EachGenerationAnswersWhatItKnows) {
    const uint32_t handles[] = {Open(0), Open(2), Open(3)};
    for (const AnswerRow& row : kAnswers) {
        for (size_t at = 0; at < std::size(handles); ++at) {
            EXPECT_EQ(row.expected[at], row.run(handles[at])) << row.name << " of handle " << at;
        }
    }
    // A newest driver on a port without NVMe.
    Set(3, "protocol_flags", 2);
    EXPECT_EQ(kSub, HXRGetNVMeInfo(handles[0], In<HX_NVME_PORT>(), Number()));
    Set(3, "beacon_supported", 0);
    EXPECT_EQ(kNot, HXGetBeaconControl(handles[0], In<HX_BEACON>()));
}

TEST_F(EmulatedQueriesTest, RemoteAndSecuredPorts) {
    const uint32_t handle = Open(0);
    const auto remote = [&](auto* list, auto* count) {
        return HXGetRemotePortInfo(handle, list, count);
    };
    const auto secured = [&](auto* list, auto* count) {
        return HXGetSecurePortInfo(handle, list, count);
    };
    const auto ports = List<HX_REMOTE_PORT>(remote);
    ASSERT_EQ(5u, ports.size());
    EXPECT_EQ(HX_ROLE_FCP_TARGET | HX_ROLE_NVME_SUBSYSTEM, ports[0].roles);
    EXPECT_EQ(HX_REMOTE_PORT_DIAGNOSED | HX_REMOTE_PORT_SECURED, ports[0].flags);
    EXPECT_STREQ("Emulated array A", ports[0].symbolicName);
    EXPECT_EQ(HX_SPEED_32GBIT, ports[0].speed);
    EXPECT_EQ(1u, ports[0].errors.linkFailures);
    EXPECT_NEAR(5200, ports[0].rxPower, 200);
    EXPECT_EQ(HX_ROLE_FCP_INITIATOR, ports[3].roles);
    EXPECT_EQ(HX_REMOTE_PORT_LOST, ports[4].state);
    EXPECT_EQ(0, ports[4].flags);
    const auto known = List<HX_SECURE_PORT>(secured);
    ASSERT_EQ(1u, known.size());
    EXPECT_EQ(HX_SECURE_SECURED, known[0].state);
    EXPECT_EQ(HX_ENCRYPTION_AES_GCM_256, known[0].encryption);
    EXPECT_NE(known[0].txSpi, known[0].rxSpi);
    SetArray("secured", 2);
    EXPECT_EQ(HX_SECURE_FAILED, List<HX_SECURE_PORT>(secured)[0].state);
    EXPECT_EQ(HX_REMOTE_PORT_DIAGNOSED, List<HX_REMOTE_PORT>(remote)[0].flags);
    adapters->SetLink(3, false);
    EXPECT_TRUE(List<HX_SECURE_PORT>(secured).empty());
    EXPECT_EQ(HX_REMOTE_PORT_LOST, List<HX_REMOTE_PORT>(remote)[0].state);
}

TEST_F(EmulatedQueriesTest, SpeedsAndPrioritiesStayWithPortAndTarget) {
    const uint32_t handle = Open(0), other = Open(1);
    const auto speed = [&](uint32_t of) {
        HX_TARGET_LINK_SPEED record = {};
        EXPECT_EQ(kOk, HXGetTargetIDMALinkSpeed(of, &kArray, &record));
        return record;
    };
    EXPECT_EQ(kOk, HXSetTargetIDMALinkSpeed(handle, &kArray, HX_SPEED_16GBIT));
    EXPECT_EQ(HX_SPEED_16GBIT, speed(handle).speed);
    EXPECT_EQ(HX_LINK_SPEED_SET, speed(handle).flags);
    EXPECT_EQ(HX_SPEED_32GBIT, speed(other).speed);
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, HXSetTargetIDMALinkSpeed(handle, &kArray, HX_SPEED_64GBIT));
    adapters->SetLink(3, false);
    adapters->SetLink(3, true);
    EXPECT_EQ(HX_SPEED_16GBIT, speed(handle).speed);
    EXPECT_EQ(kOk, HXSetTargetIDMALinkSpeed(handle, &kArray, HX_SPEED_UNKNOWN));
    SetArray("highest_speed", HX_SPEED_10GBIT);  // a lower code than that of 16 Gbit/s, as is 8's
    EXPECT_EQ(HX_SPEED_10GBIT, speed(handle).speed);
    EXPECT_EQ(0, speed(handle).flags);

    HX_LUN_QOS levels = {{HX_QOS_HIGH, HX_QOS_LOW}}, read = {};
    Set(3, "qos_enabled", 0);
    uint8_t enabled = 7;
    EXPECT_EQ(kOk, HXGetLunQosEnable(handle, &enabled));
    EXPECT_EQ(0, enabled);
    EXPECT_EQ(kOk, HXSetLunQos(handle, &kArray, &levels));
    EXPECT_EQ(kOk, HXGetLunQos(handle, &kArray, &read));
    EXPECT_EQ(0, memcmp(&levels, &read, sizeof read));
    EXPECT_EQ(kOk, HXGetLunQos(other, &kArray, &read));
    EXPECT_EQ(0, read.levels[0]);
}

TEST_F(EmulatedQueriesTest, VirtualPortsFollowTheLink) {
    const uint32_t handle = Open(0);
    HX_NPIV_ATTRIBUTES attributes = {};
    const auto ask = [&](auto* list, auto* count) {
        return HXGetNPIVAttributes(handle, &attributes, list, count);
    };
    const auto ports = List<HX_VIRTUAL_PORT>(ask);
    ASSERT_EQ(2u, ports.size());
    EXPECT_EQ(254, attributes.maximum);
    EXPECT_EQ(2u, attributes.fdiscs);
    const uint8_t name[] = {0x2E, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x01, 0x02};
    const uint8_t id[] = {0x10, 0x01, 0x02};
    EXPECT_EQ(0, memcmp(name, ports[1].portName, sizeof name));
    EXPECT_EQ(0, memcmp(id, ports[1].portId, sizeof id));
    EXPECT_EQ(3, ports[1].targets);
    EXPECT_EQ("Emulated virtual port 2", std::string(ports[1].symbolicName, 23));
    Set(3, "npiv_state", 3);
    EXPECT_EQ(HX_VIRTUAL_PORT_REJECTED, List<HX_VIRTUAL_PORT>(ask)[0].state);
    EXPECT_EQ(2u, attributes.fdiscRejects);
    adapters->SetLink(3, false);
    EXPECT_EQ(HX_VIRTUAL_PORT_LINK_DOWN, List<HX_VIRTUAL_PORT>(ask)[0].state);
    // Four pages; the last one is not full.
    vxemu::FieldRequest most = {3, {"npiv_in_use", 2, {254}}};
    adapters->Control<vxemu::CountReply>(vxemu::control::kSetField, most);
    const auto all = List<HX_VIRTUAL_PORT>(ask);
    ASSERT_EQ(254u, all.size());
    EXPECT_EQ(254, all[253].index);
    EXPECT_EQ("Emulated virtual port 25", std::string(all[253].symbolicName, 24));
}

TEST_F(EmulatedQueriesTest, LunsAreNamespacesOfOneController) {
    const uint32_t handle = Open(0);
    const auto ask = [&](auto* list, auto* count) {
        return HXGetNVMeNSInfo(handle, &kArray, list, count);
    };
    const auto ports = List<HX_NVME_PORT>(
        [&](auto* list, auto* count) { return HXRGetNVMeInfo(handle, list, count); });
    ASSERT_EQ(1u, ports.size());
    EXPECT_EQ(4u, ports[0].namespaces);
    HX_NVME_TARGET controller = {};
    EXPECT_EQ(kOk, HXGetNVMeTargetInfo(handle, &kArray, &controller));
    EXPECT_STREQ("nqn.2026-01.test.emulated:2b0002454d000100", controller.subsystemNqn);
    EXPECT_STREQ("nqn.2026-01.test.emulated:host-210002454d000100", controller.hostNqn);
    EXPECT_EQ(HX_NVME_LIVE, controller.state);
    EXPECT_EQ("EMU2b0002454d000100 ", std::string(controller.serial, 20));
    DESTINATIONADDRESS second = kArray;
    second.lun = 1;
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXGetNVMeTargetInfo(handle, &second, &controller));
    const auto namespaces = List<HX_NVME_NAMESPACE>(ask);
    ASSERT_EQ(4u, namespaces.size());
    EXPECT_EQ(3u, namespaces[2].id);
    EXPECT_EQ(4096u, namespaces[2].blockSize);
    EXPECT_EQ(131'072u, namespaces[2].used);
    EXPECT_NE(0, memcmp(namespaces[1].nguid, namespaces[2].nguid, 16));
    for (uint32_t number = 200; number >= 100; --number) {  // a second page, in rising order
        vxemu::LunRequest request = {};
        memcpy(request.target.portName, kArray.address, 8);
        request.lun = vxemu::DefaultLun(0, static_cast<uint16_t>(number));
        adapters->Control<vxemu::ChangeReply>(vxemu::control::kLunAdd, request);
    }
    const auto more = List<HX_NVME_NAMESPACE>(ask);
    ASSERT_EQ(105u, more.size());
    EXPECT_EQ(201u, more[104].id);
    EXPECT_EQ(101u, more[4].id);
    SetArray("present", 0);
    EXPECT_EQ(kOk, HXGetNVMeTargetInfo(handle, &kArray, &controller));
    EXPECT_EQ(HX_NVME_RECONNECTING, controller.state);
}

}  // namespace
