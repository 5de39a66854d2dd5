// The library over the emulated adapters: what one side asks and the other answers fits together.

#include "support/emulated_adapters.h"
#include "support/event_peer.h"
#include "support/library_fixture.h"

namespace {

using namespace support;
using vxemu::FaultKind;

class EmulatedAdaptersTest : public LibraryTest {
  protected:
    void Start(const char* profileName) {
        profile = std::make_unique<vxemu::Profile>();
        ASSERT_TRUE(vxemu::FillBuiltInProfile(profileName, *profile));
        Start();
    }
    void Start() { adapters = std::make_unique<EmulatedAdapters>(system, *profile); }
    void TearDown() override {
        LibraryTest::TearDown();
        adapters.reset();
    }
    // A fault of this kind for every request of any port.
    void Break(FaultKind kind, uint32_t value, uint32_t times = 0, uint32_t status = 0) {
        vxemu::FaultRule rule = {};
        rule.port = vxemu::kAnyPort;
        rule.code = vxemu::kAnyCode;
        rule.subCode = vxemu::kAnySubCode;
        rule.times = times;
        rule.kind = kind;
        rule.value = value;
        rule.status = status;
        ASSERT_NE(0u, adapters->AddFault(rule));
    }

    std::unique_ptr<vxemu::Profile> profile;
    std::unique_ptr<EmulatedAdapters> adapters;
};

TEST_F(EmulatedAdaptersTest, LabIsSeenThroughTheLibrary) {
    Start("lab");
    struct Row {
        uint32_t scsiPort;
        const char* model;
        uint32_t version;
        const char* firmware;
        const char* serial;
    };
    const Row rows[] = {{3, "7740", 90402, "9.12.01", "EMU7740A0001"},
                        {4, "7740", 90402, "9.12.01", "EMU7740A0001"},
                        {6, "7404", 80203, "8.01.02", "EMU7404A0002"},
                        {9, "7200", 70411, "3.3.25", "E00003"}};
    for (uint32_t index = 0; index < 4; ++index) {
        SCOPED_TRACE(index);
        const Row& row = rows[index];
        const vxemu::PortProfile& expected = profile->ports[index];
        const uint32_t handle = Open(index);
        EXPECT_EQ(row.scsiPort, Record(handle).dwScsiPort);
        EXPECT_STREQ(row.model, Record(handle).szModel);
        EXPECT_EQ(row.version, Record(handle).dwDriverVersion);

        HX_NODE_PROPERTY node = {};
        HX_PORT_PROPERTY port = {};
        HX_CHIP_PROPERTY chip = {};
        HX_DRIVER_PROPERTY driver = {};
        HX_FIRMWARE_PROPERTY firmware = {};
        EXPECT_EQ(0u, HXGetHbaDeviceNodeProperty(handle, &node));
        EXPECT_EQ(0u, HXGetHbaDevicePortProperty(handle, 0, &port));
        EXPECT_EQ(0u, HXGetHbaDeviceChipProperty(handle, &chip));
        EXPECT_EQ(0u, HXGetHbaDeviceDriverProperty(handle, &driver));
        EXPECT_EQ(0u, HXGetHbaDeviceFirmwareProperty(handle, &firmware));
        EXPECT_STREQ("Tarnel, Inc.", node.manufacturer);
        EXPECT_STREQ(row.serial, node.serialNumber);
        EXPECT_STREQ(row.firmware, node.firmwareVersion);
        EXPECT_STREQ(row.firmware, firmware.version);
        EXPECT_EQ(0, memcmp(expected.portName, port.portName, 8));
        EXPECT_EQ(0, memcmp(expected.portId, port.portId, 3));
        EXPECT_EQ(4u, port.discoveredDevices);
        EXPECT_EQ(0x1ED0, chip.vendorId);
        EXPECT_EQ(std::stoul(row.model, nullptr, 16), chip.deviceId);
        const bool legacy = row.version < 70503;
        EXPECT_EQ(legacy ? 0 : HX_PORT_STATE_ONLINE, port.state);
        EXPECT_EQ(legacy ? 0 : 1, port.role);
        EXPECT_EQ(0u, HXVerifyHbaState(handle));
        EXPECT_EQ(legacy ? HX_STATUS{HXMGT_INVALID_REQUEST} : HX_STATUS{0},
                  HXGetHbaPortDisableInfo(handle));
    }
    uint32_t handle = 0;
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(4, &handle));
}

TEST_F(EmulatedAdaptersTest, LinkGoesDownAndUp) {
    Start("lab");
    const uint32_t handle = Open(0);
    ASSERT_EQ(0u, HXEnableAen(handle));
    HX_PORT_PROPERTY port = {};
    adapters->SetLink(3, false);
    EXPECT_EQ(0u, HXGetHbaDevicePortProperty(handle, 0, &port));
    EXPECT_EQ(HX_PORT_STATE_LINK_DOWN, port.state);
    EXPECT_EQ(0u, HXForceZetaAEN(static_cast<int32_t>(handle)));
    adapters->SetLink(3, true);
    EXPECT_EQ(0u, HXGetHbaDevicePortProperty(handle, 0, &port));
    EXPECT_EQ(HX_PORT_STATE_ONLINE, port.state);
    const Fetched fetched = Fetch(handle, 32);
    std::vector<uint32_t> types;
    for (const HX_EVENT& event : fetched.events) {
        types.push_back(event.type);
    }
    EXPECT_EQ((std::vector<uint32_t>{HX_EVENT_LINK_DOWN, HX_EVENT_TEST, HX_EVENT_LINK_UP}), types);
    EXPECT_EQ(0u, HXDisableAen(handle));

    // The old driver tells of a link that is down, and of nothing else.
    const uint32_t old = Open(3);
    adapters->SetLink(9, false);
    EXPECT_EQ(0u, HXGetHbaDevicePortProperty(old, 0, &port));
    EXPECT_EQ(HX_PORT_STATE_LINK_DOWN, port.state);
}

TEST_F(EmulatedAdaptersTest, DriverWithoutTheSecondPortVersion) {
    profile = std::make_unique<vxemu::Profile>();
    ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
    profile->ports[0].knowsSubCode10 = 0;
    Start();
    const uint32_t handle = Open(0);
    Guarded<HX_PORT_PROPERTY> port;
    EXPECT_EQ(HXMGT_INVALID_SUBCODE, HXGetHbaDevicePortPropertyV2(handle, 0, port.Get()));
    EXPECT_EQ(0u, HXGetHbaDevicePortProperty(handle, 0, port.Get()));
    EXPECT_EQ(0, memcmp(profile->ports[0].portName, port->portName, 8));
    EXPECT_TRUE(port.Raw().Holds(0xEE, 82, 112));
}

// Whatever a driver does, no query writes outside its record, hangs or ends the process.
TEST_F(EmulatedAdaptersTest, EveryQueryUnderEveryFault) {
    Start("lab");
    const std::vector<uint32_t> handles = {Open(0), Open(2), Open(3)};
    const auto askAll = [&](uint32_t handle) {
        Guarded<HX_NODE_PROPERTY> node;
        Guarded<HX_PORT_PROPERTY> port;
        Guarded<HX_CHIP_PROPERTY> chip;
        Guarded<HX_DRIVER_PROPERTY> driver;
        Guarded<HX_FIRMWARE_PROPERTY> firmware;
        GuardedBuffer bios(81);
        GuardedBuffer events(64);
        uint32_t count = 0;
        std::vector<HX_STATUS> statuses = {HXGetHbaDeviceNodeProperty(handle, node.Get()),
                                           HXGetHbaDevicePortProperty(handle, 0, port.Get()),
                                           HXGetHbaDeviceChipProperty(handle, chip.Get()),
                                           HXGetHbaDeviceDriverProperty(handle, driver.Get()),
                                           HXGetHbaDeviceFirmwareProperty(handle, firmware.Get()),
                                           VXUpdateAdapterModelInBios(handle, bios.Data()),
                                           HXVerifyHbaState(handle),
                                           HXGetHbaPortDisableInfo(handle)};
        HXGetAen(handle, events.Data(), 64, &count);
        EXPECT_LE(count, 4u);
        EXPECT_LE(GetDriverType(handle), 2);
        return statuses;
    };
    for (const uint32_t handle : handles) {
        const std::vector<HX_STATUS> healthy = askAll(handle);
        for (uint32_t status = 1; status < 48; ++status) {
            Break(FaultKind::Status, status);
            for (const HX_STATUS seen : askAll(handle)) {
                // Status 15 with the SCSI status 0 is a success.
                EXPECT_TRUE(seen != 0 || status == 15) << status;
            }
            adapters->ClearFaults();
        }
        const std::pair<FaultKind, uint32_t> damages[] = {
            {FaultKind::Corrupt, 0},    {FaultKind::LieLength, 0}, {FaultKind::Short, 1},
            {FaultKind::Short, 100000}, {FaultKind::Long, 1},      {FaultKind::Long, 0x7FFFFFFF}};
        for (const auto& [kind, value] : damages) {
            Break(kind, value);
            askAll(handle);
            adapters->ClearFaults();
        }
        EXPECT_EQ(healthy, askAll(handle));
    }
    // A driver that fails the probes, in each of these ways.
    for (const uint32_t status : {1u, 12u, 20u}) {
        Break(FaultKind::Status, status);
        uint32_t handle = 0;
        EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, HXOpenDevice(0, &handle));
        adapters->ClearFaults();
    }
}

}  // namespace
