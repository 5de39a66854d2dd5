// Attributes of the adapter's own port, and its statistics, through the standard API.
#include "support/hbaapi_fixture.h"

namespace {

using namespace support;

class HbaApiPortTest : public HbaApiTest {
  protected:
    HBA_PORTATTRIBUTES Get() {
        Guarded<HBA_PORTATTRIBUTES> out;
        EXPECT_EQ(0u, api.GetAdapterPortAttributesHandler(handle, 7, out.Get()));
        return *out.Get();
    }
    HBA_PORTATTRIBUTES GetWith(const properties::PortReplyBase& base) {
        port->On(command::PortProperties, Reply{.data = BytesOf(properties::PortReply{base, {}})});
        return Get();
    }
    static properties::PortReplyBase Base() {
        properties::PortReplyBase base = {};
        memcpy(base.portName, WwnOf(2).wwn, 8);
        memcpy(base.portId, "\x01\x02\x03", 3);
        base.topology = 4;
        base.discoveredDevices = 300;
        base.discoveredTargets = 7;
        base.supportedFc4 = 3;
        base.activeFc4 = 1;
        base.supportedSpeeds = 50;
        base.currentSpeed = 22;
        base.maxFrameSize = 1024;
        return base;
    }
    HBA_PORTATTRIBUTES GetUnderDriver(std::string_view version) {
        SetText(port->node.driverVersion, version);
        port->AnswerProbes();
        return GetWith(Base());
    }
};

TEST_F(HbaApiPortTest, WholeRecord) {
    memcpy(port->node.nodeName, WwnOf(1).wwn, 8);
    port->AnswerProbes();
    HBA_PORTATTRIBUTES expected = {};
    expected.NodeWWN = WwnOf(1);
    expected.PortWWN = WwnOf(2);
    expected.PortFcId = 0x010203;
    expected.PortType = 5;
    expected.PortState = 2;
    expected.PortSupportedClassofService = 8;
    expected.PortSupportedFc4Types.bits[0] = 0x20;
    expected.PortSupportedFc4Types.bits[1] = 0x01;
    expected.PortActiveFc4Types.bits[1] = 0x01;
    strcpy(expected.OSDeviceName, "\\\\.\\Scsi3:");
    expected.PortSupportedSpeed = 120;
    expected.PortSpeed = 32;
    expected.PortMaxFrameSize = 2048;
    expected.NumberofDiscoveredPorts = 300;
    EXPECT_EQ(BytesOf(expected), BytesOf(GetWith(Base())));
}

TEST_F(HbaApiPortTest, TypesAndStates) {
    struct Row {
        uint16_t value;
        uint32_t inFabric;  // identifier 0x010200
        uint32_t alone;     // 0x0000EF
    };
    const Row types[] = {{0, 1, 1},  {1, 5, 21}, {2, 20, 20},   {3, 6, 6},
                         {4, 5, 21}, {5, 1, 1},  {0x104, 1, 1}, {0xFFFF, 1, 1}};
    for (const Row& row : types) {
        SCOPED_TRACE(row.value);
        properties::PortReplyBase base = Base();
        base.topology = row.value;
        memcpy(base.portId, "\x01\x02\x00", 3);
        EXPECT_EQ(row.inFabric, GetWith(base).PortType);
        memcpy(base.portId, "\x00\x00\xEF", 3);
        EXPECT_EQ(row.alone, GetWith(base).PortType);
    }
    properties::PortReplyBase first = Base();
    first.topology = 1;
    memcpy(first.portId, "\x01\x00\x00", 3);
    EXPECT_EQ(5u, GetWith(first).PortType) << "the first identifier of a fabric";

    const std::pair<uint16_t, uint32_t> states[] = {{0, 2}, {1, 3}, {2, 6}, {3, 1}, {0xFFFF, 1}};
    for (const auto& [value, state] : states) {
        properties::PortReplyBase base = Base();
        base.state = value;
        EXPECT_EQ(state, GetWith(base).PortState) << value;
    }
}

TEST_F(HbaApiPortTest, Speeds) {
    struct Row {
        uint32_t supported, withoutLowest, current;
    };
    constexpr uint32_t kNone = 0xFFFFFFFF;
    std::map<uint8_t, Row> rows;
    for (uint32_t code = 0; code < 256; ++code) {
        rows[static_cast<uint8_t>(code)] = {kNone, kNone, 0};
    }
    rows[1] = {kNone, kNone, 1};
    rows[2] = {3, 3, 2};
    rows[4] = {11, 11, 8};
    rows[8] = {26, 26, 16};
    rows[16] = {4, 4, 4};
    rows[22] = {56, 48, 32};
    rows[50] = {120, 112, 64};
    rows[100] = {224, 224, 128};
    for (const auto& [code, row] : rows) {
        SCOPED_TRACE(static_cast<unsigned>(code));
        properties::PortReplyBase base = Base();
        base.supportedSpeeds = code;
        base.currentSpeed = code;
        base.speedFlags = 0xFFFE;
        const HBA_PORTATTRIBUTES all = GetWith(base);
        EXPECT_EQ(row.supported, all.PortSupportedSpeed);
        EXPECT_EQ(row.current, all.PortSpeed);
        base.speedFlags = 1;
        EXPECT_EQ(row.withoutLowest, GetWith(base).PortSupportedSpeed);
    }
}

TEST_F(HbaApiPortTest, DriversThatReportSpeeds) {
    for (const char* version : {"8.1.2", "8.02.00", "9.0", "10.1", "8.1.10"}) {
        const HBA_PORTATTRIBUTES seen = GetUnderDriver(version);
        EXPECT_EQ(120u, seen.PortSupportedSpeed) << version;
        EXPECT_EQ(0x20, seen.PortSupportedFc4Types.bits[0]) << version;
    }
    for (const char* version : {"8.1.1", "8.01.01", "8", "8.1", "7.9.9", ""}) {
        const HBA_PORTATTRIBUTES seen = GetUnderDriver(version);
        EXPECT_EQ(0xFFFFFFFFu, seen.PortSupportedSpeed) << version;
        EXPECT_EQ(0xFFFFFFFFu, seen.PortSpeed) << version;
        EXPECT_EQ(0, seen.PortSupportedFc4Types.bits[0]) << version;
        EXPECT_EQ(0, seen.PortActiveFc4Types.bits[1]) << version;
    }
}

TEST_F(HbaApiPortTest, OsDeviceNames) {
    const std::pair<const char*, const char*> rows[] = {
        {"\\Device\\ScsiPort63", "\\\\.\\Scsi63:"},
        {"ScsiPort3", "ScsiPort3"},
        {"\\Device\\Scsi", "\\\\.\\Scsi:"},
        {"", ""},
    };
    for (const auto& [device, expected] : rows) {
        SetText(Record(handle).szDeviceName, device);
        EXPECT_STREQ(expected, GetWith(Base()).OSDeviceName);
    }
}

TEST_F(HbaApiPortTest, LegacyDriver) {
    Reopen("7.05.02", 0x7200);
    properties::LegacyPortAndNodeReply names = {};
    memcpy(names.worldWideName, WwnOf(7).wwn, 8);
    port->OnPlain(command::LegacyPortAndNode, {.data = BytesOf(names)});
    properties::LegacyAdapterReply adapter = {};
    memcpy(adapter.portId, "\x0A\x0B\x0C", 3);
    port->OnSelector(LegacySelector::AdapterInformation, {.data = BytesOf(adapter)});
    AnswerLegacyTargets({{1, 0, 0}, {2, 0, 1}});
    HBA_PORTATTRIBUTES expected = {};
    expected.NodeWWN = WwnOf(7);
    expected.PortWWN = WwnOf(7);
    expected.PortFcId = 0x0A0B0C;
    strcpy(expected.OSDeviceName, "\\\\.\\Scsi3:");
    expected.PortSupportedSpeed = 1;
    expected.PortSpeed = 1;
    expected.NumberofDiscoveredPorts = 4;  // as many as the list has, valid or not
    const std::pair<uint16_t, uint32_t> links[] = {{0x8000, 2}, {0xFFFF, 2}, {0x7FFF, 6}, {0, 6}};
    for (const auto& [value, state] : links) {
        properties::LegacyLinkReply link = {};
        link.linkValue = value;
        port->OnSelector(LegacySelector::LinkValue, {.data = BytesOf(link)});
        expected.PortState = state;
        EXPECT_EQ(BytesOf(expected), BytesOf(Get())) << value;
    }
    port->OnSelector(LegacySelector::LinkValue, {.error = ERROR_GEN_FAILURE});
    HBA_PORTATTRIBUTES out;
    EXPECT_EQ(31u, api.GetAdapterPortAttributesHandler(handle, 0, &out)) << "not mapped";
}

TEST_F(HbaApiPortTest, FailuresAreMapped) {
    HBA_PORTATTRIBUTES out;
    port->On(command::PortProperties, Reply{.status = 9});
    EXPECT_EQ(5u, api.GetAdapterPortAttributesHandler(handle, 0, &out));
    port->On(command::PortProperties, Reply{.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(1u, api.GetAdapterPortAttributesHandler(handle, 0, &out));
    port->On(command::PortProperties, Reply{});
    port->On(command::NodeProperties, Reply{.status = 16});
    EXPECT_EQ(7u, api.GetAdapterPortAttributesHandler(handle, 0, &out));
}

TEST_F(HbaApiPortTest, Statistics) {
    Bytes reply(112);
    for (uint32_t word = 0; word < 28; ++word) {
        const uint32_t value = word == 11 ? 0xFFFFFFFF : 100 + word;
        memcpy(&reply[4 * word], &value, sizeof value);
    }
    port->On(command::LinkStatistics, Reply{.data = reply});
    Guarded<HBA_PORTSTATISTICS> out;
    ASSERT_EQ(0u, api.GetPortStatisticsHandler(handle, 0, out.Get()));
    HBA_INT64 members[15];
    memcpy(members, out.Get(), sizeof members);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(-1, members[i]) << i;
    }
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(106 + i, members[9 + i]);
    }
    EXPECT_EQ(0xFFFFFFFFll, members[14]) << "a counter is never negative";

    Guarded<HBA_PORTSTATISTICS> untouched;
    port->On(command::LinkStatistics, Reply{.status = 20});
    EXPECT_EQ(1u, api.GetPortStatisticsHandler(handle, 0, untouched.Get()));
    EXPECT_TRUE(untouched.Raw().Holds(0xEE));

    port->On(command::ResetStatistics, Reply{});
    EXPECT_EQ(0u, api.ResetStatisticsHandler(handle, 5));
    port->On(command::ResetStatistics, Reply{.status = 6});
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, api.ResetStatisticsHandler(handle, 0)) << "not mapped";
}

}  // namespace
