// Queries and commands around an update.
#include "machine/flash_driver.h"
#include "machine/flash_peer.h"

namespace {

using namespace support;

class FlashControlTest : public FlashTest {};

TEST_F(FlashControlTest, CapabilitiesByChipAndFirmware) {
    struct Row {
        uint16_t deviceId;
        const char* firmware;
        bool capable;
    };
    const Row rows[] = {{0x7740, "9.1.16.20", true},  {0x7740, "9.1.16.19", false},
                        {0x7780, "10", true},         {0x7702, "9.2", true},
                        {0x7620, "9.1.16.20", false}, {0x7400, "9.1.16.20", false}};
    for (const Row& row : rows) {
        Reopen("9.04.02", row.deviceId);
        SetText(port->node.firmwareVersion, row.firmware);
        port->AnswerProbes();
        Guarded<uint64_t> value;
        EXPECT_EQ(row.capable ? HX_STATUS{0} : HX_STATUS{HXMGT_NOT_SUPPORTED},
                  HXGetFlashUpdateCapabilities(handle, 0, value.Get()));
        EXPECT_EQ(row.capable ? 4u : 0u, *value.Get()) << row.deviceId << row.firmware;
        EXPECT_EQ(*value.Get(), Record(handle).qwFlashUpdateCapabilities);
        Record(handle).qwFlashUpdateCapabilities = 0;
    }
    uint64_t value = 7;
    port->On(command::ChipProperties, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetFlashUpdateCapabilities(handle, 0, &value));
    EXPECT_EQ(0u, value);
}

TEST_F(FlashControlTest, ActiveRegions) {
    port->On(command::PortDisableInfo, Reply{.data = {0}});
    port->On(command::ActiveRegions, Reply{.data = Counting(37)});
    GuardedBuffer regions(6);
    ASSERT_EQ(0u, HXGetActiveRegions(handle, 0, regions.Data()));
    EXPECT_EQ(Counting(6), regions.First(6));
    EXPECT_EQ(Bytes(37, 0x33), port->Last().Data());
    EXPECT_EQ(37u + 116, port->Last().outputSize);
    EXPECT_EQ(2u, port->Requests(command::PortDisableInfo).size());

    // A failed query passes on what came back, and zeros for the rest.
    port->On(command::ActiveRegions, Reply{.status = 16, .data = {9, 8}});
    EXPECT_EQ(HXMGT_BUFFER_TOO_SMALL, HXGetActiveRegions(handle, 0, regions.Data()));
    EXPECT_EQ(0, memcmp(regions.Data(), "\x09\x08\0\0\0\0", 6));
    // The state is asked twice; one answer is enough to refuse.
    for (const int disabledAnswer : {0, 1}) {
        int answers = 0;
        port->On(command::PortDisableInfo, [&](const SentRequest&) {
            return Reply{.data = {uint8_t{answers++ == disabledAnswer}}};
        });
        port->Forget();
        memset(regions.Data(), 0xEE, 6);
        EXPECT_EQ(HXMGT_PORT_DISABLED, HXGetActiveRegions(handle, 0, regions.Data()));
        EXPECT_EQ(2, answers);
        EXPECT_TRUE(port->Requests(command::ActiveRegions).empty());
        EXPECT_TRUE(regions.Holds(0xEE));
    }
    Reopen("9.04.02", 0x7620);
    EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXGetActiveRegions(handle, 0, regions.Data()));
}

TEST_F(FlashControlTest, LockdownState) {
    GuardedBuffer state(64);
    port->On(command::LockdownState, Reply{.data = Counting(64)});
    EXPECT_EQ(0u, HXGetAdapterLockdownState(handle, 0, state.Data()));
    EXPECT_EQ(Counting(64), state.First(64));
    EXPECT_EQ(Bytes(64, 0), port->Last().Data());
    port->On(command::LockdownState, Reply{.status = 42, .data = Counting(64)});
    EXPECT_EQ(HXMGT_FIRMWARE_LOCKDOWN, HXGetAdapterLockdownState(handle, 0, state.Data()));
    EXPECT_TRUE(state.Holds(0)) << "a status that brings no data";
    memset(state.Data(), 0xEE, 64);
    for (const uint32_t status : {1u, 12u, 21u}) {
        port->On(command::LockdownState, Reply{.status = status});
        EXPECT_EQ(HXMGT_NOT_SUPPORTED, HXGetAdapterLockdownState(handle, 0, state.Data()));
    }
    EXPECT_TRUE(state.Holds(0xEE));
}

TEST_F(FlashControlTest, ExpectationsAreNotedUnchecked) {
    EXPECT_EQ(0u, HXSendFlashUpdateFWAttributes(handle, 0, 0x1122334455667788, 30));
    EXPECT_EQ(0x1122334455667788u, Record(handle).qwExpectedFirmwareAttributes);
    EXPECT_EQ(30u, Record(handle).dwActivationTimeout);
    for (const uint32_t any : {0u, 40u, 64u, 65u, 0xFFFFFFFFu}) {
        EXPECT_EQ(0u, HXSendFlashUpdateFWAttributes(any, 0, 0, 0)) << any;
    }
    EXPECT_EQ(30u, Record(handle).dwActivationTimeout);
}

class FlashActivationTest : public FlashTest {
  protected:
    void SetUp() override {
        FlashTest::SetUp();
        second = &AddPort(4);
        other = &AddPort(6);
        secondHandle = Open(1);
        Open(2);
        SetSerial(*port, "ACTIVATE1");
        SetSerial(*second, "ACTIVATE1");
        SetSerial(*other, "ACTIVATE2");
        for (ScriptedPort* each : {port, second, other}) {
            each->Forget();
            each->On(command::RestartFirmware, Reply{});
        }
        properties::FirmwareReply firmware = {};
        firmware.activationAttributes = 0xCAFE;
        port->On(command::FirmwareProperties, Reply{.data = BytesOf(firmware)});
        HXSendFlashUpdateFWAttributes(handle, 0, 0xCAFE, 0);
    }
    // Restarts seen by the first, second and other port.
    std::string Restarts() {
        std::string text;
        for (ScriptedPort* each : {port, second, other}) {
            text += std::to_string(each->Requests(command::RestartFirmware).size());
        }
        return text;
    }

    ScriptedPort* second = nullptr;
    ScriptedPort* other = nullptr;
    uint32_t secondHandle = 0;
};

TEST_F(FlashActivationTest, EveryOpenPortOfTheAdapter) {
    ASSERT_EQ(0u, HXOnlineActivateFlashUpdate(handle));
    EXPECT_EQ("110", Restarts());
    EXPECT_EQ(Bytes{3}, second->Requests(command::RestartFirmware)[0].Data());
    // A port that refuses does not count.
    port->On(command::RestartFirmware, Reply{.status = 23});
    EXPECT_EQ(0u, HXOnlineActivateFlashUpdate(handle));
    EXPECT_EQ("220", Restarts());
    // Adapters without a serial number are not taken for one.
    for (ScriptedPort* each : {port, second, other}) {
        SetText(each->node.manufacturerAndSerial, "");
        each->AnswerProbes();
    }
    EXPECT_EQ(0u, HXOnlineActivateFlashUpdate(handle));
    EXPECT_EQ("320", Restarts());
    // A port that cannot be asked ends it.
    other->On(command::NodeProperties, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXOnlineActivateFlashUpdate(handle));
    EXPECT_EQ(0u, HXReloadNvramAndInitFw(secondHandle));
    EXPECT_EQ(Bytes{7}, second->Last().Data());
}

TEST_F(FlashActivationTest, NothingBeforeTheFirmwareIsTheExpectedOne) {
    for (const uint64_t expected : {0ull, 0xCAFDull, 0x1'0000'CAFEull}) {
        HXSendFlashUpdateFWAttributes(handle, 0, expected, 0);
        EXPECT_EQ(HXMGT_FLASH_UPDATE_NOT_ACTIVATED, HXOnlineActivateFlashUpdate(handle));
    }
    port->On(command::FirmwareProperties, Reply{.status = 22});
    EXPECT_EQ(HXMGT_DEVICE_OFFLINE, HXOnlineActivateFlashUpdate(handle));
    EXPECT_EQ("000", Restarts());
}

TEST_F(FlashActivationTest, TimeAllowedToAPort) {
    const UpdateClock clock;
    UpdateClock::Set(0xFFFFFFFF - 500);  // the clock wraps on the way
    uint32_t takes = 0;
    port->On(command::RestartFirmware, [&](const SentRequest&) {
        UpdateClock::Advance(takes);
        return Reply{};
    });
    for (const auto& [timeout, milliseconds, inTime] :
         {std::tuple(0u, 100000u, true), {5u, 5999u, true}, {5u, 6000u, false}}) {
        takes = milliseconds;
        second->Forget();
        HXSendFlashUpdateFWAttributes(handle, 0, 0xCAFE, timeout);
        EXPECT_EQ(inTime ? HX_STATUS{0} : HX_STATUS{HXMGT_ACTIVATION_TIMED_OUT},
                  HXOnlineActivateFlashUpdate(handle));
        EXPECT_EQ(inTime ? 1u : 0u, second->Requests(command::RestartFirmware).size());
    }
}

}  // namespace
