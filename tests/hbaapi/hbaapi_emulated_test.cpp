// A caller of the standard API alone, over the emulated adapters.
#include "support/emulated_adapters.h"
#include "support/hbaapi_fixture.h"
#include "support/system_devices.h"

namespace {

using namespace support;

class HbaApiEmulatedTest : public LibraryTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(vxemu::FillBuiltInProfile("lab", *profile));
        profile->adapters[2].listsLostTargets = 1;  // the one with a legacy driver
        adapters = std::make_unique<EmulatedAdapters>(system, *profile);
    }
    void TearDown() override {
        LibraryTest::TearDown();
        adapters.reset();
    }

    HBA_ENTRYPOINTS api = RegisteredHandlers();
    std::unique_ptr<vxemu::Profile> profile = std::make_unique<vxemu::Profile>();
    std::unique_ptr<EmulatedAdapters> adapters;
    SystemDevices devices{system};
};

TEST_F(HbaApiEmulatedTest, LabIsSeenThroughTheTable) {
    ASSERT_EQ(0u, api.LoadLibraryHandler());
    ASSERT_EQ(4u, api.GetNumberOfAdaptersHandler());
    struct Row {
        const char* serial;
        const char* firmware;
        uint32_t speed;
        uint32_t listed;  // a legacy driver may also list what has gone
    };
    const Row rows[] = {{"EMU7740A0001", "9.12.01", 64, 4},
                        {"EMU7740A0001", "9.12.01", 64, 4},
                        {"EMU7404A0002", "8.01.02", 8, 4},
                        {"E00003", "3.3.25", 1, 5}};
    for (uint32_t index = 0; index < 4; ++index) {
        SCOPED_TRACE(index);
        char name[256];
        ASSERT_EQ(0u, api.GetAdapterNameHandler(index, name));
        const HBA_HANDLE handle = api.OpenAdapterHandler(name);
        ASSERT_NE(0u, handle);
        HBA_ADAPTERATTRIBUTES adapter = {};
        ASSERT_EQ(0u, api.GetAdapterAttributesHandler(handle, &adapter));
        EXPECT_STREQ("Tarnel, Inc.", adapter.Manufacturer);
        EXPECT_STREQ(rows[index].firmware, adapter.FirmwareVersion);
        if (index < 3) {
            EXPECT_STREQ(rows[index].serial, adapter.SerialNumber);
        }
        HBA_PORTATTRIBUTES port = {};
        ASSERT_EQ(0u, api.GetAdapterPortAttributesHandler(handle, 0, &port));
        const vxemu::PortProfile& expected = profile->ports[index];
        EXPECT_EQ(0, memcmp(expected.portName, port.PortWWN.wwn, 8));
        EXPECT_EQ(HBA_PORTSTATE_ONLINE, static_cast<int>(port.PortState));
        EXPECT_EQ(rows[index].listed, port.NumberofDiscoveredPorts);

        devices.Add("PhysicalDrive" + std::to_string(10 + index),
                    {expected.scsiPort, profile->targets[1].bus,
                     static_cast<uint8_t>(profile->targets[1].target), 1},
                    10 + index);
        HBA_PORTATTRIBUTES found = {};
        uint32_t reached = 0;
        while (api.GetDiscoveredPortAttributesHandler(handle, 0, reached, &found) == 0) {
            HBA_PORTATTRIBUTES byName = {};
            EXPECT_EQ(0u, api.GetPortAttributesByWWNHandler(handle, found.PortWWN, &byName));
            EXPECT_EQ(BytesOf(found), BytesOf(byName)) << "both ways lead to the same port";
            EXPECT_EQ(2u, api.ReportLUNsHandler(handle, found.PortWWN, name, 64, nullptr, 0));
            ++reached;
        }
        EXPECT_EQ(4u, reached);
        HBA_FCPTARGETMAPPING mapping;
        mapping.NumberOfEntries = 1;
        ASSERT_EQ(0u, api.GetFcpTargetMappingHandler(handle, &mapping));
        ASSERT_EQ(1u, mapping.NumberOfEntries) << "not the disks of other ports";
        EXPECT_EQ("\\\\.\\PhysicalDrive" + std::to_string(10 + index),
                  mapping.entry[0].ScsiId.OSDeviceName);
        EXPECT_EQ(0, memcmp(profile->targets[1].portName, mapping.entry[0].FcpId.PortWWN.wwn, 8));
        api.CloseAdapterHandler(handle);
    }
}

TEST_F(HbaApiEmulatedTest, StatisticsAndTopology) {
    const HBA_HANDLE handle = Open(0);
    HBA_PORTSTATISTICS statistics = {};
    ASSERT_EQ(0u, api.GetPortStatisticsHandler(handle, 0, &statistics));
    EXPECT_EQ(-1, statistics.TxFrames);
    EXPECT_EQ(0, statistics.InvalidCRCCount);
    HX_STATISTICS before = {};
    HX_STATISTICS after = {};
    ASSERT_EQ(0u, HXGetStatistics(handle, 0, &before));
    ASSERT_EQ(0u, api.ResetStatisticsHandler(handle, 0));
    ASSERT_EQ(0u, HXGetStatistics(handle, 0, &after));
    EXPECT_LT(after.rxFrames, before.rxFrames);

    uint8_t response[76] = {};
    HBA_UINT32 size = sizeof response;
    HBA_WWN name;
    memcpy(name.wwn, profile->targets[0].portName, sizeof name.wwn);
    ASSERT_EQ(0u, api.SendRNIDHandler(handle, name, PORT_WWN, response, &size));
    EXPECT_EQ(72u, size);
    EXPECT_EQ(0, memcmp(name.wwn, response + 8, 8)) << "who answered";
}

}  // namespace
