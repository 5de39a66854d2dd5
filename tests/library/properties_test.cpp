// Node, chip, driver and firmware records of both driver generations.
#include "support/properties_fixture.h"

namespace {

using namespace support;

TEST_F(PropertiesTest, ChipRecord) {
    const Bytes reply = BytesOf(Patterned<properties::ChipReply>());
    port->On(command::ChipProperties, Reply{.data = reply});
    Guarded<HX_CHIP_PROPERTY> record;
    ASSERT_EQ(0u, HXGetHbaDeviceChipProperty(handle, record.Get()));
    Expected expected(80);
    expected.Copy(0, reply, 0, 32);
    expected.Copy(48, reply, 50, 4);
    expected.Copy(52, reply, 56, 7);
    EXPECT_EQ(expected.bytes, Seen(record));
}

TEST_F(PropertiesTest, LegacyChipRecord) {
    Reopen("7.05.02", 0x7200);
    const Bytes reply = BytesOf(Patterned<properties::LegacyChipReply>());
    port->OnSelector(LegacySelector::ChipIdentity, {.data = reply});
    Guarded<HX_CHIP_PROPERTY> record;
    ASSERT_EQ(0u, HXGetHbaDeviceChipProperty(handle, record.Get()));
    Expected expected(80);
    expected.Copy(0, reply, 12, 4);
    expected.Copy(4, reply, 56, 4);
    expected.Copy(8, reply, 20, 1);
    expected.Fill(9, 1, 0);
    expected.Copy(10, reply, 22, 2);
    expected.Fill(12, 18, 0);
    expected.Copy(30, reply, 18, 2);
    EXPECT_EQ(expected.bytes, Seen(record));

    const SentRequest request = port->Last();
    EXPECT_EQ(0xF000000Bu, request.Code());
    EXPECT_EQ((Bytes{0, 0, 0x80, 0, 16, 0, 0, 0, 0, 0, 0, 0}), request.Data());
    EXPECT_EQ(28u + 416u, request.outputSize);
}

TEST_F(PropertiesTest, FirmwareRecord) {
    const Bytes reply = BytesOf(Patterned<properties::FirmwareReply>());
    port->On(command::FirmwareProperties, Reply{.data = reply});
    Guarded<HX_FIRMWARE_PROPERTY> record;
    ASSERT_EQ(0u, HXGetHbaDeviceFirmwareProperty(handle, record.Get()));
    Expected expected(40);
    expected.Copy(0, reply, 0, 32);
    expected.Copy(32, reply, 128, 4);
    expected.Copy(36, reply, 136, 4);
    EXPECT_EQ(expected.bytes, Seen(record));
    EXPECT_EQ(0u, HXVerifyHbaState(handle));
    port->On(command::FirmwareProperties, Reply{.status = 21});
    EXPECT_EQ(HXMGT_DEVICE_NOT_READY, HXGetHbaDeviceFirmwareProperty(handle, record.Get()));
    EXPECT_EQ(HXMGT_FIRMWARE_STATE_INVALID, HXVerifyHbaState(handle));
}

TEST_F(PropertiesTest, DriverRecord) {
    const Bytes reply = BytesOf(Patterned<properties::DriverReply>());
    port->On(command::DriverProperties, Reply{.data = reply});
    Guarded<HX_DRIVER_PROPERTY> record;
    ASSERT_EQ(0u, HXGetHbaDeviceDriverProperty(handle, record.Get()));
    Expected expected(74);
    expected.Copy(0, reply, 0, 32);
    expected.Copy(32, reply, 128, 6);
    expected.Copy(38, reply, 136, 8);
    expected.Copy(46, reply, 144, 4);
    expected.Copy(50, reply, 148, 4);
    expected.Copy(54, reply, 152, 16);
    expected.Copy(70, reply, 168, 4);
    EXPECT_EQ(expected.bytes, Seen(record));
}

BOOL WINAPI OldSystem(LPOSVERSIONINFOA version) {
    version->dwMajorVersion = 4;
    return TRUE;
}

TEST_F(PropertiesTest, LegacyDriverAndFirmwareRecords) {
    Reopen("7.04.11", 0x7300);
    AnswerLegacy();
    Guarded<HX_DRIVER_PROPERTY> driver;
    ASSERT_EQ(0u, HXGetHbaDeviceDriverProperty(handle, driver.Get()));
    Expected expected(74);
    expected.Text(0, 32, "7.04.11");
    expected.Put(32, {1, 0, 0, 0, 0, 1});
    expected.Put(38, {0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0});
    expected.Fill(54, 16, 0);
    EXPECT_EQ(expected.bytes, Seen(driver)) << "bytes 70 to 73 are the caller's";

    const auto old = RedirectLibrary("GetVersionExA", &OldSystem);
    ASSERT_EQ(0u, HXGetHbaDeviceDriverProperty(handle, driver.Get()));
    expected.Put(32, {8, 0});
    EXPECT_EQ(expected.bytes, Seen(driver));

    Guarded<HX_FIRMWARE_PROPERTY> firmware;
    ASSERT_EQ(0u, HXGetHbaDeviceFirmwareProperty(handle, firmware.Get()));
    Expected words(40);
    words.Text(0, 32, "3.0.21");
    words.Fill(32, 4, 0);
    EXPECT_EQ(words.bytes, Seen(firmware));
    EXPECT_EQ(0u, HXVerifyHbaState(handle));
}

TEST_F(PropertiesTest, NodeRecord) {
    properties::NodeReply node = Patterned<properties::NodeReply>();
    SetText(node.manufacturerAndSerial, "Tarnel, Inc.-EMU7740A0001");
    node.flags = 0xFFFFFFFF;
    const Bytes reply = BytesOf(node);
    port->On(command::NodeProperties, Reply{.data = reply});
    Guarded<HX_NODE_PROPERTY> record;
    ASSERT_EQ(0u, HXGetHbaDeviceNodeProperty(handle, record.Get()));
    Expected expected(388);
    expected.Copy(0, reply, 0, 8);
    expected.Text(8, 80, "Tarnel, Inc.");
    expected.Copy(88, reply, 136, 32);
    expected.Put(120, {1});
    expected.Text(121, 31, "EMU7740A0001");
    expected.Copy(152, reply, 268, 96);
    expected.Copy(248, reply, 364, 4);
    expected.Copy(252, reply, 656, 8);
    expected.Put(260, {0x7F, 0, 0, 0});
    expected.Copy(264, reply, 168, 3);
    EXPECT_EQ(expected.bytes, Seen(record));

    // The same after a resync, asked as such.
    Guarded<HX_NODE_PROPERTY> anew;
    ASSERT_EQ(0u, HXGetHbaDeviceNodePropertyResync(handle, anew.Get()));
    EXPECT_EQ(expected.bytes, Seen(anew));
    EXPECT_EQ(1u, port->Last().Envelope().ext.resyncFlag);
    EXPECT_EQ(1u, port->Last().Envelope().ext.subCode);
    EXPECT_EQ(4u, port->Requests().size()) << "chip and node, twice";
    EXPECT_EQ(8u, port->Requests()[0].Envelope().ext.subCode);
}

TEST_F(PropertiesTest, ManufacturerAndSerialTexts) {
    struct Row {
        std::string text, manufacturer;
        bool present;
        std::string serial;
    };
    const std::string long60(60, 's');
    const Row rows[] = {
        {"Maker-S1", "Maker", true, "S1"},
        {"Maker-S1-2", "Maker", true, "S1-2"},
        {"Maker", "Maker", false, ""},
        {"Maker-", "Maker", false, ""},
        {"M-" + long60, "M", true, long60.substr(0, 30)},
        {std::string(100, 'm') + "-S1", std::string(80, 'm'), true, "S1"},
        {std::string(128, 'm'), std::string(80, 'm'), false, ""},
    };
    for (const Row& row : rows) {
        const HX_NODE_PROPERTY record = NodeWith(row.text);
        EXPECT_EQ(row.manufacturer, Text(record.manufacturer, 80)) << row.text;
        EXPECT_EQ(row.present ? 1 : 0, record.serialPresent) << row.text;
        if (row.present) {
            EXPECT_EQ(row.serial, Text(record.serialNumber, 31)) << row.text;
        }
        EXPECT_EQ(0, record.serialNumber[30]);
    }
    // Without any piece: four bytes of the manufacturer and the mark of the serial are cleared.
    for (const char* text : {"", "-", "---"}) {
        const HX_NODE_PROPERTY record = NodeWith(text);
        EXPECT_EQ(0, memcmp(record.manufacturer, "\0\0\0\0\xEE\xEE", 6)) << text;
        EXPECT_EQ(0, record.serialPresent);
        EXPECT_EQ('\xEE', record.serialNumber[0]);
    }
}

TEST_F(PropertiesTest, NumericSerial) {
    // Without the flag, and on a chip that has no texts whatever the flag says.
    const auto check = [&](uint32_t flags) {
        // The third byte is the middle one of the number.
        const std::pair<std::array<uint8_t, 3>, const char*> rows[] = {
            {{0, 42, 0}, "A00042"},
            {{0, 0, 1}, "A00256"},
            {{1, 0x9F, 0x86}, "A99999"},
            {{1, 0xA0, 0x86}, "B00000"},
            {{255, 255, 255},
             "\xE8"
             "77215"},
        };
        for (const auto& [bytes, serial] : rows) {
            memcpy(port->node.serialBytes, bytes.data(), 3);
            const HX_NODE_PROPERTY record = NodeWith("Maker-S1", flags);
            EXPECT_EQ("Tarnel, Inc.", Text(record.manufacturer, 80));
            EXPECT_EQ(1, record.serialPresent);
            EXPECT_EQ(serial, Text(record.serialNumber, 31));
            EXPECT_EQ(0, memcmp(record.serialBytes, bytes.data(), 3));
        }
    };
    check(0);
    check(0xFFFFFFEF);
    Reopen("9.04.02", 0x7312);
    check(16);
}

TEST_F(PropertiesTest, LegacyNodeRecord) {
    const std::tuple<uint16_t, const char*, uint8_t> rows[] = {
        {0x7100, "7100", 2},  {0x7200, "7200", 1}, {0x7300, "7300", 1},    {0x7404, "7404", 1},
        {0x7A05, "71005", 2}, {0x7102, "7102", 1}, {0xFFFF, "15151515", 1}};
    for (const auto& [deviceId, model, generation] : rows) {
        Reopen("7.05.02", deviceId);
        AnswerLegacy();
        Guarded<HX_NODE_PROPERTY> record;
        ASSERT_EQ(0u, HXGetHbaDeviceNodeProperty(handle, record.Get()));
        Expected expected(388);
        expected.Put(0, {0x21, 2, 3, 4, 5, 6, 7, 8});
        expected.Text(8, 80, "Tarnel, Inc.");
        expected.Text(88, 16, model);
        expected.Put(120, {1});
        expected.Text(121, 31, "A66306");  // 1 * 65536 + 3 * 256 + 2
        expected.Text(152, 32, "7.05.02");
        expected.Text(184, 32, "3.0.21");
        expected.Put(216, {1, 2, 3, 4, 0});
        expected.Put(248, {1, 0, generation, 0});
        expected.Fill(252, 8, 0);
        expected.Put(264, {1, 2, 3});
        EXPECT_EQ(expected.bytes, Seen(record)) << model;
    }
}

TEST_F(PropertiesTest, GenerationOfTheDriver) {
    HX_NODE_PROPERTY record;
    Reopen("7.05.03");
    EXPECT_EQ(0u, HXGetHbaDeviceNodeProperty(handle, &record));
    EXPECT_TRUE(port->Last().IsExtended());
    Reopen("7.05.02");
    EXPECT_EQ(Windows(ERROR_INVALID_FUNCTION), HXGetHbaDeviceNodeProperty(handle, &record));
    ASSERT_EQ(1u, port->Requests().size());
    EXPECT_EQ(0xF0000017u, port->Last().Code());
}

TEST_F(PropertiesTest, FailuresPassUnchanged) {
    Bytes record(512);
    const auto node = reinterpret_cast<HX_NODE_PROPERTY*>(record.data());
    const auto portRecord = reinterpret_cast<HX_PORT_PROPERTY*>(record.data());
    port->On(command::ChipProperties, Reply{.status = 23});
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, HXGetHbaDeviceNodeProperty(handle, node));
    EXPECT_EQ(HXMGT_HBA_IS_NOT_READY, HXGetHbaDeviceNodePropertyResync(handle, node));
    port->AnswerProbes();
    port->On(command::NodeProperties, Reply{.error = ERROR_GEN_FAILURE});
    EXPECT_EQ(Windows(ERROR_GEN_FAILURE), HXGetHbaDeviceNodeProperty(handle, node));
    EXPECT_EQ(Windows(ERROR_GEN_FAILURE), VXUpdateAdapterModelInBios(handle, record.data()));

    // Each of the legacy requests in turn.
    Reopen("7.04.11", 0x7200);
    for (int failing = 0; failing < 4; ++failing) {
        AnswerLegacy();
        const Reply failure{.error = ERROR_GEN_FAILURE};
        failing == 0   ? port->OnSelector(LegacySelector::AdapterInformation, failure)
        : failing == 1 ? port->OnSelector(LegacySelector::TargetList, failure)
        : failing == 2 ? port->OnPlain(command::LegacyPortAndNode, failure)
                       : port->OnSelector(LegacySelector::LinkValue, failure);
        EXPECT_EQ(Windows(ERROR_GEN_FAILURE), HXGetHbaDevicePortProperty(handle, 0, portRecord))
            << failing;
    }
}

TEST_F(PropertiesTest, SmartSanSwitch) {
    const std::string key = "SYSTEM\\CurrentControlSet\\Services\\vxfc2\\Parameters\\Device";
    uint8_t on = 0xEE;
    const auto state = [&] {
        on = 0xEE;
        EXPECT_EQ(0u, HXGetSmartSANStatusFC(handle, &on));
        return on;
    };
    EXPECT_EQ(0, state()) << "no key";
    EXPECT_EQ(0u, HXGetSmartSANStatusFC(0xFFFFFFFF, &on)) << "whatever the handle";
    EXPECT_EQ(0u, HXGetSmartSANStatusFC(handle, nullptr));
    EXPECT_EQ(0u, HXEnableSmartSANFC(handle));
    EXPECT_EQ("smartsanhp=1", registry.Read(key, "DriverParameter").Text());
    EXPECT_EQ(1, state());
    registry.SetText(key, "DriverParameter", "a=1;SmartSanHP=2;b=3");
    EXPECT_EQ(0, state());
    EXPECT_EQ(0u, HXEnableSmartSANFC(handle));
    EXPECT_EQ("a=1;smartsanhp=1;b=3", registry.Read(key, "DriverParameter").Text());
    EXPECT_EQ(0u, HXDisableSmartSANFC(handle));
    EXPECT_EQ("a=1;b=3", registry.Read(key, "DriverParameter").Text());
    EXPECT_EQ(0, state());
    registry.SetRaw(key, "DriverParameter", REG_BINARY, "x", 1);
    EXPECT_EQ(0, state());
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, HXEnableSmartSANFC(handle));
    EXPECT_EQ(HXMGT_REGISTRY_INVALID, HXDisableSmartSANFC(handle));
}

TEST_F(PropertiesTest, ModelNameForBootCode) {
    const auto copy = [&](std::string_view model) {
        SetText(port->node.model, model);
        port->AnswerProbes();
        GuardedBuffer record(81);
        EXPECT_EQ(0u, VXUpdateAdapterModelInBios(handle, record.Data()));
        EXPECT_TRUE(record.Holds(0xEE, 0, 68));
        return std::string(record.Data() + 68, record.Data() + 81);
    };
    const std::string rest(13, '\xEE');
    const std::string_view zero("\0", 1);
    EXPECT_EQ("KV " + std::string(zero) + rest.substr(4), copy("KV 2 port"));
    EXPECT_EQ(" " + std::string(zero) + rest.substr(2), copy(" KV"));
    EXPECT_EQ("KVA74101234 " + std::string(zero), copy("KVA74101234 x"));
    EXPECT_EQ("KVA741012345\xEE", copy("KVA741012345 x")) << "no blank among the first twelve";
    EXPECT_EQ("KV" + std::string(10, '\0') + "\xEE", copy("KV"));
}

}  // namespace
