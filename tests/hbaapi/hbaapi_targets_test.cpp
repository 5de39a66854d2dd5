// Discovered ports, the target mapping and the SCSI handlers of the standard API.
#include "machine/system_devices.h"
#include "support/hbaapi_fixture.h"
#include "support/scratch_file.h"

namespace {

using namespace support;

class HbaApiTargetsTest : public HbaApiTest {
  protected:
    HBA_STATUS GetPort(uint32_t index) {
        out = {};
        memset(&out, 0xEE, sizeof out);
        return api.GetDiscoveredPortAttributesHandler(handle, 0, index, &out);
    }
    HBA_STATUS GetByName(uint8_t last) {
        memset(&out, 0xEE, sizeof out);
        return api.GetPortAttributesByWWNHandler(handle, WwnOf(last), &out);
    }
    // One status for the three SCSI handlers, which must leave all memory alone.
    HBA_STATUS SendScsi(uint8_t last) {
        GuardedBuffer data(64);
        GuardedBuffer sense(18);
        const HBA_WWN name = WwnOf(last);
        const HBA_STATUS inquiry =
            api.ScsiInquiryHandler(handle, name, 0x100, 0, 0, data.Data(), 64, sense.Data(), 18);
        EXPECT_EQ(inquiry, api.ScsiInquiryHandler(handle, name, 0, 1, 0x83, data.Data(), 64,
                                                  sense.Data(), 18));
        EXPECT_EQ(inquiry, api.ReportLUNsHandler(handle, name, data.Data(), 64, sense.Data(), 18));
        EXPECT_EQ(inquiry,
                  api.ReadCapacityHandler(handle, name, 0, data.Data(), 8, sense.Data(), 18));
        EXPECT_TRUE(data.Holds(0xEE) && sense.Holds(0xEE));
        return inquiry;
    }
    // A mapping with room for this many entries, against a guard page.
    struct Mapping {
        explicit Mapping(uint32_t room) : buffer(8 + room * sizeof(HBA_FCPSCSIENTRY)) {
            Get()->NumberOfEntries = room;
        }
        HBA_FCPTARGETMAPPING* Get() {
            return reinterpret_cast<HBA_FCPTARGETMAPPING*>(buffer.Data());
        }
        // "device bus:target:lun identifier", an entry per text
        std::vector<std::string> Texts(uint32_t count) {
            std::vector<std::string> texts;
            for (uint32_t i = 0; i < count; ++i) {
                const HBA_FCPSCSIENTRY& entry = Get()->entry[i];
                char text[320];
                snprintf(text, sizeof text, "%s %u:%u:%u %06x", entry.ScsiId.OSDeviceName,
                         entry.ScsiId.ScsiBusNumber, entry.ScsiId.ScsiTargetNumber,
                         entry.ScsiId.ScsiOSLun, entry.FcpId.FcId);
                texts.push_back(text);
            }
            return texts;
        }
        GuardedBuffer buffer;
    };

    HBA_PORTATTRIBUTES out;
    SystemDevices devices{system};
};

TEST_F(HbaApiTargetsTest, DiscoveredPorts) {
    AnswerDiscovered({{1, 0, 4}, {2, 1, 5}});
    devices.Add("PhysicalDrive4", {3, 1, 5, 6}, 4);
    devices.Add("Tape0", {3, 1, 5, 2}, 0);
    devices.Add("PhysicalDrive9", {4, 0, 4, 0}, 9);  // behind another port
    ScratchFile trace;
    ASSERT_EQ(0u, HXEnableDebugTrace(&handle, trace.Path().c_str(), 1));
    ASSERT_EQ(0u, GetPort(1));
    HXEnableDebugTrace(&handle, nullptr, 0);
    HBA_PORTATTRIBUTES expected = {};
    expected.NodeWWN = WwnOf(2, 0x20);
    expected.PortWWN = WwnOf(2);
    expected.PortFcId = 0x0A0B02;
    expected.PortType = 1;
    expected.PortState = 1;
    strcpy(expected.OSDeviceName, "\\\\.\\Tape0");  // of the lowest LUN
    EXPECT_EQ(BytesOf(expected), BytesOf(out));
    const std::string text = trace.Contents();
    for (const char* line : {"HBAGetDiscoveredPortAttributes (Port 0, Disc Index 1)\n",
                             "Node Name 20 01 02 03 04 05 06 02\n",
                             "Port Name 50 01 02 03 04 05 06 02\n", "Port ID 0xa0b02\n"}) {
        EXPECT_TRUE(Has(text, line)) << line;
    }

    ASSERT_EQ(0u, GetPort(0));
    EXPECT_STREQ("", out.OSDeviceName);
    EXPECT_EQ(5u, GetPort(2));
    EXPECT_EQ(0xEEEEEEEE, out.PortType) << "not touched";
    devices.listError = ERROR_ACCESS_DENIED;
    ASSERT_EQ(0u, GetPort(1)) << "a system that does not tell is no failure";
    EXPECT_STREQ("", out.OSDeviceName);
}

TEST_F(HbaApiTargetsTest, PortsByName) {
    AnswerDiscovered({{1, 0, 4}, {2, 1, 5}, {2, 1, 6}});
    port->Forget();
    ASSERT_EQ(0u, GetByName(2));
    EXPECT_EQ(0x0A0B02u, out.PortFcId);
    EXPECT_EQ((Bytes{1, 0, 0, 0}), port->Requests(command::PortDatabase)[0].Data());
    EXPECT_EQ(116u + 176136u, port->Requests(command::PortDatabase)[0].outputSize);
    EXPECT_EQ(1u, port->Requests(command::DiscoveredPort)[0].Data()[0]) << "the first match";
    EXPECT_EQ(5u, GetByName(3));
    EXPECT_EQ(5u, GetByName(0)) << "no name is all zero";

    AnswerDiscovered({{1, 0, 4}, {2, 1, 5}}, 5000);
    EXPECT_EQ(0u, GetByName(2)) << "a count above what came";
    EXPECT_EQ(5u, GetByName(9));
    HBA_WWN zero = {};
    EXPECT_EQ(5u, api.GetPortAttributesByWWNHandler(handle, zero, &out))
        << "what did not come has no name";
    port->On(command::PortDatabase, Reply{.data = {1, 0, 0}});
    EXPECT_EQ(5u, GetByName(1));
    for (const Reply& failure : {Reply{.status = 6}, Reply{.error = ERROR_GEN_FAILURE}}) {
        port->On(command::PortDatabase, failure);
        EXPECT_EQ(5u, GetByName(1)) << "whatever the failure";
        EXPECT_EQ(5u, SendScsi(1));
    }
}

TEST_F(HbaApiTargetsTest, LegacyPortsByName) {
    Reopen("7.05.02", 0x7200);
    AnswerLegacyTargets({{1, 0, 4}, {2, 1, 5}});
    ASSERT_EQ(0u, GetByName(2));
    EXPECT_TRUE(out.PortWWN == WwnOf(2)) << "entries that are not valid do not count";
    EXPECT_EQ(0x0A0B02u, out.PortFcId);
    EXPECT_EQ(5u, GetByName(0xFF)) << "only entries that are not valid have this name";
    EXPECT_EQ(2u, SendScsi(2));
    EXPECT_EQ(5u, SendScsi(0xFF));
    port->OnSelector(LegacySelector::TargetList, {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(5u, GetByName(2));
    EXPECT_EQ(1u, SendScsi(2)) << "mapped";
}

TEST_F(HbaApiTargetsTest, ScsiCommandsAreNotSent) {
    AnswerDiscovered({{1, 0, 4}});
    EXPECT_EQ(2u, SendScsi(1));
    EXPECT_EQ(5u, SendScsi(2));
    EXPECT_TRUE(port->Requests(command::ScsiPassThrough).empty());
    AnswerDiscovered({});
    EXPECT_EQ(5u, SendScsi(1));
}

TEST_F(HbaApiTargetsTest, TargetMapping) {
    AnswerDiscovered({{2, 1, 5}, {1, 0, 4}});
    devices.Add("Changer2", {3, 1, 5, 255}, 2);
    devices.Add("Tape1", {3, 1, 5, 1}, 1);
    devices.Add("PhysicalDrive12", {3, 0, 4, 3}, 12);
    devices.Add("PhysicalDrive1", {3, 0, 6, 0}, 1);  // no discovered port there
    devices.Add("PhysicalDrive0", {0, 0, 4, 0}, 0);  // behind another port
    const std::vector<std::string> all = {"\\\\.\\PhysicalDrive12 0:4:3 0a0b01",
                                          "\\\\.\\Tape1 1:5:1 0a0b02",
                                          "\\\\.\\Changer2 1:5:255 0a0b02"};
    Mapping three(3);
    ASSERT_EQ(0u, api.GetFcpTargetMappingHandler(handle, three.Get()));
    EXPECT_EQ(3u, three.Get()->NumberOfEntries);
    EXPECT_EQ(all, three.Texts(3));
    HBA_FCPSCSIENTRY expected = {};
    strcpy(expected.ScsiId.OSDeviceName, "\\\\.\\Changer2");
    expected.ScsiId.ScsiBusNumber = 1;
    expected.ScsiId.ScsiTargetNumber = 5;
    expected.ScsiId.ScsiOSLun = 255;
    expected.FcpId.FcId = 0x0A0B02;
    expected.FcpId.NodeWWN = WwnOf(2, 0x20);
    expected.FcpId.PortWWN = WwnOf(2);
    memcpy(&expected.FcpId.FcpLun, "\x00\xFF\x00\x00\x00\x00\x00\x00", 8);
    EXPECT_EQ(BytesOf(expected), BytesOf(three.Get()->entry[2]));

    for (const uint32_t room : {0u, 1u, 2u}) {
        Mapping few(room);
        EXPECT_EQ(7u, api.GetFcpTargetMappingHandler(handle, few.Get())) << room;
        EXPECT_EQ(3u, few.Get()->NumberOfEntries) << "the true count";
        EXPECT_EQ(std::vector(all.begin(), all.begin() + room), few.Texts(room));
    }
    Mapping many(5);
    ASSERT_EQ(0u, api.GetFcpTargetMappingHandler(handle, many.Get()));
    EXPECT_EQ(3u, many.Get()->NumberOfEntries);
    EXPECT_TRUE(many.buffer.Holds(0xEE, 8 + 3 * 304, 8 + 5 * 304));

    port->On(command::PortDatabase, Reply{.status = 6});
    EXPECT_EQ(4u, api.GetFcpTargetMappingHandler(handle, many.Get()));
    EXPECT_EQ(0u, many.Get()->NumberOfEntries);
}

}  // namespace
