// The standard HBA API as vxmgr reads it: codes in words, and a library that misbehaves.
#include <gtest/gtest.h>

#include <cstring>

#include "support/shown.h"
#include "vxmgr/hbaapi/hbaapi_records.h"
#include "vxmgr/hbaapi/hbaapi_texts.h"

namespace {

using namespace vxmgr;
using support::Shown;

HBA_UINT64 Lun(std::initializer_list<uint8_t> bytes) {
    uint8_t lun[8] = {};
    std::copy(bytes.begin(), bytes.end(), lun);
    HBA_UINT64 value;
    std::memcpy(&value, lun, sizeof value);
    return value;
}

TEST(ToolsHbaApi, CodesInWords) {
    EXPECT_EQ(HbaStatusText(0), "HBA_STATUS_OK");
    EXPECT_EQ(HbaStatusText(7), "HBA_STATUS_ERROR_MORE_DATA");
    EXPECT_EQ(HbaStatusText(8), "0x00000008");
    EXPECT_EQ(HbaStatusText(0x20000067), "0x20000067") << "a status of the library";
    EXPECT_EQ(HbaPortTypeText(HBA_PORTTYPE_PTP), "PTP");
    EXPECT_EQ(HbaPortTypeText(7), "7");
    EXPECT_EQ(HbaPortStateText(HBA_PORTSTATE_LINKDOWN), "LINKDOWN");
    EXPECT_EQ(HbaSpeedsText(0), "");
    EXPECT_EQ(HbaSpeedsText(HBA_PORTSPEED_NOT_REPORTED), "");
    EXPECT_EQ(HbaSpeedsText(HBA_PORTSPEED_10GBIT | HBA_PORTSPEED_64GBIT), "10 Gbit/s, 64 Gbit/s");

    HBA_FC4TYPES types{};
    EXPECT_EQ(HbaFc4TypesText(types), "");
    types.bits[1] = 0x01;
    types.bits[0] = 0x20;
    types.bits[5] = 0x01;
    types.bits[31] = 0x80;
    EXPECT_EQ(HbaFc4TypesText(types), "IP, FCP, NVMe, 0xff");
}

TEST(ToolsHbaApi, LunsAndAddresses) {
    EXPECT_EQ(HbaFcpLunText(0), "0");
    EXPECT_EQ(HbaFcpLunText(Lun({0, 255})), "255");
    EXPECT_EQ(HbaFcpLunText(Lun({0x41, 0x00})), "256") << "flat";
    EXPECT_EQ(HbaFcpLunText(Lun({0x40, 0x03})), "3");
    EXPECT_EQ(HbaFcpLunText(Lun({0x7F, 0xFF})), "16383");
    EXPECT_EQ(HbaFcpLunText(Lun({0x01, 0x03})), "0103000000000000") << "a unit of bus 1";
    EXPECT_EQ(HbaFcpLunText(Lun({0x80, 0x03})), "8003000000000000");
    EXPECT_EQ(HbaFcpLunText(Lun({0xC1, 0x01})), "c101000000000000");
    EXPECT_EQ(HbaFcpLunText(Lun({0, 3, 0, 1})), "0003000100000000") << "a second level";

    const HBA_UINT8 four[16] = {1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 192, 0, 2, 255};
    EXPECT_EQ(HbaAddressText(1, four), "192.0.2.255");
    EXPECT_EQ(HbaAddressText(2, four), "102:304:0:0:0:0:c000:2ff");
    EXPECT_EQ(HbaAddressText(0, four), "");

    EXPECT_EQ(ScsiPortOfDevice("\\\\.\\Scsi63:", 256), 63u);
    for (const char* name : {"", "\\\\.\\Scsi:", "\\\\.\\Scsi3", "Scsi3:", "\\\\.\\Scsi3x:"}) {
        EXPECT_EQ(ScsiPortOfDevice(name, 256), std::nullopt) << name;
    }
}

// A library of one adapter, each of whose answers a test may spoil.
struct FakeLibrary {
    HBA_STATUS name = HBA_STATUS_OK;
    HBA_HANDLE handle = 9;
    HBA_STATUS attributes = HBA_STATUS_OK;
    HBA_STATUS port = HBA_STATUS_OK;
    HBA_UINT32 discovered = 2;  // as the port's attributes say
    HBA_UINT32 reached = 2;     // those that answer
    HBA_STATUS behind = HBA_STATUS_ERROR_ILLEGAL_WWN;
    std::vector<HBA_UINT32> mapped = {};  // how many there are, question by question
    HBA_STATUS mapping = HBA_STATUS_OK;
    uint32_t questions = 0;
    int open = 0;
};
FakeLibrary fake;

HBA_STATUS Name(HBA_UINT32, char* name) {
    std::memset(name, 'n', 256);  // no terminator
    return fake.name;
}
HBA_HANDLE Open(char* name) {
    EXPECT_LT(std::strlen(name), 256u);
    fake.open += fake.handle != 0 ? 1 : 0;
    return fake.handle;
}
void Close(HBA_HANDLE handle) {
    EXPECT_EQ(handle, fake.handle);
    --fake.open;
}
HBA_STATUS Attributes(HBA_HANDLE, HBA_ADAPTERATTRIBUTES* attributes) {
    EXPECT_EQ(attributes->VendorSpecificID, 0u) << "else it would be a query of the driver's own";
    std::memset(attributes->Manufacturer, 'M', sizeof attributes->Manufacturer);
    std::strcpy(attributes->SerialNumber, "S1\x01\n");
    return fake.attributes;
}
HBA_STATUS Port(HBA_HANDLE, HBA_UINT32, HBA_PORTATTRIBUTES* port) {
    port->PortFcId = 0x010203;
    port->PortWWN.wwn[0] = 0x21;
    port->NumberofDiscoveredPorts = fake.discovered;
    return fake.port;
}
HBA_STATUS Statistics(HBA_HANDLE, HBA_UINT32, HBA_PORTSTATISTICS* statistics) {
    *statistics = {};
    statistics->TxFrames = -1;
    statistics->InvalidCRCCount = 7;
    return HBA_STATUS_OK;
}
HBA_STATUS Discovered(HBA_HANDLE, HBA_UINT32, HBA_UINT32 index, HBA_PORTATTRIBUTES* port) {
    port->PortWWN.wwn[7] = static_cast<HBA_UINT8>(index + 1);
    return index < fake.reached ? HBA_STATUS_OK : fake.behind;
}
HBA_STATUS Management(HBA_HANDLE, HBA_MGMTINFO*) {
    return HBA_STATUS_ERROR_NOT_SUPPORTED;
}
HBA_STATUS Mapping(HBA_HANDLE, HBA_FCPTARGETMAPPING* mapping) {
    const HBA_UINT32 room = mapping->NumberOfEntries;
    const HBA_UINT32 count =
        fake.mapped[std::min<size_t>(fake.questions++, fake.mapped.size() - 1)];
    for (HBA_UINT32 i = 0; i < std::min(room, count); ++i) {
        mapping->entry[i] = {};
        mapping->entry[i].ScsiId.ScsiOSLun = i;
    }
    mapping->NumberOfEntries = count;
    return fake.mapping != HBA_STATUS_OK ? fake.mapping
           : count > room                ? HBA_STATUS_ERROR_MORE_DATA
                                         : HBA_STATUS_OK;
}

HbaAdapter ReadFake(const FakeLibrary& library) {
    fake = library;
    if (fake.mapped.empty()) {
        fake.mapped = {0};
    }
    HBA_ENTRYPOINTS api{};
    api.GetAdapterNameHandler = Name;
    api.OpenAdapterHandler = Open;
    api.CloseAdapterHandler = Close;
    api.GetAdapterAttributesHandler = Attributes;
    api.GetAdapterPortAttributesHandler = Port;
    api.GetPortStatisticsHandler = Statistics;
    api.GetDiscoveredPortAttributesHandler = Discovered;
    api.GetRNIDMgmtInfoHandler = Management;
    api.GetFcpTargetMappingHandler = Mapping;
    HbaAdapter adapter = ReadHbaAdapter(api, 0, HbaDepth::Everything);
    EXPECT_EQ(fake.open, 0) << "left open";
    return adapter;
}

TEST(ToolsHbaApi, EveryAnswerBecomesARecord) {
    const HbaAdapter adapter = ReadFake({});
    EXPECT_EQ(adapter.name, std::string(255, 'n'));
    EXPECT_FALSE(adapter.Failed());
    const tools::Record detail = kHbaDetailFields.Make(adapter);
    EXPECT_EQ(Shown(detail, "attributes_manufacturer"), std::string(64, 'M'));
    EXPECT_EQ(Shown(detail, "attributes_serial"), "S1??");
    EXPECT_EQ(Shown(detail, "port_fc_id"), "0x010203");
    EXPECT_EQ(Shown(detail, "statistics_tx_frames"), "-") << "-1: not counted";
    EXPECT_EQ(Shown(detail, "statistics_tx_words"), "0");
    EXPECT_EQ(Shown(detail, "statistics_invalid_crcs"), "7");
    EXPECT_EQ(Shown(detail, "management_status"), "HBA_STATUS_ERROR_NOT_SUPPORTED");
    EXPECT_EQ(Shown(detail, "management_udp_port"), "-");
    EXPECT_EQ(Shown(detail, "mapping_status"), "HBA_STATUS_OK");
    EXPECT_EQ(adapter.discovered.size(), 2u);
    EXPECT_EQ(Shown(kHbaSummaryFields.Make(adapter), "status"), "HBA_STATUS_OK");
}

TEST(ToolsHbaApi, FailingHandlersAreTold) {
    const struct {
        FakeLibrary library;
        const char* status;
    } kRows[] = {
        {{.name = HBA_STATUS_ERROR_ILLEGAL_INDEX}, "HBA_STATUS_ERROR_ILLEGAL_INDEX"},
        {{.handle = 0}, "not opened"},
        {{.attributes = 0x20000075}, "0x20000075"},
        {{.port = HBA_STATUS_ERROR}, "HBA_STATUS_ERROR"},
    };
    for (const auto& row : kRows) {
        const HbaAdapter adapter = ReadFake(row.library);
        EXPECT_TRUE(adapter.Failed()) << row.status;
        EXPECT_EQ(Shown(kHbaSummaryFields.Make(adapter), "status"), row.status);
        EXPECT_EQ(Shown(kHbaDetailFields.Make(adapter), "status"), row.status);
    }
    const HbaAdapter noPort = ReadFake({.port = HBA_STATUS_ERROR});
    EXPECT_EQ(Shown(kHbaDetailFields.Make(noPort), "port_fc_id"), "-")
        << "the record of a failure means nothing";
    EXPECT_EQ(noPort.discovered.size(), 0u);
}

TEST(ToolsHbaApi, ListsThatMoveWhileTheyAreRead) {
    EXPECT_EQ(ReadFake({.reached = 1}).discovered.size(), 1u) << "one has gone";
    EXPECT_EQ(ReadFake({.reached = 1}).discoveredEnd, 0u);
    const HbaAdapter claims = ReadFake({.discovered = 0xFFFFFFFF, .reached = 0xFFFFFFFF});
    EXPECT_EQ(claims.discovered.size(), 4096u) << "nobody waits for four thousand million ports";
    const HbaAdapter broken = ReadFake({.reached = 0, .behind = HBA_STATUS_ERROR});
    EXPECT_EQ(broken.discoveredEnd, static_cast<HBA_STATUS>(HBA_STATUS_ERROR));

    const auto entries = [](std::vector<HBA_UINT32> counts) {
        FakeLibrary library;
        library.mapped = std::move(counts);
        return ReadFake(library).mapping;
    };
    EXPECT_EQ(entries({16}).record.size(), 16u);
    EXPECT_EQ(fake.questions, 1u);
    EXPECT_EQ(entries({17, 17}).record.size(), 17u);
    EXPECT_EQ(entries({17, 40, 39}).record.size(), 39u) << "grew, then shrank";
    EXPECT_EQ(entries({17, 17}).record.back().ScsiId.ScsiOSLun, 16u);
    const auto endless = entries({0xFFFFFFFF});
    EXPECT_EQ(endless.status, static_cast<HBA_STATUS>(HBA_STATUS_ERROR_MORE_DATA));
    EXPECT_EQ(endless.record.size(), 0u);
    FakeLibrary failing;
    failing.mapped = {5};
    failing.mapping = HBA_STATUS_ERROR;
    EXPECT_EQ(ReadFake(failing).mapping.record.size(), 0u);
}

}  // namespace
