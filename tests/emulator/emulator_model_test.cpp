// The emulated adapters: exact replies and hostile requests.
#include "emulator/emulator_model_fixture.h"

#include <random>

namespace {

using namespace emulator_test;

using EmulatorModel = ModelFixture;

TEST_F(EmulatorModel, NodeReply) {
    const Answer answer = Ask(kNewest, NodeProperties, sizeof(properties::NodeReply));
    EXPECT_EQ(answer.Status(), Success);
    EXPECT_EQ(answer.envelope.ext.responseLen, 696u);
    EXPECT_EQ(answer.returned, 116u + 696u);
    const auto node = answer.As<properties::NodeReply>();
    EXPECT_STREQ(node.manufacturerAndSerial, "Tarnel, Inc.-EMU7740A0001");
    EXPECT_STREQ(node.modelDescription, "Emulated 7740");
    EXPECT_STREQ(node.driverVersion, "9.04.02.20");
    EXPECT_STREQ(node.firmwareVersion, "9.12.01");
    EXPECT_EQ(node.flags & 16, 16u);
    EXPECT_EQ(node.numberOfPorts, 1);
    const uint8_t name[] = {0x20, 0x00, 0x02, 0x45, 0x4D, 0x00, 0x01, 0x00};
    EXPECT_EQ(std::memcmp(node.nodeName, name, sizeof name), 0);
    // Made from the bytes as 'A' + value / 100000 and five digits: E00001.
    const uint32_t serial =
        node.serialBytes[0] * 65536u + node.serialBytes[2] * 256u + node.serialBytes[1];
    EXPECT_EQ(serial, 400001u);

    // An adapter whose serial is not a text leaves the field empty, and a legacy driver answers
    // the probe all the same.
    const Answer legacy = Ask(kLegacy, NodeProperties, 696);
    EXPECT_EQ(legacy.As<properties::NodeReply>().manufacturerAndSerial[0], 0);
    EXPECT_STREQ(legacy.As<properties::NodeReply>().driverVersion, "7.04.11");

    // With input, as the vendor attribute query sends it: the input changes nothing.
    const Answer again = Ask(kNewest, NodeProperties, 696, Bytes(696, 0xA5));
    EXPECT_EQ(again.data, answer.data);
}

TEST_F(EmulatorModel, PortRepliesFollowTheLink) {
    const auto up = Ask(kNewest, PortPropertiesV2, 108).As<properties::PortReplyV2>();
    EXPECT_EQ(up.base.portName[0], 0x21);
    EXPECT_EQ(up.base.state, 0);
    EXPECT_EQ(up.base.topology, 4);
    EXPECT_EQ(up.base.currentSpeed, 50);
    EXPECT_EQ(up.base.portId[0], 1);
    EXPECT_EQ(up.base.discoveredDevices, 4);
    EXPECT_EQ(up.protocolFlags, 0x06);
    const auto first = Ask(kNewest, PortProperties, 56).As<properties::PortReply>();
    EXPECT_EQ(std::memcmp(&first.base, &up.base, sizeof up.base), 0);

    Link(3, 0);
    const auto down = Ask(kNewest, PortPropertiesV2, 108).As<properties::PortReplyV2>();
    EXPECT_EQ(down.base.state, 2);
    EXPECT_EQ(down.base.currentSpeed, 0);
    EXPECT_EQ(down.base.supportedSpeeds, 50);
    EXPECT_EQ(down.base.portId[0] | down.base.portId[1] | down.base.portId[2], 0);
    EXPECT_EQ(down.base.discoveredDevices, 0);
    // The other port of the adapter is not concerned.
    EXPECT_EQ(Ask(1, PortProperties, 56).As<properties::PortReply>().base.state, 0);

    EXPECT_EQ(Ask(kLargeRom, PortPropertiesV2, 108).Status(), UnsupportedSubCode);
}

TEST_F(EmulatorModel, PortDisableInfoNeedsItsByte) {
    EXPECT_EQ(Ask(kNewest, PortDisableInfo, 1, {0}).data, Bytes{0});
    FieldRequest field = {3, "port_disabled", 1, {1}};
    EXPECT_EQ(Control(control::kSetField, field), Done);
    EXPECT_EQ(Ask(kNewest, PortDisableInfo, 1, {0}).data, Bytes{1});
    EXPECT_EQ(Ask(kNewest, PortDisableInfo, 1).Status(), InvalidParameter);
}

TEST_F(EmulatorModel, LegacyReplies) {
    using properties::LegacySelector;
    const auto adapter =
        AskLegacy<properties::LegacyAdapterReply>(LegacySelector::AdapterInformation);
    EXPECT_EQ(adapter.firmwareVersion[0], 3);
    EXPECT_EQ(adapter.firmwareVersion[1], 3);
    EXPECT_EQ(adapter.firmwareVersion[2], 25);
    EXPECT_EQ(std::memcmp(adapter.optionRomVersion, "1.54", 4), 0);
    EXPECT_EQ(adapter.portId[1], 3);

    const auto chip = AskLegacy<properties::LegacyChipReply>(LegacySelector::ChipIdentity);
    EXPECT_EQ(chip.deviceId, 0x7200);
    EXPECT_EQ(chip.classWord, 0x0C04);

    // Four devices; on demand also a stale one, which keeps its place but not its valid bit.
    for (const uint8_t lists : {0, 1}) {
        const vxemu::FieldRequest stale = {9, "lists_lost_targets", 1, {lists}};
        EXPECT_EQ(Control(vxemu::control::kSetField, stale), Completion::Done);
        const auto list = std::make_unique<properties::LegacyTargetListReply>(
            AskLegacy<properties::LegacyTargetListReply>(LegacySelector::TargetList));
        ASSERT_EQ(list->count, 4 + lists);
        for (uint32_t at = 0; at < list->count; ++at) {
            EXPECT_EQ(list->entries[at].loopId & properties::kLegacyTargetValid, at < 4 ? 1 : 0);
            EXPECT_EQ(list->entries[at].target, at);
            EXPECT_EQ(list->entries[at].portName[6], at + 1);
        }
        EXPECT_EQ(list->entries[list->count].portName[0], 0);
    }

    EXPECT_GE(AskLegacy<properties::LegacyLinkReply>(LegacySelector::LinkValue).linkValue, 0x8000);
    Link(9, 0);
    EXPECT_LT(AskLegacy<properties::LegacyLinkReply>(LegacySelector::LinkValue).linkValue, 0x8000);

    const Bytes record = AskPlain(kLegacy, LegacyPortAndNode, {}, 64);
    ASSERT_EQ(record.size(), 64u);
    EXPECT_EQ(record[12], 0x21);
    EXPECT_EQ(record[20], 2 << 4);
}

TEST_F(EmulatorModel, WhatADriverDoesNotKnow) {
    const Bytes selector(12, 0);
    // Plain requests: no status, so the transfer fails.
    AskPlain(kLegacy, LegacyQuery, selector, 36, Invalid);
    AskPlain(kLegacy, LegacyQuery, {}, 36, Invalid);
    AskPlain(kNewest, LegacyNvramRead, selector, 12, Invalid);
    AskPlain(kNewest, LegacyPortAndNode, {}, 64, Invalid);
    AskPlain(kLegacy, LegacyPortAndNode, {}, 63, ShortBuffer);

    struct Case {
        uint32_t port;
        Command command;
        DriverStatus status;
    };
    const Case cases[] = {
        {kNewest, {0xF0001001, 77}, UnsupportedSubCode},
        {kNewest, {0xF0001FFF, 0}, InvalidRequest},
        {kNewest, {0, 0}, InvalidRequest},
        {kLegacy, PortProperties, InvalidRequest},
        {kLegacy, EventDelivery, InvalidRequest},
    };
    for (const Case& test : cases) {
        const Answer answer = Ask(test.port, test.command, 64);
        EXPECT_EQ(answer.Status(), test.status) << std::hex << test.command.code;
        EXPECT_EQ(answer.envelope.ext.responseLen, 0u);
        EXPECT_EQ(answer.returned, 116u);
    }
    for (const Command& known : {NodeProperties, DriverProperties, ChipProperties}) {
        EXPECT_EQ(Ask(kLegacy, known, 696).Status(), Success);
    }
}

TEST_F(EmulatorModel, ReplyThatDoesNotFit) {
    const Answer whole = Ask(kNewest, NodeProperties, 696);
    // Refused room, given buffer: the smaller of the two counts.
    ExtRequest request = Envelope(NodeProperties, 0, 100);
    const Answer small = Send(kNewest, request, {}, 116 + 100);
    EXPECT_EQ(small.Status(), BufferTooSmall);
    EXPECT_EQ(small.envelope.ext.responseLen, 696u);
    EXPECT_EQ(small.returned, 216u);
    EXPECT_TRUE(std::equal(small.data.begin(), small.data.end(), whole.data.begin()));

    request = Envelope(NodeProperties, 0, 100);
    request.ext.responseLen = 0xFFFFFFFF;
    const Answer lying = Send(kNewest, request, {}, 116 + 100);
    EXPECT_EQ(lying.Status(), BufferTooSmall);
    EXPECT_EQ(lying.data, small.data);

    const Answer none = Ask(kNewest, NodeProperties, 0);
    EXPECT_EQ(none.Status(), BufferTooSmall);
    EXPECT_EQ(none.returned, 116u);

    const Answer roomy = Ask(kNewest, NodeProperties, 1000);
    EXPECT_EQ(roomy.Status(), Success);
    EXPECT_EQ(roomy.envelope.ext.responseLen, 696u);
    EXPECT_EQ(roomy.data, whole.data);
}

TEST_F(EmulatorModel, EnvelopesThatLie) {
    const ExtRequest good = Envelope(NodeProperties, 0, 80);
    auto expect = [&](const char* what, Completion completion, auto change) {
        ExtRequest request = good;
        change(request);
        EXPECT_EQ(Send(kNewest, request, {}, 196).completion, completion) << what;
    };
    expect("unchanged", Done, [](ExtRequest&) {});
    expect("SRB signature", Invalid, [](ExtRequest& r) { r.srb.signature[7] = 1; });
    expect("header length", ShortBuffer, [](ExtRequest& r) { r.srb.headerLength = 29; });
    expect("one byte too long", ShortBuffer, [](ExtRequest& r) { ++r.srb.length; });
    expect("longest length", ShortBuffer, [](ExtRequest& r) { r.srb.length = ~0u; });
    expect("length without body", ShortBuffer, [](ExtRequest& r) { r.srb.length = 87; });
    expect("body signature", Invalid, [](ExtRequest& r) { r.ext.signature[0] = 'z'; });
    EXPECT_EQ(model_->Request(99, nullptr, 0, 0, std::make_unique<uint32_t>().get()), NoDevice);

    ExtRequest version = good;
    version.ext.levelAndVersion = 0x00060001;
    EXPECT_EQ(Send(kNewest, version, {}, 196).Status(), UnsupportedVersion);

    // The discovery probe leaves signature and version empty, and is the only one that may.
    for (const auto& [command, completion] :
         {std::pair{DriverProperties, Done}, std::pair{FirmwareProperties, Invalid}}) {
        ExtRequest probe = Envelope(command, 0, 200);
        std::memset(probe.ext.signature, 0, sizeof probe.ext.signature);
        probe.ext.levelAndVersion = 0;
        EXPECT_EQ(Send(kNewest, probe, {}, 316).completion, completion);
    }
}

// Every request, with lengths around those of the headers and numbers that hurt where they are
// believed: no byte beside the buffer is touched, and no more is returned than there is room for.
TEST_F(EmulatorModel, SurvivesAnyRequest) {
    std::mt19937 random(1);
    std::vector<Command> commands;
    for (const transport::ExtendedCommandRow& row : transport::kExtendedCommands) {
        commands.push_back({row.code, row.subCode});
    }
    for (const transport::PlainCommandRow& row : transport::kPlainCommands) {
        commands.push_back({row.code, 0});
    }
    constexpr uint32_t kLengths[] = {0,   1,   27,  28,  29,  39,  40,  60,  115,  116,
                                     117, 128, 132, 156, 180, 300, 468, 642, 1140, 65652};
    constexpr uint32_t kNumbers[] = {0,      1,      2,       3,        11,         100,
                                     256,    512,    0xA0,    0xA2,     0x10000,    0x10001,
                                     524288, 131072, 1310720, 0x400000, 0xFFFFFFFF, 0xFFFFFF00};
    constexpr uint16_t kSubCodes[] = {0, 1, 2, 3, 4, 7, 8, 21, 254, 255, 269, 0xFFFF};
    const auto one = [&random](const auto& of) { return of[random() % std::size(of)]; };
    Delivery(kNewest, true);
    for (uint32_t round = 0; round < 40'000; ++round) {
        const uint32_t input = one(kLengths);
        const uint32_t output = one(kLengths);
        const uint32_t length = std::max(input, output);
        const auto buffer = std::make_unique<uint8_t[]>(length);
        for (uint32_t at = 0; at + 4 <= std::min(length, 200u); at += 4) {
            const uint32_t word = random() % 2 == 0 ? one(kNumbers) : random();
            std::memcpy(&buffer[at], &word, sizeof word);
        }
        ExtRequest request = Envelope(one(commands), one(kNumbers), one(kNumbers));
        request.srb.length = length - (round % 4 == 0 ? 0 : 28);
        request.ext.parameter = one(kNumbers);
        if (round % 2 == 0) {
            request.ext.subCode = one(kSubCodes);
        }
        const size_t head = round % 3 == 0 ? sizeof request.srb : sizeof request;
        std::memcpy(buffer.get(), &request, std::min<size_t>(length, head));
        uint32_t returned = 77;
        const Completion completion =
            model_->Request(round % 4, buffer.get(), input, output, &returned);
        EXPECT_LE(returned, completion == Done ? output : 0);
    }
}

TEST_F(EmulatorModel, BytesThatWereNotSentReadAsZero) {
    AddFault({kAnyPort, kAnyCode, kAnySubCode, 0, 0, FaultKind::Status, 1, 0});
    const Answer answer = Ask(kNewest, NodeProperties, 40, {1, 2, 3});
    ASSERT_EQ(answer.data.size(), 40u);
    EXPECT_EQ(answer.data[2], 3);
    EXPECT_EQ(std::count(answer.data.begin() + 3, answer.data.end(), 0), 37);
}

}  // namespace
