// Statistics, management address and transceiver memory of the emulated ports, both generations.
#include "emulator/emulator_model_fixture.h"
#include "flash/flash_records.h"
#include "statistics/statistics_records.h"

namespace {

using namespace emulator_test;

class EmulatorManagement : public ModelFixture {
  protected:
    HX_STATISTICS Statistics(uint32_t port) {
        return Ask(port, LinkStatistics, sizeof(HX_STATISTICS)).As<HX_STATISTICS>();
    }
    HX_STATISTICS LegacyStatistics() {
        return AskLegacy<statistics::LegacyStatisticsReply>(
                   static_cast<properties::LegacySelector>(
                       statistics::LegacyStatisticsSelector::Statistics))
            .counters;
    }
    HX_MGMT_ADDRESS Address(uint32_t port) {
        const Answer answer = Ask(port, ManagementAddress, 256);
        EXPECT_EQ(answer.Status(), Success);
        EXPECT_EQ(answer.data.size(), sizeof(HX_MGMT_ADDRESS)) << "no more than there is";
        return answer.As<HX_MGMT_ADDRESS>();
    }
    DriverStatus SetAddress(uint32_t port, const HX_MGMT_ADDRESS_SETTING& setting,
                            size_t length = sizeof(statistics::SetAddressRequest)) {
        Bytes input(length);
        std::memcpy(input.data(), &setting, std::min(length, sizeof setting));
        return Ask(port, SetManagementAddress, 0, input).Status();
    }
};

TEST_F(EmulatorManagement, BothGenerationsCountAlike) {
    host_.clock += 5000;
    const HX_STATISTICS first = LegacyStatistics();
    EXPECT_EQ(first.secondsSinceReset, 5u);
    const HX_STATISTICS second = LegacyStatistics();
    EXPECT_EQ(second.txFrames, first.txFrames + 1) << "the request itself";
    EXPECT_EQ(second.rxFrames, first.rxFrames + 2);
    EXPECT_EQ(second.txWords, 16 * second.txFrames);
    EXPECT_EQ(second.linkFailures, 0u);

    for (const uint32_t scsiPort : {9u, 3u}) {
        Link(scsiPort, 0);
        Link(scsiPort, 0);  // is down already
        Link(scsiPort, 1);
        Link(scsiPort, 0);
        Link(scsiPort, 1);
    }
    for (const HX_STATISTICS& counted : {LegacyStatistics(), Statistics(kNewest)}) {
        EXPECT_EQ(counted.linkFailures, 2u);
        EXPECT_EQ(counted.lossesOfSync, 2u);
        EXPECT_EQ(counted.lossesOfSignal, 2u);
        EXPECT_EQ(counted.invalidCrcs, 0u);
    }
    EXPECT_EQ(Statistics(1).linkFailures, 0u) << "another port";

    // Either of the two resets clears; the ports do not share them.
    host_.clock += 2000;
    for (const auto reset : {LegacyResetStatistics, LegacyResetStatistics2}) {
        AskPlain(kLegacy, reset, {}, 0);
        EXPECT_EQ(LegacyStatistics().linkFailures, 0u);
        EXPECT_EQ(LegacyStatistics().secondsSinceReset, 0u);
        Link(9, 0);
        Link(9, 1);
        EXPECT_EQ(LegacyStatistics().linkFailures, 1u);
    }
    EXPECT_EQ(Statistics(kNewest).linkFailures, 2u);
    EXPECT_EQ(Ask(kNewest, ResetStatistics, 0).Status(), Success);
    EXPECT_EQ(Statistics(kNewest).linkFailures, 0u);
    EXPECT_EQ(Ask(kNewest, LinkStatistics, 111).Status(), BufferTooSmall);
}

TEST_F(EmulatorManagement, AddressIsThePortsOwnAndCanBeSet) {
    const HX_MGMT_ADDRESS start = Address(kNewest);
    const auto profile = MakeProfile("lab");
    EXPECT_EQ(std::memcmp(start.portName, profile->ports[kNewest].portName, 8), 0);
    EXPECT_EQ(Bytes(start.ipVersion, start.ipVersion + 2), (Bytes{0, 1}));
    EXPECT_EQ(Bytes(start.udpPort, start.udpPort + 2), (Bytes{0, 161}));
    EXPECT_EQ(Bytes(start.ipAddress + 12, start.ipAddress + 16), (Bytes{192, 0, 2, 103}));
    EXPECT_EQ(start.portId[3], 0);
    EXPECT_EQ(Address(1).portId[3], 1) << "the second port of the adapter";
    EXPECT_EQ(Address(1).ipAddress[15], 104);

    const HX_MGMT_ADDRESS_SETTING setting = {
        {0, 2}, {0xAB, 0xCD}, {0x20, 1, 0xD, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF}};
    EXPECT_EQ(SetAddress(kNewest, setting), Success);
    const HX_MGMT_ADDRESS now = Address(kNewest);
    EXPECT_EQ(std::memcmp(now.ipVersion, setting.ipVersion, 2), 0);
    EXPECT_EQ(std::memcmp(now.udpPort, setting.udpPort, 2), 0);
    EXPECT_EQ(std::memcmp(now.ipAddress, setting.ipAddress, 16), 0);
    EXPECT_EQ(std::memcmp(now.portName, start.portName, 28), 0) << "the rest cannot be set";
    EXPECT_EQ(Address(1).ipAddress[15], 104) << "another port";

    HX_MGMT_ADDRESS_SETTING wrong = setting;
    wrong.udpPort[0] = 1;
    EXPECT_EQ(SetAddress(kNewest, wrong, 83), InvalidParameter);
    for (const uint8_t version : {0, 3}) {
        wrong.ipVersion[1] = version;
        EXPECT_EQ(SetAddress(kNewest, wrong), InvalidParameter);
    }
    wrong.ipVersion[0] = 1;
    wrong.ipVersion[1] = 1;
    EXPECT_EQ(SetAddress(kNewest, wrong), InvalidParameter);
    EXPECT_EQ(Address(kNewest).udpPort[0], 0xAB) << "refused, nothing set";
    EXPECT_EQ(Ask(kNewest, ManagementAddress, 51).Status(), BufferTooSmall);
    EXPECT_EQ(Ask(kLegacy, ManagementAddress, 256).Status(), InvalidRequest);
}

TEST_F(EmulatorManagement, EmptyCageHasNoTransceiver) {
    const auto profile = MakeProfile("lab");
    profile->ports[kNewest].transceiverType[0] = 0;
    Start(*profile);
    const Answer pages = Ask(kNewest, SfpRead, 512, Bytes(512));
    EXPECT_EQ(pages.Status(), MailboxFailed);
    EXPECT_EQ(pages.envelope.ext.detailStatus, 0x4005u);
    flash::TwoWireRecord request = {};
    request.device = 0xA0;
    request.length = 1;
    const Answer byte = Ask(kNewest, I2cRead, sizeof request, BytesOf(request));
    EXPECT_EQ(byte.Status(), MailboxFailed);
    EXPECT_EQ(byte.envelope.ext.detailStatus, 0x4002u);
    EXPECT_EQ(byte.As<flash::TwoWireRecord>().deviceStatus, 1) << "nobody acknowledges";

    // The adapter's own devices are still there, and so is the other port's transceiver.
    request.options = 0x2000;
    EXPECT_EQ(Ask(kNewest, I2cRead, sizeof request, BytesOf(request)).Status(), Success);
    EXPECT_EQ(Ask(1, SfpRead, 512, Bytes(512)).data.size(), 512u);
}

}  // namespace
