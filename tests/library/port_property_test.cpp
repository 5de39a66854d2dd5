// Port records of both versions and both driver generations, and the port's disabled state.
#include "support/properties_fixture.h"

namespace {

using namespace support;

class PortPropertyTest : public PropertiesTest {};

TEST_F(PortPropertyTest, PortRecordSecondVersion) {
    properties::PortReplyV2 patterned = Patterned<properties::PortReplyV2>();
    patterned.protocolFlags = 0x02;
    const Bytes reply = BytesOf(patterned);
    port->On(command::PortPropertiesV2, Reply{.data = reply});
    Guarded<HX_PORT_PROPERTY> record;
    ASSERT_EQ(0u, HXGetHbaDevicePortPropertyV2(handle, 0, record.Get()));
    Expected expected(112);
    expected.Copy(0, reply, 0, 11);
    expected.Put(11, {2, 1, 2});
    expected.Copy(14, reply, 18, 2);
    expected.Copy(16, reply, 22, 2);
    expected.Put(18, Bytes{'\\', 'D', 'e', 'v', 'i', 'c', 'e', '\\', 'S', 'c', 's', 'i', 'P', 'o',
                           'r', 't', '3', 0});
    expected.Copy(50, reply, 41, 1);
    expected.Copy(54, reply, 42, 4);
    expected.Copy(58, reply, 48, 4);
    expected.Copy(62, reply, 40, 1);
    expected.Copy(82, reply, 52, 6);
    expected.Copy(90, reply, 60, 6);
    expected.Copy(98, reply, 68, 2);
    expected.Copy(100, reply, 76, 1);
    expected.Copy(101, reply, 78, 1);
    expected.Copy(102, reply, 72, 4);
    expected.Put(106, {0, 1});
    expected.Copy(108, reply, 79, 1);
    EXPECT_EQ(expected.bytes, Seen(record));
    EXPECT_EQ(116u + 108u, port->Requests(command::PortPropertiesV2)[0].outputSize);

    patterned.protocolFlags = 0xFD;
    port->On(command::PortPropertiesV2, Reply{.data = BytesOf(patterned)});
    ASSERT_EQ(0u, HXGetHbaDevicePortPropertyV2(handle, 0, record.Get()));
    EXPECT_EQ(1, record->nvmeEnabled);
    EXPECT_EQ(0, record->fcpEnabled);

    // The first version writes the common part alone.
    port->On(command::PortProperties, Reply{.data = Bytes(reply.begin(), reply.begin() + 56)});
    Guarded<HX_PORT_PROPERTY> first;
    ASSERT_EQ(0u, HXGetHbaDevicePortPropertyV1(handle, 0, first.Get()));
    expected.Fill(82, 30, 0xEE);
    EXPECT_EQ(expected.bytes, Seen(first));
    EXPECT_EQ(116u + 56u, port->Requests(command::PortProperties)[0].outputSize);
}

TEST_F(PortPropertyTest, PortEnumerations) {
    properties::PortReply reply = {};
    HX_PORT_PROPERTY record;
    const auto ask = [&] {
        port->On(command::PortProperties, Reply{.data = BytesOf(reply)});
        EXPECT_EQ(0u, HXGetHbaDevicePortPropertyV1(handle, 0, &record));
    };
    const std::pair<uint16_t, uint8_t> roles[] = {{0, 2}, {1, 1}, {2, 2}, {0x101, 2}};
    for (const auto& [value, expected] : roles) {
        reply.base.role = value;
        ask();
        EXPECT_EQ(expected, record.role) << value;
    }
    const std::pair<uint16_t, uint8_t> states[] = {{0, 1}, {1, 2}, {2, 3}, {3, 1}, {0x102, 1}};
    for (const auto& [value, expected] : states) {
        reply.base.state = value;
        ask();
        EXPECT_EQ(expected, record.state) << value;
    }
    const std::pair<uint16_t, uint8_t> topologies[] = {{0, 2}, {1, 1}, {2, 2},
                                                       {3, 2}, {4, 1}, {0x104, 2}};
    for (const auto& [value, expected] : topologies) {
        reply.base.topology = value;
        ask();
        EXPECT_EQ(expected, record.topology) << value;
    }
}

TEST_F(PortPropertyTest, SpeedsNeedFirmware812) {
    const std::pair<const char*, bool> rows[] = {
        {"8.1.2", true},  {"8.1.1", false},  {"8.2.0", true},  {"9.0.0", true},  {"8", false},
        {"8.1", false},   {"8.01.02", true}, {"10.0.0", true}, {"7.9.9", false}, {"", false},
        {"text", false},  {"8.1.10", true},  {"8.0.9", false}, {"8.12.1", true}, {"8.1.2.7", true},
        {"8.1.x", false}, {"9.1", false},    {"9", false},     {"9.1.", true}};
    properties::PortReply reply = {};
    reply.base.currentSpeed = 22;
    reply.base.supportedSpeeds = 50;
    port->On(command::PortProperties, Reply{.data = BytesOf(reply)});
    for (const auto& [text, isNew] : rows) {
        SetText(port->node.firmwareVersion, text);
        port->AnswerProbes();
        Guarded<HX_PORT_PROPERTY> record;
        ASSERT_EQ(0u, HXGetHbaDevicePortPropertyV1(handle, 0, record.Get()));
        EXPECT_EQ(isNew ? 22 : 0xEE, record->currentSpeed) << text;
        EXPECT_EQ(isNew ? 50 : 0xEE, record->supportedSpeeds) << text;
    }
    // A node record that cannot be read counts as old firmware, and is no failure.
    port->On(command::NodeProperties, Reply{.status = 1});
    Guarded<HX_PORT_PROPERTY> record;
    EXPECT_EQ(0u, HXGetHbaDevicePortPropertyV1(handle, 0, record.Get()));
    EXPECT_EQ(0xEE, record->currentSpeed);
}

TEST_F(PortPropertyTest, PortRecordFallsBackToTheFirstVersion) {
    properties::PortReply reply = {};
    reply.base.portName[0] = 0x21;
    port->On(command::PortProperties, Reply{.data = BytesOf(reply)});
    port->On(command::PortPropertiesV2, Reply{.status = 12});
    Guarded<HX_PORT_PROPERTY> record;
    EXPECT_EQ(HXMGT_INVALID_SUBCODE, HXGetHbaDevicePortPropertyV2(handle, 0, record.Get()));
    EXPECT_TRUE(record.Raw().Holds(0xEE));
    EXPECT_EQ(0u, HXGetHbaDevicePortProperty(handle, 0x123456789, record.Get()));
    EXPECT_EQ(0x21, record->portName[0]);
    EXPECT_EQ(0xEE, record.Raw()[82]);
    // No other failure falls back.
    for (const uint32_t status : {1u, 6u, 20u}) {
        port->On(command::PortPropertiesV2, Reply{.status = status});
        port->Forget();
        EXPECT_NE(0u, HXGetHbaDevicePortProperty(handle, 0, record.Get()));
        EXPECT_TRUE(port->Requests(command::PortProperties).empty());
    }
}

TEST_F(PortPropertyTest, LegacyPortRecord) {
    Reopen("7.04.11", 0x7200);
    AnswerLegacy();
    for (const bool second : {false, true}) {
        const auto ask = [&](HX_PORT_PROPERTY* record) {
            return second ? HXGetHbaDevicePortPropertyV2(handle, 0, record)
                          : HXGetHbaDevicePortPropertyV1(handle, 0, record);
        };
        SetLinkValue(0x8000);
        Guarded<HX_PORT_PROPERTY> record;
        ASSERT_EQ(0u, ask(record.Get()));
        Expected expected(112);
        expected.Put(0, {0x21, 2, 3, 4, 5, 6, 7, 8, 0x0A, 0x0B, 0x0C, 0});
        expected.Put(13, {2, 3, 0, 3, 0});  // three of five listed targets are valid
        expected.Put(18, Bytes{'\\', 'D', 'e', 'v', 'i', 'c', 'e', '\\', 'S', 'c', 's', 'i', 'P',
                               'o', 'r', 't', '3', 0});
        EXPECT_EQ(expected.bytes, Seen(record)) << "the state is the caller's";

        const std::pair<uint16_t, uint8_t> links[] = {
            {0, 3}, {0x7FFF, 3}, {0x8000, 0xEE}, {0xFFFF, 0xEE}};
        for (const auto& [value, state] : links) {
            SetLinkValue(value);
            record->state = 0xEE;
            ASSERT_EQ(0u, ask(record.Get()));
            EXPECT_EQ(state, record->state) << value;
        }
    }
}

TEST_F(PortPropertyTest, LegacyTargetCountThatLies) {
    Reopen("7.04.11", 0x7200);
    AnswerLegacy();
    properties::LegacyTargetListReply targets = {};
    for (properties::LegacyTargetEntry& entry : targets.entries) {
        entry.loopId = 1;
    }
    HX_PORT_PROPERTY record;
    const std::pair<uint16_t, uint16_t> rows[] = {
        {1024, 1024}, {1025, 1024}, {0xFFFF, 1024}, {0, 0}};
    for (const auto& [claimed, counted] : rows) {
        targets.count = claimed;
        port->OnSelector(LegacySelector::TargetList, {.data = BytesOf(targets)});
        ASSERT_EQ(0u, HXGetHbaDevicePortProperty(handle, 0, &record));
        EXPECT_EQ(counted, record.discoveredDevices);
        EXPECT_EQ(counted, record.discoveredTargets);
    }
}

TEST_F(PortPropertyTest, PortDisableInformation) {
    const auto answer = [&](Reply reply) {
        port->On(command::PortDisableInfo, reply);
        return HXGetHbaPortDisableInfo(handle);
    };
    EXPECT_EQ(0u, answer({.data = {0}}));
    EXPECT_EQ(HXMGT_PORT_DISABLED, answer({.data = {1}}));
    EXPECT_EQ(0u, answer({.data = {2}}));
    EXPECT_EQ(0u, answer({.data = {}}));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, answer({.status = 9}));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, answer({.status = 43, .data = {1}}));
    EXPECT_EQ(HXMGT_INVALID_REQUEST, answer({.error = ERROR_GEN_FAILURE}));
    EXPECT_EQ(Bytes{0}, port->Last().Data());
    EXPECT_EQ(1u, port->Last().Envelope().ext.responseLen);
}

}  // namespace
