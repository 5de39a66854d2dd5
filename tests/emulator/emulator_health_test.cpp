// Counters, link health, congestion and the loop of the emulated ports, by a clock of the test's.
#include "emulator/emulator_model_fixture.h"
#include "passthru/fabric_records.h"
#include "passthru/scsi_records.h"
#include "statistics/fabric_records.h"
#include "statistics/health_records.h"
#include "statistics/statistics_records.h"
#include "transport/mailbox_request.h"

namespace {

using namespace emulator_test;
using statistics::MailboxCommand;

constexpr uint8_t kArrayA[8] = {0x2B, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x01, 0x00};
constexpr uint8_t kLostArray[8] = {0x2B, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x05, 0x00};

class EmulatorHealth : public ModelFixture {
  protected:
    static Bytes BlockOf(const uint8_t* portName, uint16_t page = 0) {
        properties::AddressBlock block = {};
        if (portName != nullptr) {
            std::memcpy(block.address, portName, sizeof block.address);
            block.driverType = static_cast<uint16_t>(properties::DriverAddress::PortName);
        }
        block.page = page;
        return BytesOf(block);
    }
    template <typename Record>
    Record Get(Command command, const Bytes& input = {}, uint32_t port = kNewest) {
        const Answer answer = Ask(port, command, sizeof(Record), input);
        EXPECT_EQ(answer.Status(), Success);
        return answer.As<Record>();
    }
    HX_PORT_STATISTICS_V2 Counters(const uint8_t* portName = nullptr) {
        return Get<HX_PORT_STATISTICS_V2>(DestinationStatisticsV2, BlockOf(portName));
    }
    HX_SCM_STATISTICS Scm() { return Get<HX_SCM_STATISTICS>(ScmStatistics); }
    HX_BBCR_DATA CreditRecovery(uint32_t port = kNewest) {
        return Get<HX_BBCR_DATA>(BbCreditRecovery, BlockOf(nullptr), port);
    }
    template <typename Record>
    Record Private(Command command, uint32_t options = 0) {
        Record record = {};
        record.options = options;
        return Get<Record>(command, BytesOf(record));
    }
    // The registers that come back, the completion first.
    std::vector<uint16_t> RunMailbox(MailboxCommand command, const std::vector<uint16_t>& in = {},
                                     uint32_t port = kNewest) {
        transport::MailboxRequest request = {};
        request.inCount = static_cast<uint16_t>(1 + in.size());
        request.outCount = 8;
        request.in[0] = static_cast<uint16_t>(command);
        std::copy(in.begin(), in.end(), request.in + 1);
        const Answer answer = Ask(port, Mailbox, sizeof request, BytesOf(request));
        const auto reply = answer.As<transport::MailboxRequest>();
        EXPECT_EQ(answer.Status(), reply.out[0] == 0x4000 ? Success : MailboxFailed);
        EXPECT_EQ(answer.envelope.ext.detailStatus, reply.out[0] == 0x4000 ? 0u : reply.out[0]);
        return {reply.out, reply.out + 8};
    }
    HX_BEACON UseBeacon(statistics::BeaconOperation operation, uint32_t on = 0,
                        uint32_t seconds = 0, DriverStatus expected = Success) {
        statistics::BeaconRequest request = {};
        request.mark = statistics::kBeaconMark;
        request.operation = static_cast<uint32_t>(operation);
        request.beacon.on = on;
        request.beacon.seconds = seconds;
        const Answer answer = Ask(kNewest, NodeProperties, sizeof request, BytesOf(request));
        EXPECT_EQ(answer.Status(), expected);
        return expected == Success ? answer.As<statistics::BeaconRequest>().beacon : HX_BEACON{};
    }
    Completion Raise(const char* key, uint64_t n, const uint8_t* portName = nullptr) {
        vxemu::CounterRequest request = {};
        request.scsiPort = 3;
        std::strcpy(request.key, key);
        request.n = n;
        if (portName != nullptr) {
            std::memcpy(request.target.portName, portName, 8);
        }
        return Control(control::kRaiseCounter, request);
    }
    void SetScm(uint8_t setting) {
        passthru::ScmRequest request = {};
        request.values[0] = setting;
        ASSERT_EQ(Ask(kNewest, ScmManagement, 0, BytesOf(request)).Status(), Success);
    }
    void Scsi(const Bytes& cdb, passthru::ScsiDirection direction, const Bytes& out,
              uint32_t room) {
        passthru::ScsiRequest request = {};
        request.addressType = static_cast<uint16_t>(passthru::DriverAddress::PortName);
        std::memcpy(request.address, kArrayA, sizeof kArrayA);
        request.direction = static_cast<uint8_t>(direction);
        request.cdbLength = static_cast<uint8_t>(cdb.size());
        std::copy(cdb.begin(), cdb.end(), request.cdb);
        EXPECT_EQ(Ask(kNewest, ScsiPassThrough, static_cast<uint32_t>(sizeof request) + room,
                      BytesOf(request, out))
                      .Status(),
                  Success);
    }
};

TEST_F(EmulatorHealth, CountersFollowTrafficTimeAndTheLink) {
    const Bytes read = {0x28, 0, 0, 0, 0, 0, 0, 0, 8, 0};
    Bytes write = read;
    write[0] = 0x2A;
    Scsi(read, passthru::ScsiDirection::In, {}, 4096);
    Scsi(write, passthru::ScsiDirection::Out, Bytes(4096), 0);
    Scsi({0, 0, 0, 0, 0, 0}, passthru::ScsiDirection::None, {}, 0);
    Link(3, 0);
    Link(3, 1);
    host_.clock += 25'000;
    const HX_PORT_STATISTICS_V2 own = Counters();
    for (const HX_PROTOCOL_STATISTICS& fcp : {own.fcp, Counters(kArrayA).fcp}) {
        EXPECT_EQ(fcp.inputRequests, 1u);
        EXPECT_EQ(fcp.outputRequests, 1u);
        EXPECT_EQ(fcp.controlRequests, 1u);
        EXPECT_EQ(fcp.inputBytes, 4096u);
        EXPECT_EQ(fcp.outputBytes, 4096u);
    }
    EXPECT_EQ(own.port.txFrames, 25u + 4 + 2) << "a second, a request, data of two frames";
    EXPECT_EQ(own.port.correctedFecBlocks, 2u);
    EXPECT_EQ(own.port.nosCount, 1u);
    EXPECT_EQ(own.flogis, 2u);
    const HX_PORT_STATISTICS_V2 remote = Counters(kArrayA);
    EXPECT_EQ(remote.port.txFrames, 3u + 2);
    EXPECT_EQ(remote.port.rxFrames, 6u + 2);
    EXPECT_EQ(remote.port.linkFailures, 1u);
    EXPECT_EQ(remote.port.invalidCrcs, 6u);
    EXPECT_EQ(remote.port.secondsSinceReset, HX_NOT_COUNTED);
    EXPECT_EQ(remote.plogis, HX_NOT_COUNTED);
    EXPECT_EQ(remote.reserved376[0], 0);

    // Every form says the same; the first two wrap.
    ASSERT_EQ(Raise("invalid_crcs", 0x1'0000'0002, kArrayA), Done);
    ASSERT_EQ(Raise("tx_frames", 0x1'0000'0000), Done);
    const auto wide = Get<HX_PORT_STATISTICS>(DestinationStatisticsV1, BlockOf(kArrayA));
    EXPECT_EQ(wide.invalidCrcs, 0x1'0000'0008u);
    const auto wrapped = Get<HX_PORT_STATISTICS>(DestinationStatistics, BlockOf(kArrayA));
    EXPECT_EQ(wrapped.invalidCrcs, 8u);
    EXPECT_EQ(wrapped.lipCount, HX_NOT_COUNTED);
    const auto narrow = Get<HX_STATISTICS>(PortStatistics, BlockOf(kArrayA));
    EXPECT_EQ(narrow.invalidCrcs, 8u);
    EXPECT_EQ(narrow.lipCount, 0u);
    EXPECT_GT(Counters().port.txFrames, 0x1'0000'0000u);
    EXPECT_LT(Get<HX_STATISTICS>(LinkStatistics).txFrames, 100u);

    ASSERT_EQ(Ask(kNewest, ResetStatistics, 0).Status(), Success);
    EXPECT_EQ(Counters().fcp.inputBytes, 0u);
    EXPECT_EQ(Counters().port.nosCount, 0u);
    EXPECT_EQ(Counters(kArrayA).port.txFrames, remote.port.txFrames) << "not the port's";

    const Command byDestination[] = {PortStatistics, DestinationStatistics, DestinationStatisticsV1,
                                     DestinationStatisticsV2};
    for (const Command& command : byDestination) {
        EXPECT_EQ(Ask(kNewest, command, 496, BlockOf(kLostArray)).Status(), DeviceNotFound);
        EXPECT_EQ(Ask(kNewest, command, 496, Bytes(15)).Status(), InvalidParameter);
        EXPECT_EQ(Ask(kLegacy, command, 496, BlockOf(nullptr)).Status(), InvalidRequest);
    }
    EXPECT_EQ(Ask(kNewest, DestinationStatistics, 136, BlockOf(nullptr, 2)).Status(),
              InvalidParameter);
}

TEST_F(EmulatorHealth, CountersAreRaisedByName) {
    EXPECT_EQ(Raise("no_such", 1), ShortBuffer);
    EXPECT_EQ(Raise("flogis", 1, kArrayA), ShortBuffer) << "not counted for others";
    const uint8_t nobody[8] = {1};
    EXPECT_EQ(Raise("invalid_crcs", 1, nobody), NoDevice);
    ASSERT_EQ(Raise("invalid_words", 5), Done);
    ASSERT_EQ(Raise("fec_uncorrectable", 2), Done);
    ASSERT_EQ(Raise("credits_recovered", 3), Done);
    ASSERT_EQ(Raise("queue_full", 4), Done);
    EXPECT_EQ(Counters().port.errorFrames, 5u);
    EXPECT_EQ(Counters().port.uncorrectableFecBlocks, 2u);
    EXPECT_EQ(CreditRecovery().creditsRecovered, 3u);
    EXPECT_EQ(Private<HX_PRIVATE_STATISTICS>(PrivateStatistics).queueFull, 4u);
}

TEST_F(EmulatorHealth, CongestionIsToldAndThrottles) {
    const HX_SCM_STATISTICS start = Scm();
    EXPECT_EQ(start.state, 3u);
    EXPECT_EQ(start.warningInterval, 1000u);
    EXPECT_EQ(start.lastEvent, HX_NOT_COUNTED);
    EXPECT_EQ(start.allowedPercent, 100);
    ASSERT_EQ(Raise("credit_stall", 0), Done);
    ASSERT_EQ(Raise("alarm_signals", 0), Done);
    EXPECT_EQ(Scm().severity, 0) << "none came";
    EXPECT_EQ(Scm().lastEvent, HX_NOT_COUNTED);
    ASSERT_EQ(Raise("credit_stall", 2), Done);
    host_.clock += 3000;
    EXPECT_EQ(Scm().severity, 1);
    EXPECT_EQ(Scm().allowedPercent, 100) << "the setting is off";
    SetScm(1);
    EXPECT_EQ(Scm().state, 15u);
    EXPECT_EQ(Scm().allowedPercent, 75);
    ASSERT_EQ(Raise("alarm_signals", 1), Done);
    EXPECT_EQ(Scm().allowedPercent, 50);
    ASSERT_EQ(Raise("oversubscription", 1), Done);
    EXPECT_EQ(Scm().severity, 2) << "the milder event does not end the other";
    host_.clock += 10'000;
    ASSERT_EQ(Raise("congestion_cleared", 1), Done);
    host_.clock += 5000;
    ASSERT_EQ(Raise("delivery_timeout", 7, kArrayA), Done);
    const HX_SCM_STATISTICS now = Scm();
    EXPECT_EQ(now.severity, 0);
    EXPECT_EQ(now.state, 11u);
    EXPECT_EQ(now.throttledSeconds, 10u);
    EXPECT_EQ(now.throttledRequests, 4u);
    EXPECT_EQ(now.fpins.creditStall, 2u);
    EXPECT_EQ(now.peerFpins.deliveryTimeout, 7u);
    EXPECT_EQ(now.fpinsReceived, 2u + 1 + 1 + 7);
    EXPECT_EQ(now.lastEvent, 18u);
    const auto page = Get<HX_PORT_SCM_STATISTICS>(DestinationStatisticsV1, BlockOf(kArrayA, 1));
    EXPECT_EQ(page.mark, HX_SCM_MARK);
    EXPECT_EQ(page.fpins.deliveryTimeout, 7u);
    EXPECT_EQ(page.fpins.creditStall, 0u);

    ASSERT_EQ(Ask(kNewest, ResetStatistics, 0).Status(), Success);
    EXPECT_EQ(Scm().fpinsReceived, 0u);
    EXPECT_EQ(Scm().throttledSeconds, 0u);
    EXPECT_EQ(Scm().lastEvent, HX_NOT_COUNTED);
    Link(3, 0);
    EXPECT_EQ(Scm().state, 8u);
    EXPECT_EQ(Scm().alarmInterval, 0u);
    // Whatever ends the throttling ends the counting.
    Link(3, 1);
    ASSERT_EQ(Raise("lost_credit", 1), Done);
    host_.clock += 2000;
    Set(3, "scm", 0);
    host_.clock += 50'000;
    Set(3, "scm", 1);
    EXPECT_EQ(Scm().throttledSeconds, 2u);
    Set(3, "scm", 0);
    for (const uint32_t port : {kNewest, kLargeRom}) {
        EXPECT_EQ(Ask(port, ScmStatistics, 512).Status(), UnsupportedSubCode);
        EXPECT_EQ(Ask(port, DestinationStatistics, 136, BlockOf(nullptr, 1)).Status(),
                  UnsupportedSubCode);
    }
}

TEST_F(EmulatorHealth, PrivateCountersStartAgainBehindAReading) {
    for (const auto& [kind, status] :
         {std::pair{FaultKind::Busy, 0u}, std::pair{FaultKind::Detail, 11u},
          std::pair{FaultKind::Short, 0u}}) {
        AddFault({3, kAnyCode, kAnySubCode, 0, 1, kind, 1, status});
        Ask(kNewest, PortProperties, 256);
    }
    Link(3, 0);
    host_.clock += 9000;
    const auto first = Private<HX_PRIVATE_STATISTICS>(PrivateStatistics, HX_PRIVATE_RESTART);
    EXPECT_EQ(first.options, 0u);
    EXPECT_EQ(first.counters, 19u);
    EXPECT_EQ(first.secondsSinceReset, 9u);
    EXPECT_EQ(first.commandsStarted, 4u);
    EXPECT_EQ(first.commandsCompleted, 4u);
    EXPECT_EQ(first.interrupts, 4u);
    EXPECT_EQ(first.busyRetries, 1u);
    EXPECT_EQ(first.mailboxFailures, 1u);
    EXPECT_EQ(first.underruns, 1u);
    EXPECT_EQ(first.linkDowns, 1u);
    const auto second = Private<HX_PRIVATE_STATISTICS>(PrivateStatistics);
    EXPECT_EQ(second.commandsStarted, 1u);
    EXPECT_EQ(second.busyRetries, 0u);
    EXPECT_EQ(second.secondsSinceReset, 0u);

    const auto times = Private<HX_PRIVATE_STATISTICS_EX>(PrivateStatisticsEx);
    uint64_t requests = 0;
    for (uint32_t bucket = 0; bucket < 24; ++bucket) {
        EXPECT_TRUE(times.reads[bucket] == 0 || (bucket >= 6 && bucket <= 9)) << bucket;
        requests += times.reads[bucket];
    }
    EXPECT_EQ(requests, 4u) << "those answered: neither the one refused as busy nor this";
    EXPECT_GE(times.readTime, 64 * requests);
    EXPECT_LT(times.longestRead, 1024u);
    Link(3, 1);
    Scsi({0x2A, 0, 0, 0, 0, 0, 0, 0, 1, 0}, passthru::ScsiDirection::Out, Bytes(512), 0);
    EXPECT_GE(Private<HX_PRIVATE_STATISTICS_EX>(PrivateStatisticsEx, 1).writeTime, 64u);
    EXPECT_EQ(Private<HX_PRIVATE_STATISTICS_EX>(PrivateStatisticsEx).writeTime, 0u);
    for (const Command command : {PrivateStatistics, PrivateStatisticsEx}) {
        Bytes wrong(512);
        EXPECT_EQ(Ask(kNewest, command, 512, Bytes(511)).Status(), InvalidParameter);
        wrong[0] = 2;
        EXPECT_EQ(Ask(kNewest, command, 512, wrong).Status(), InvalidParameter);
    }
}

TEST_F(EmulatorHealth, CreditRecoveryTellsWhyItIsOff) {
    host_.clock += 6'400'000;
    const HX_BBCR_DATA on = CreditRecovery();
    EXPECT_EQ(on.state, HX_BBCR_ON);
    EXPECT_EQ(on.configured, 4);
    EXPECT_EQ(on.attached, 6);
    EXPECT_EQ(on.negotiated, 6);
    EXPECT_EQ(on.scsSent, 100u);
    const struct {
        const char* field;
        uint32_t value, size, reason;
    } rows[] = {{"bbcr_reason", 4, 1, HX_BBCR_REFUSED},
                {"bbcr", 0, 1, HX_BBCR_NOT_CONFIGURED},
                {"topology", 2, 2, HX_BBCR_LOOP},
                {"state", 2, 2, HX_BBCR_LINK_DOWN}};
    for (const auto& row : rows) {
        Set(3, row.field, row.value, row.size);
        const HX_BBCR_DATA off = CreditRecovery();
        EXPECT_EQ(off.state, HX_BBCR_OFF);
        EXPECT_EQ(off.reason, row.reason);
        EXPECT_EQ(off.negotiated, 0);
    }
    EXPECT_EQ(CreditRecovery(kLargeRom).state, HX_BBCR_NOT_SUPPORTED);
}

TEST_F(EmulatorHealth, TemperatureMovesAndIsRemembered) {
    const auto sample = [&] { return RunMailbox(MailboxCommand::BoardTemperature); };
    int lowest = 0x7FFF, highest = 0;
    for (uint32_t second = 0; second < 120; ++second, host_.clock += 1000) {
        const int now = sample()[1];
        lowest = std::min(lowest, now);
        highest = std::max(highest, now);
    }
    EXPECT_EQ(lowest, 52 * 256);
    EXPECT_EQ(highest, 58 * 256);
    Set(3, "temperature", 90);
    const std::vector<uint16_t> hot = sample();
    EXPECT_EQ(hot[2], 85 * 256);
    EXPECT_EQ(hot[4], 105 * 256);
    EXPECT_EQ(hot[6], 0);
    host_.clock += 5000;
    EXPECT_EQ(RunMailbox(MailboxCommand::BoardTemperature, {}, 1)[6], 5) << "of the same board";
    Set(3, "temperature", 20);
    Set(3, "temperature_critical", 0);
    host_.clock += 5000;
    const std::vector<uint16_t> cool = sample();
    EXPECT_GE(cool[5], 87 * 256);
    EXPECT_EQ(cool[4], 0) << "no limit";
    host_.clock += 5000;
    EXPECT_EQ(sample()[6], 5);
    EXPECT_EQ(RunMailbox(MailboxCommand::BoardTemperature, {}, kLargeRom)[0], 0x4000);
    StartClassic();
    EXPECT_EQ(RunMailbox(MailboxCommand::BoardTemperature, {}, kLegacy)[0], 0x4001);
    Set(3, "temperature", 0);
    host_.clock = 90'000;  // the lowest point
    EXPECT_EQ(sample()[5], static_cast<uint16_t>(-3 * 256)) << "highest so far, below zero";
}

TEST_F(EmulatorHealth, RegistersKeepWhatIsWrittenUntilAReset) {
    using enum MailboxCommand;
    const auto eye = [&](uint32_t lane) {
        return Get<statistics::SerdesReply>(SerdesParameters).entries[lane];
    };
    EXPECT_EQ(RunMailbox(ReadSerdesRegister, {0})[1], 0x7740);
    EXPECT_EQ(RunMailbox(WriteSerdesRegister, {0x10, 700})[0], 0x4000);
    EXPECT_EQ(RunMailbox(WriteLaneRegister, {3, 0x24, 0, 0x5678, 0x1234})[0], 0x4000);
    EXPECT_EQ(RunMailbox(ReadLaneRegister, {3, 0x24, 0})[2], 0x1234);
    EXPECT_EQ(RunMailbox(ReadLaneRegister, {2, 0x24, 0})[2], 0);
    for (const uint16_t holdsNothing : {0x02, 0x0F, 0x14, 0x1F, 0x25, 0x3F}) {
        EXPECT_EQ(RunMailbox(WriteSerdesRegister, {holdsNothing, 1})[0], 0x4000);
        EXPECT_EQ(RunMailbox(ReadSerdesRegister, {holdsNothing})[1], 0) << holdsNothing;
    }
    EXPECT_EQ(eye(0).txAmplitude, 700);
    EXPECT_LE(eye(0).eyeHeight, 20);
    EXPECT_GE(eye(0).eyeHeight, 16);
    EXPECT_GE(eye(1).eyeHeight, 116);
    EXPECT_EQ(eye(1).txPost, -6);
    EXPECT_EQ(RunMailbox(WriteI2cRegister, {0x18, 0x10, 0xAB})[0], 0x4000);
    EXPECT_EQ(RunMailbox(ReadI2cRegister, {0x18, 0x10})[1], 0xAB);
    EXPECT_EQ(RunMailbox(ReadI2cRegister, {0x18, 0x00})[1], 0x45);
    const std::pair<MailboxCommand, std::vector<uint16_t>> refused[] = {
        {WriteSerdesRegister, {0x01, 1}},      {WriteSerdesRegister, {0x40, 1}},
        {ReadSerdesRegister, {0x40}},          {ReadLaneRegister, {4, 0, 0}},
        {ReadLaneRegister, {0, 0, 1}},         {WriteLaneRegister, {4, 2, 0, 0, 0}},
        {WriteI2cRegister, {0x18, 0x0F, 1}},   {WriteI2cRegister, {0x18, 0x100, 1}},
        {WriteI2cRegister, {0x18, 0x10, 256}}, {ReadI2cRegister, {0x18, 0x100}},
    };
    for (const auto& [command, in] : refused) {
        EXPECT_EQ(RunMailbox(command, in)[0], 0x4006);
    }
    EXPECT_EQ(RunMailbox(ReadI2cRegister, {0x19, 0})[0], 0x4005);
    EXPECT_EQ(RunMailbox(ReadSerdesRegister, {0}, kLargeRom)[0], 0x4001);
    Reset(3);
    EXPECT_EQ(eye(0).txAmplitude, 800);
    EXPECT_EQ(RunMailbox(ReadI2cRegister, {0x18, 0x10})[1], 0);
    EXPECT_EQ(Private<HX_PRIVATE_STATISTICS>(PrivateStatistics).mailboxFailures, 11u);
    Link(3, 0);
    EXPECT_EQ(eye(0).locked, 0);
    EXPECT_EQ(eye(0).eyeHeight, 0);
}

TEST_F(EmulatorHealth, BeaconBlinksAndEnds) {
    using enum statistics::BeaconOperation;
    host_.clock = 10'000;
    EXPECT_EQ(UseBeacon(Read).leds, uint32_t{HX_BEACON_GREEN});
    EXPECT_EQ(UseBeacon(Set, 1, 60).seconds, 60u);
    EXPECT_EQ(UseBeacon(Read).leds, uint32_t{HX_BEACON_AMBER});
    host_.clock += 500;
    EXPECT_EQ(UseBeacon(Read).leds, uint32_t{HX_BEACON_GREEN});
    EXPECT_EQ(UseBeacon(Read).seconds, 60u) << "begun seconds count";
    UseBeacon(Set, 2, 0, InvalidParameter);
    UseBeacon(Set, 0, 86'401, InvalidParameter);
    UseBeacon(statistics::BeaconOperation{3}, 0, 0, InvalidParameter);
    host_.clock += 59'499;
    EXPECT_EQ(UseBeacon(Read).on, 1u);
    host_.clock += 1;
    EXPECT_EQ(UseBeacon(Read).on, 0u);
    Link(3, 0);
    EXPECT_EQ(UseBeacon(Read).leds, uint32_t{HX_BEACON_AMBER});
    UseBeacon(Set, 1, 0);
    host_.clock += 1'000'000'000;
    EXPECT_EQ(UseBeacon(Read).on, 1u) << "until it is switched off";
    EXPECT_EQ(UseBeacon(Set).on, 0u);
    this->Set(3, "beacon_supported", 0);
    EXPECT_EQ(UseBeacon(statistics::BeaconOperation::Set, 1).supported, 0u);
    EXPECT_EQ(UseBeacon(Read).on, 0u);
    // Others hand in whatever their buffer holds.
    const auto node =
        Ask(kNewest, NodeProperties, 696, Bytes(696, 0xAA)).As<statistics::BeaconRequest>();
    EXPECT_EQ(node.mark, 0u);
}

TEST_F(EmulatorHealth, LoopMapHasThePresentDevicesInTheOrderOfTheLoop) {
    const auto legacy = [&] {
        return AskLegacy<statistics::LegacyMapReply>(
                   static_cast<properties::LegacySelector>(
                       statistics::LegacyMapSelector::PositionalMap))
            .map;
    };
    EXPECT_EQ(Get<HX_POSITIONAL_MAP>(PositionalMap).count, 0) << "a fabric";
    // Loop identifiers 0 to 3 are EFh, E8h, E4h and E2h.
    const Bytes expected = {0x01, 0xE2, 0xE4, 0xE8, 0xEF};
    const HX_POSITIONAL_MAP map = legacy();
    EXPECT_EQ(Bytes(map.alPa, map.alPa + map.count), expected);
    Link(9, 0);
    EXPECT_EQ(legacy().count, 0);
    Set(3, "topology", 2, 2);
    EXPECT_EQ(Get<HX_POSITIONAL_MAP>(PositionalMap).count, expected.size());
}

}  // namespace
