// Adapter attributes of the standard API, both driver generations.
#include "support/hbaapi_fixture.h"

namespace {

using namespace support;

class HbaApiAdapterTest : public HbaApiTest {
  protected:
    // The attributes as a caller with this ID on entry gets them.
    HBA_STATUS Get(uint32_t vendorSpecificId = 0) {
        memset(out.Get(), 0xEE, sizeof *out.Get());
        out->VendorSpecificID = vendorSpecificId;
        return api.GetAdapterAttributesHandler(handle, out.Get());
    }
    static std::string Text(const char* field, size_t size) {
        return std::string(field, strnlen(field, size));
    }
    std::string Maker() { return Text(out->Manufacturer, sizeof out->Manufacturer); }
    void GetWith(std::string_view makerAndSerial, uint32_t flags = 16) {
        SetText(port->node.manufacturerAndSerial, makerAndSerial);
        port->node.flags = flags;
        port->AnswerProbes();
        ASSERT_EQ(0u, Get());
    }

    Guarded<HBA_ADAPTERATTRIBUTES> out;
};

TEST_F(HbaApiAdapterTest, VendorQueriesReachTheDriverAlone) {
    properties::NodeReply reply = {};
    reply.vendorSpecificId = 0x12345678;
    port->On(command::NodeProperties, Reply{.data = BytesOf(reply)});
    for (const uint32_t id : {0x1ED0017u, 0x1ED00FFu, 0x1ED0000u}) {
        port->Forget();
        ASSERT_EQ(0u, Get(id));
        ASSERT_EQ(1u, port->Requests().size());
        const SentRequest request = port->Last();
        EXPECT_EQ(0xF0001001u, request.Code());
        EXPECT_EQ(1u, request.Envelope().ext.subCode);
        Bytes expected(696);
        memcpy(&expected[656], &id, sizeof id);
        EXPECT_EQ(expected, request.Data());
        EXPECT_EQ(116u + 696u, request.outputSize);
        EXPECT_EQ(id == 0x1ED0000 ? 0x12345678 : id, out->VendorSpecificID);
        out->VendorSpecificID = 0xEEEEEEEE;
        EXPECT_TRUE(out.Raw().Holds(0xEE)) << "no other member is filled";
    }
    port->On(command::NodeProperties, Reply{.status = 6});
    EXPECT_EQ(HXMGT_INVALID_PARAMETER, Get(0x1ED0000)) << "not mapped";
    EXPECT_EQ(0x1ED0000u, out->VendorSpecificID);
    port->On(command::NodeProperties, Reply{.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(Windows(ERROR_GEN_FAILURE), Get(0x1ED0017));
    out->VendorSpecificID = 0x1ED00FF;
    port->On(command::NodeProperties, Reply{.status = 6});
    EXPECT_EQ(4u, Get(0x1ED0001)) << "no vendor query: the node record fails, mapped";
}

TEST_F(HbaApiAdapterTest, Texts) {
    registry.SetText("HARDWARE\\DEVICEMAP\\Scsi\\Scsi Port 3", "Driver", "vxfc2");
    memcpy(port->node.nodeName, WwnOf(9).wwn, 8);
    SetText(port->node.model, "KVA7740");
    SetText(port->node.firmwareVersion, "9.12.01");
    memcpy(port->node.optionRomVersion, "4.10\0more", 10);
    memset(port->node.driverVersion, '7', 32);
    port->node.numberOfPorts = 2;
    port->node.vendorSpecificId = 0xABCD;
    Bytes nvram(256);
    memcpy(&nvram[112], "HW rev 0003 long and longer", 20);
    port->On(command::NvramRead, Reply{.status = 6});
    port->On({0xF000100F, 1}, Reply{.data = nvram});
    GetWith("Tarnel, Inc.-EMU7740A0001");

    EXPECT_EQ("Tarnel, Inc.", Maker());
    EXPECT_STREQ("EMU7740A0001", out->SerialNumber);
    EXPECT_STREQ("KVA7740", out->Model);
    EXPECT_STREQ("Korvex KVA7740 Fibre Channel Adapter", out->ModelDescription);
    EXPECT_TRUE(out->NodeWWN == WwnOf(9));
    EXPECT_STREQ("", out->NodeSymbolicName);
    EXPECT_STREQ("HW rev 0003 long", out->HardwareVersion) << "16 bytes of the block, no more";
    EXPECT_EQ(std::string(32, '7'), out->DriverVersion) << "32 bytes, then the terminator";
    EXPECT_EQ(0, memcmp("4.10\0more", out->OptionROMVersion, 10)) << "copied whole";
    EXPECT_EQ(0, out->OptionROMVersion[32]);
    EXPECT_STREQ("9.12.01", out->FirmwareVersion);
    EXPECT_EQ(0xABCDu, out->VendorSpecificID);
    EXPECT_EQ(2u, out->NumberOfPorts);
    EXPECT_STREQ("vxfc2.sys", out->DriverName);

    port->On({0xF000100F, 1}, Reply{.status = 31});
    ASSERT_EQ(0u, Get());
    EXPECT_STREQ("", out->HardwareVersion) << "not known, no failure";
}

TEST_F(HbaApiAdapterTest, ManufacturerAndSerialNumber) {
    GetWith(std::string(70, 'm') + "-" + std::string(50, 's'));
    EXPECT_EQ(std::string(64, 'm'), Maker()) << "fills its field";
    EXPECT_EQ(std::string(50, 's'), out->SerialNumber);
    GetWith("M-" + std::string(126, 's'));
    EXPECT_EQ("M", Maker());
    EXPECT_EQ(std::string(63, 's'), out->SerialNumber);
    GetWith("Maker");
    EXPECT_EQ("Maker", Maker());
    EXPECT_STREQ("", out->SerialNumber);
    GetWith("Maker-A-B");
    EXPECT_STREQ("A-B", out->SerialNumber);
    for (const char* none : {"", "---"}) {
        GetWith(none);
        EXPECT_EQ("", Maker());
        EXPECT_STREQ("", out->SerialNumber);
    }

    memcpy(port->node.serialBytes, "\x01\x02\x03", 3);  // 0x010302 = 66306
    GetWith("Maker-Serial", 0);
    EXPECT_EQ("Tarnel, Inc.", Maker());
    EXPECT_STREQ("A66306", out->SerialNumber);
    memcpy(port->node.serialBytes, "\x18\x6A\x00", 3);  // 0x18006A = 1572970
    GetWith("Maker-Serial", 0xFFFFFFEF);
    EXPECT_STREQ("P72970", out->SerialNumber);
    port->chip.deviceId = 0x7312;  // no newer chip
    GetWith("Maker-Serial");
    EXPECT_EQ("Tarnel, Inc.", Maker());
}

TEST_F(HbaApiAdapterTest, ModelsByDriverAndBoard) {
    struct Row {
        const char* driver;
        uint16_t device, board;
        const char* model;
        const char* description;
    };
    const Row rows[] = {
        {"8.02.02", 0x7404, 0x0100, "KVA410", "Korvex KVA410 Fibre Channel Adapter"},
        {"8.02.02", 0x7400, 0x0101, "KVA412", "Korvex KVA412 Fibre Channel Adapter"},
        {"8.02.02", 0x7414, 0x0102, "KVA400", "Korvex KVA400 Fibre Channel Adapter"},
        {"8.02.02", 0x7500, 0x0100, "7500", "Korvex KVA7500 PCI Fibre Channel Adapter"},
        {"8.02.03", 0x7404, 0x0100, "7404", "Korvex 7404 Fibre Channel Adapter"},
        {"9.04.02", 0x7740, 0x0100, "7740", "Korvex 7740 Fibre Channel Adapter"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.model);
        Reopen(row.driver, row.device);
        port->chip.subsystemDeviceId = row.board;
        char digits[8];
        snprintf(digits, sizeof digits, "%04X", row.device);
        SetText(port->node.model, digits);
        port->AnswerProbes();
        ASSERT_EQ(0u, Get());
        EXPECT_STREQ(row.model, out->Model);
        EXPECT_STREQ(row.description, out->ModelDescription);
    }
    // A model of 16 characters runs on into the block behind it, up to 32.
    SetText(port->node.model, "KVA7740-XXXXXXXX");
    SetText(port->node.modelDescription, "YYYYYYYYYYYYYYYY");
    port->AnswerProbes();
    ASSERT_EQ(0u, Get());
    EXPECT_STREQ("KVA7740-XXXXXXXXYYYYYYYYYYYYYYYY", out->Model);
    EXPECT_EQ(0, out->Model[32]);
    EXPECT_EQ(0, out->ModelDescription[255]);
}

TEST_F(HbaApiAdapterTest, LegacyDriver) {
    Reopen("7.05.02", 0x7200);
    properties::LegacyPortAndNodeReply names = {};
    memcpy(names.worldWideName, WwnOf(7).wwn, 8);
    port->OnPlain(command::LegacyPortAndNode, {.data = BytesOf(names)});
    properties::LegacyAdapterReply adapter = {};
    memcpy(adapter.firmwareVersion, "\x03\x00\x15", 3);
    memcpy(adapter.serialBytes, "\x01\x02\x03", 3);
    port->OnSelector(LegacySelector::AdapterInformation, {.data = BytesOf(adapter)});
    properties::LegacyChipReply chip = {};
    chip.deviceId = 0x7200;
    port->OnSelector(LegacySelector::ChipIdentity, {.data = BytesOf(chip)});
    ASSERT_EQ(0u, Get());
    EXPECT_EQ("Tarnel, Inc.", Maker());
    EXPECT_STREQ("A66306", out->SerialNumber);
    EXPECT_STREQ("7200", out->Model);
    EXPECT_STREQ("Korvex KVA7200 PCI Fibre Channel Adapter", out->ModelDescription);
    EXPECT_STREQ("7.05.02", out->DriverVersion);
    EXPECT_STREQ("3.0.21", out->FirmwareVersion);
    EXPECT_TRUE(out->NodeWWN == WwnOf(7));
    EXPECT_EQ(1u, out->NumberOfPorts);
    EXPECT_STREQ("", out->DriverName) << "the registry names none";
    EXPECT_STREQ("", out->HardwareVersion);
}

TEST_F(HbaApiAdapterTest, Failures) {
    const Reply node = {.data = BytesOf(port->node)};
    port->On(command::NodeProperties, Reply{.status = 9});
    EXPECT_EQ(5u, Get()) << "the node record's failure is mapped";
    FailFrom(command::NodeProperties, 1, node, {.status = 9});
    EXPECT_EQ(HXMGT_DEVICE_NOT_FOUND, Get()) << "the driver request's is not";
    FailFrom(command::NodeProperties, 1, node, {.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(31u, Get());
    port->AnswerProbes();
    port->On(command::ChipProperties, Reply{.status = 6});
    EXPECT_EQ(4u, Get());
}

}  // namespace
