// What disturbs the emulated adapters: events, faults, changes while they run.
#include "emulator/emulator_model_fixture.h"

#include "statistics/fabric_records.h"

namespace {

using namespace emulator_test;
using vxemu::ProfileError;

using EmulatorDisturbance = ModelFixture;

TEST_F(EmulatorDisturbance, EventsAreHandedOutOnce) {
    EXPECT_TRUE(FetchCodes(kNewest).empty());
    // Without delivery an event is gone.
    EXPECT_EQ(Ask(kNewest, ForceEvent, 1, {0}).Status(), Success);
    Delivery(kNewest, true);
    EXPECT_TRUE(FetchCodes(kNewest).empty());

    EXPECT_EQ(Ask(kNewest, ForceEvent, 1, {0}).Status(), Success);
    Link(3, 0);
    Link(3, 0);  // no change, no event
    Link(3, 1);
    // Room for two and a bit: two now, the third next time.
    EXPECT_EQ(FetchCodes(kNewest, 47), (std::vector<uint32_t>{0x8080, 0x8012}));
    EXPECT_EQ(FetchCodes(kNewest, 47), (std::vector<uint32_t>{0x8011}));
    EXPECT_TRUE(FetchCodes(kNewest).empty());
    EXPECT_TRUE(FetchCodes(1).empty()) << "another port's queue";

    // Off discards, and a reset switches off.
    Ask(kNewest, ForceEvent, 1, {0});
    Delivery(kNewest, false);
    Delivery(kNewest, true);
    EXPECT_TRUE(FetchCodes(kNewest).empty());
    Link(3, 0);
    Control(control::kPortReset, PortSelector{3});
    EXPECT_EQ(+Status().ports[0].delivery, 0);
    EXPECT_EQ(Status().ports[0].state, vxemu::PortState::Online);
    EXPECT_TRUE(FetchCodes(kNewest).empty());

    const Answer mask = Ask(kNewest, EventDelivery, 0, {1, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(mask.Status(), InvalidParameter);
    EXPECT_EQ(Ask(kNewest, EventDelivery, 0, {0, 0, 0, 0}).Status(), InvalidParameter);
}

TEST_F(EmulatorDisturbance, FullQueueDropsItsOldest) {
    Delivery(kNewest, true);
    for (uint32_t number = 0; number < 70; ++number) {
        uint32_t queued = 0;
        const vxemu::EventRequest request = {3, {0x9000 + number, {number, 2, 3}}};
        Control(control::kRaiseEvent, request, &queued);
        EXPECT_EQ(queued, 1u);
    }
    EXPECT_EQ(+Status().ports[0].eventsQueued, 64u);
    EXPECT_EQ(+Status().ports[0].eventsDropped, 6u);
    const std::vector<uint32_t> codes = FetchCodes(kNewest, 80 * 16);
    ASSERT_EQ(codes.size(), 64u);
    EXPECT_EQ(codes.front(), 0x9000u + 6);
    EXPECT_EQ(codes.back(), 0x9000u + 69);
}

TEST_F(EmulatorDisturbance, FaultsActWhenTheyAreDue) {
    const uint32_t code = NodeProperties.code;
    AddFault({3, code, 1, 2, 3, FaultKind::Busy, 0, 0});
    const auto ask = [&](uint32_t port, Command which) {
        return Ask(port, which, 696).completion == Completion::Busy;
    };
    std::string busy;
    for (int turn = 0; turn < 7; ++turn) {
        busy += ask(kNewest, NodeProperties) ? 'B' : '-';
        EXPECT_FALSE(ask(1, NodeProperties)) << "another port";
        EXPECT_FALSE(ask(kNewest, PortProperties)) << "another sub-code";
    }
    EXPECT_EQ(busy, "--BBB--");
    EXPECT_EQ(+Status().ports[0].faults, 3u);
    EXPECT_EQ(+Status().ports[1].faults, 0u);

    // The oldest rule that is due acts; the later one has counted meanwhile.
    const uint32_t first = AddFault({kAnyPort, kAnyCode, kAnySubCode, 0, 1, FaultKind::Busy, 0, 0});
    AddFault({kAnyPort, kAnyCode, kAnySubCode, 1, 0, FaultKind::Status, 35, 0});
    EXPECT_EQ(Ask(1, PortProperties, 56).completion, Completion::Busy);
    EXPECT_EQ(Ask(1, PortProperties, 56).Status(), NoDump);
    AskPlain(kLegacy, LegacyPortAndNode, {}, 64, Invalid);

    uint32_t removed = 0;
    Control(control::kFaultClear, FaultClear{first}, &removed);
    EXPECT_EQ(removed, 1u);
    Control(control::kFaultClear, FaultClear{first}, &removed);
    EXPECT_EQ(removed, 0u);
    Control(control::kFaultClear, FaultClear{0}, &removed);
    EXPECT_EQ(removed, 2u);
    EXPECT_EQ(Ask(1, PortProperties, 56).Status(), Success);
}

TEST_F(EmulatorDisturbance, WhatFaultsDoToAReply) {
    const Answer plain = Ask(kNewest, ChipProperties, 80);
    auto with = [&](FaultKind kind, uint32_t value, uint32_t status = 0) {
        const uint32_t id = AddFault({3, kAnyCode, kAnySubCode, 0, 0, kind, value, status});
        EXPECT_NE(id, 0u);
        Answer answer = Ask(kNewest, ChipProperties, 80);
        Control(control::kFaultClear, FaultClear{id});
        return answer;
    };
    EXPECT_EQ(with(FaultKind::Short, 30).envelope.ext.responseLen, 50u);
    EXPECT_EQ(with(FaultKind::Short, 81).envelope.ext.responseLen, 0u);
    EXPECT_EQ(with(FaultKind::Long, 30).envelope.ext.responseLen, 110u);
    EXPECT_EQ(with(FaultKind::Long, 0xFFFFFFFF).envelope.ext.responseLen, 0xFFFFFFFFu);
    const Answer lie = with(FaultKind::LieLength, 0);
    EXPECT_EQ(lie.envelope.ext.responseLen, 0x7FFFFFFFu);
    EXPECT_EQ(lie.returned, plain.returned);
    EXPECT_EQ(lie.data, plain.data);

    const Answer corrupt = with(FaultKind::Corrupt, 0);
    ASSERT_EQ(corrupt.data.size(), plain.data.size());
    for (size_t at = 0; at < plain.data.size(); ++at) {
        EXPECT_EQ(corrupt.data[at] ^ plain.data[at], 0xFF);
    }
    const Answer hang = with(FaultKind::Hang, 2500);
    EXPECT_EQ(hang.delay, 2500u);
    EXPECT_EQ(hang.data, plain.data);

    const Answer detail = with(FaultKind::Detail, 0x4005, 11);
    EXPECT_EQ(detail.Status(), MailboxFailed);
    EXPECT_EQ(detail.envelope.ext.detailStatus, 0x4005u);
    EXPECT_EQ(with(FaultKind::Detail, 2, 15).Status(), ScsiStatus);
    EXPECT_EQ(Ask(kNewest, ChipProperties, 80).data, plain.data);
}

TEST_F(EmulatorDisturbance, FaultRulesThatAreRefused) {
    const FaultRule refused[] = {
        {3, 0, 0, 0, 0, FaultKind::None, 0, 0},
        {3, 0, 0, 0, 0, static_cast<FaultKind>(99), 0, 0},
        {64, 0, 0, 0, 0, FaultKind::Busy, 0, 0},
        {3, 0, 0, 0, 0, FaultKind::Detail, 2, 14},
        {3, 0, 0, 0, 0, FaultKind::Hang, vxemu::kMaxHangMilliseconds + 1, 0},
        {3, kAnyCode, kAnySubCode, 0, 0, FaultKind::OldVersion, 0, 0},
        {3, SecureFlashCommit.code, 0, 0, 0, FaultKind::BadSignature, 0, 0},
        {3, NodeProperties.code, 1, 0, 0, FaultKind::NoReturn, 0, 0},
    };
    for (const FaultRule& rule : refused) {
        EXPECT_EQ(Control(control::kFaultAdd, rule), ShortBuffer);
    }
    for (uint32_t number = 0; number < vxemu::kMaxFaults; ++number) {
        EXPECT_EQ(AddFault({3, 1, 1, 0, 0, FaultKind::Busy, 0, 0}), number + 1);
    }
    EXPECT_EQ(AddFault({3, 1, 1, 0, 0, FaultKind::Busy, 0, 0}), 0u) << "the list is full";
}

// Answered like a change that was made, and none was.
TEST_F(EmulatorDisturbance, ForgottenRequestsChangeNothingOfTheirPort) {
    const auto lab = MakeProfile("lab");
    statistics::SetQosRequest request = {};
    request.target.driverType = static_cast<uint16_t>(properties::DriverAddress::PortName);
    std::memcpy(request.target.address, lab->targets[0].portName, 8);
    request.qos.levels[2] = HX_QOS_HIGH;
    const auto set = [&] { return Ask(kNewest, SetLunQos, 256, BytesOf(request)); };
    const auto level = [&] { return +Ask(kNewest, LunQos, 256, BytesOf(request.target)).data[2]; };
    const uint32_t id = AddFault({3, kAnyCode, kAnySubCode, 0, 0, FaultKind::Forget, 0, 0});
    EXPECT_EQ(+set().data.at(2), HX_QOS_HIGH) << "the answer tells of it";
    Delivery(kNewest, true);
    EXPECT_EQ(Ask(kNewest, SfpRead, 512, Bytes(512)).completion, Done)
        << "an EEPROM made meanwhile";
    host_.failAt = 0;
    EXPECT_EQ(set().completion, vxemu::Completion::Busy) << "no memory to remember with";
    host_.failAt = -1;
    Control(control::kFaultClear, FaultClear{id});
    EXPECT_EQ(level(), HX_QOS_NONE);
    EXPECT_EQ(+Status().ports[0].delivery, 0);
    EXPECT_EQ(+Status().ports[0].faults, 4u);
    set();
    EXPECT_EQ(level(), HX_QOS_HIGH);
}

TEST_F(EmulatorDisturbance, FieldsOfARunningAdapter) {
    FieldRequest text = {4, "firmware_version", 32, "8.1.1"};
    EXPECT_EQ(Control(control::kSetField, text), Done);
    // An adapter's value changes for all of its ports.
    for (uint32_t port : {0u, 1u}) {
        EXPECT_STREQ(Ask(port, FirmwareProperties, 200).As<properties::FirmwareReply>().version,
                     "8.1.1");
    }
    const auto refused = [&](FieldRequest request) {
        EXPECT_EQ(Control(control::kSetField, request), ShortBuffer) << request.change.name;
    };
    refused({3, "serial", 32, "EMUX"});
    refused({3, "no_such_field", 1, {}});
    refused({3, "current_speed", 2, {1, 0}});
    refused({3, "fec_active", 1, {2}});
    refused({3, "state", 2, {3, 0}});
    FieldRequest unterminated = {3, "firmware_version", 32, {}};
    std::memset(unterminated.change.value, '1', sizeof unterminated.change.value);
    refused(unterminated);
    std::memset(unterminated.change.name, 's', sizeof unterminated.change.name);
    EXPECT_EQ(Control(control::kSetField, unterminated), ShortBuffer);
    EXPECT_EQ(Control(control::kSetField, FieldRequest{5, "state", 2, {}}), NoDevice);
}

// Adapters that come and go while the others answer.
class EmulatorHotPlug : public ModelFixture {
  protected:
    static vxemu::AdapterRecord Card(uint16_t chip, uint32_t number,
                                     std::initializer_list<uint8_t> scsiPorts) {
        vxemu::AdapterRecord card = {};
        card.portCount = static_cast<uint32_t>(scsiPorts.size());
        vxemu::FillAdapter(chip, number, card.adapter, {card.ports, card.portCount});
        std::transform(scsiPorts.begin(), scsiPorts.end(), card.ports, card.ports,
                       [](uint8_t scsiPort, vxemu::PortProfile port) {
                           port.scsiPort = scsiPort;
                           return port;
                       });
        return card;
    }
    ProfileError Add(const vxemu::AdapterRecord& card) {
        uint32_t error = 0;
        EXPECT_EQ(Control(control::kAdapterAdd, card, &error), Done);
        return static_cast<ProfileError>(error);
    }
    ProfileError Remove(uint32_t scsiPort) {
        uint32_t error = 0;
        EXPECT_EQ(Control(control::kAdapterRemove, PortSelector{scsiPort}, &error), Done);
        return static_cast<ProfileError>(error);
    }
    std::unique_ptr<vxemu::Profile> Running() {
        auto profile = std::make_unique<vxemu::Profile>();
        uint32_t returned = 0;
        EXPECT_EQ(model_->Control(control::kReadProfile, reinterpret_cast<uint8_t*>(profile.get()),
                                  0, sizeof *profile, &returned),
                  Done);
        EXPECT_EQ(vxemu::ValidateProfile(profile.get(), sizeof *profile).error, ProfileError::None);
        return profile;
    }
    // What a port says of itself, its flash and its targets.
    std::vector<Bytes> Told(uint32_t port) {
        return {Ask(port, NodeProperties, sizeof(properties::NodeReply)).data,
                Ask(port, PortDatabase, sizeof(properties::PortDatabaseReply), {7, 0, 0, 0}).data,
                Ask(port, {FlashRead.code, HX_REGION_VPD_0}, 512).data};
    }
    Answer WriteVpd(uint32_t port) {
        return Ask(port, {FlashWrite.code, HX_REGION_VPD_0}, 0, Bytes(512, 0x5A));
    }
};

TEST_F(EmulatorHotPlug, OthersStayAsTheyWereWhateverComesAndGoes) {
    Start("full");
    constexpr uint32_t kSome[] = {0, 4, 21, 62};
    std::vector<std::vector<Bytes>> before;
    for (uint32_t port : kSome) {
        WriteVpd(port);
        before.push_back(Told(port));
    }
    const auto expectSame = [&] {
        for (size_t at = 0; at < std::size(kSome); ++at) {
            EXPECT_EQ(Told(kSome[at]), before[at]) << kSome[at];
        }
    };
    WriteVpd(20);
    const std::vector<Bytes> written = Told(20);
    ASSERT_EQ(Remove(20), ProfileError::None);
    ASSERT_EQ(Remove(1), ProfileError::None);
    expectSame();
    EXPECT_EQ(Ask(20, NodeProperties, 696).completion, NoDevice);
    EXPECT_EQ(Control(control::kPortReset, PortSelector{20}), NoDevice);
    EXPECT_EQ(Running()->adapterCount, 61u);
    EXPECT_EQ(+Status().portCount, 61u);
    EXPECT_EQ(+Status().ports[60].scsiPort, 62u);

    // The same card again, and one with two ports.
    vxemu::AdapterRecord same = Card(0x7740, 21, {20});
    same.adapter = MakeProfile("full")->adapters[20];
    ASSERT_EQ(Add(same), ProfileError::None);
    ASSERT_EQ(Add(Card(0x7742, 99, {63, 1})), ProfileError::None);
    expectSame();
    EXPECT_TRUE(model_->HasPort(63));
    EXPECT_EQ(Running()->portCount, 64u);
    uint32_t found = 0;
    for (uint32_t port = 0; port < vxemu::kMaxPorts; ++port) {
        const uint32_t scsiPort = model_->ScsiPortNumber(port);
        if (scsiPort == 20) {
            EXPECT_EQ(Told(port)[0], written[0]);
            EXPECT_NE(Told(port)[2], written[2]) << "what was written went with the card";
            ++found;
        }
        if (scsiPort == 63) {
            EXPECT_EQ(Ask(port, PortDatabase, 172 * 5 + 8, {7, 0, 0, 0}).Status(), Success);
            found += WriteVpd(port).Status() == Success ? 1 : 0;
        }
    }
    EXPECT_EQ(found, 2u);
}

TEST_F(EmulatorHotPlug, WhatDoesNotFitChangesNothing) {
    const auto before = Running();
    const auto refused = [&](ProfileError error, const vxemu::AdapterRecord& card) {
        EXPECT_EQ(Add(card), error);
    };
    vxemu::AdapterRecord card = Card(0x7740, 9, {10});
    std::strcpy(card.adapter.serial, "EMU7404A0002");
    refused(ProfileError::DuplicateSerial, card);
    std::strcpy(card.adapter.serial, "REAL");
    refused(ProfileError::Serial, card);
    refused(ProfileError::DuplicateScsiPort, Card(0x7740, 9, {10, 6}));
    refused(ProfileError::DuplicatePortName, Card(0x7742, 2, {10}));
    refused(ProfileError::AdapterHasNoPort, Card(0x7740, 9, {}));
    card = Card(0x7740, 9, {10});
    card.portCount = 9;
    refused(ProfileError::PortCount, card);
    card = Card(0x7740, 9, {10, 11, 12});
    for (int failing = 0; failing < 3; ++failing) {
        host_.failAt = failing;
        EXPECT_EQ(Control(control::kAdapterAdd, card), vxemu::Completion::Busy);
    }
    host_.failAt = -1;
    EXPECT_EQ(Control(control::kAdapterAdd, LinkRequest{}), ShortBuffer);
    EXPECT_EQ(Control(control::kAdapterRemove, PortSelector{5}), NoDevice);
    EXPECT_EQ(std::memcmp(Running().get(), before.get(), sizeof *before), 0);

    // The last one stays: a profile has one at least.
    EXPECT_EQ(Remove(4), ProfileError::None);
    EXPECT_EQ(Remove(9), ProfileError::None);
    EXPECT_EQ(Remove(6), ProfileError::AdapterCount);
    EXPECT_STREQ(Status().ports[0].serial, "EMU7404A0002");
    EXPECT_EQ(Add(card), ProfileError::None);
    EXPECT_EQ(Remove(6), ProfileError::None);
}

TEST_F(EmulatorDisturbance, ControlRequestsCheckTheirLengths) {
    uint8_t byte = 0;
    uint32_t returned = 9;
    for (uint32_t code :
         {control::kStatus, control::kFaultList, control::kReadProfile, control::kFaultAdd,
          control::kFaultClear, control::kPortReset, control::kRaiseEvent, control::kSetLink,
          control::kSetField, control::kTargetAdd, control::kTargetRemove, control::kTargetSet,
          control::kLunAdd, control::kLunRemove, control::kLunSet}) {
        EXPECT_EQ(model_->Control(code, &byte, 1, 1, &returned), ShortBuffer);
        EXPECT_EQ(model_->Control(code, nullptr, 0, 0, &returned), ShortBuffer);
        EXPECT_EQ(returned, 0u);
    }
    EXPECT_EQ(model_->Control(0, &byte, 1, 1, &returned), Invalid);
    EXPECT_EQ(Control(control::kSetLink, LinkRequest{5, 1}), NoDevice);
    EXPECT_EQ(Control(control::kSetLink, LinkRequest{3, 2}), ShortBuffer);

    model_->CountHandle(0, 1);
    model_->CountHandle(0, 1);
    model_->CountHandle(0, -1);
    host_.clock += 250;
    const vxemu::StatusReply status = Status();
    EXPECT_EQ(+status.uptime, 250u);
    EXPECT_EQ(+status.portCount, 4u);
    EXPECT_STREQ(status.profileName, "lab");
    EXPECT_EQ(+status.ports[0].openHandles, 1u);
    EXPECT_STREQ(status.ports[2].serial, "EMU7404A0002");
}

}  // namespace
