// The library over the emulated adapters: what one side asks and the other answers fits together.

#include "machine/emulated_adapters.h"
#include "support/library_fixture.h"

namespace {

using namespace support;
using vxemu::FaultKind;

class EmulatedAdaptersTest : public LibraryTest {
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

    std::unique_ptr<EmulatedAdapters> adapters;
};

// Whatever a driver does, no query writes outside its record, hangs or ends the process.
TEST_F(EmulatedAdaptersTest, EveryQueryUnderEveryFault) {
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
