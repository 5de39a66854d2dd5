// The texts of the emulator's control tool: profiles as JSON, values and fault rules as words.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "fault_text.h"
#include "field_text.h"
#include "flash/version_text.h"
#include "flash_image.h"
#include "formats/firmware_image.h"
#include "model/control.h"
#include "model/profile/profile_fields.h"
#include "profile_json.h"
#include "transport/ext_ioctl.h"

namespace {

using vxemu::FaultKind;
using vxemu::FaultRule;
using vxemu::FieldScope;
using vxemu::Profile;

std::unique_ptr<Profile> BuiltIn(const char* name) {
    auto profile = std::make_unique<Profile>();
    EXPECT_TRUE(vxemu::FillBuiltInProfile(name, *profile));
    return profile;
}

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    const size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

std::string ErrorOf(const std::string& json) {
    Profile profile;
    std::string error;
    EXPECT_FALSE(vxemu::ProfileFromJson(json, &profile, &error)) << json;
    return error;
}

constexpr const char* kTiny =
    R"({"name":"tiny","adapters":[{"device_id":"0x7742","serial":"EMU1",)"
    R"("ports":[{"scsi_port":12,"port_name":"21-00-02-45-4d-00-00-01"}]}]})";

TEST(EmulatorProfileJson, RoundTripKeepsEveryByte) {
    for (const vxemu::BuiltInProfile& row : vxemu::kBuiltInProfileTable) {
        const auto profile = BuiltIn(row.name);
        // Values that no default has: what is not written would come back as something else.
        profile->adapters[0].vendorSpecificId = 0xFFFFFFFF;
        profile->ports[1].featureMask = 0x89ABCDEF;
        profile->ports[1].portDisabled = 1;
        profile->ports[2].state = vxemu::PortState::LinkDown;
        const auto read = std::make_unique<Profile>();
        std::string error;
        ASSERT_TRUE(vxemu::ProfileFromJson(vxemu::ProfileToJson(*profile), read.get(), &error))
            << error;
        EXPECT_EQ(std::memcmp(profile.get(), read.get(), sizeof *read), 0) << row.name;
    }
}

TEST(EmulatorProfileJson, TargetsAndTheirLuns) {
    const std::string tiny = kTiny;
    auto with = [&](const std::string& targets) {
        return tiny.substr(0, tiny.rfind('}')) + ",\"targets\":" + targets + "}";
    };
    Profile profile;
    std::string error;
    ASSERT_TRUE(vxemu::ProfileFromJson(
        with(R"([{"port_name":"2b00024545000100","luns":[{"number":5},)"
             R"({"number":"0","block_size":4096,"blocks":281474976710656}]},)"
             R"({"port_name":"2b00024545000200","role":"initiator"}])"),
        &profile, &error))
        << error;
    EXPECT_EQ(+profile.targetCount, 2u);
    EXPECT_EQ(profile.targets[0].nodeName[0], 0x20);
    EXPECT_EQ(+profile.targets[1].target, 1);
    EXPECT_EQ(+profile.targets[1].loopId, 3);
    ASSERT_EQ(+profile.lunCount, 2u);
    EXPECT_STREQ(profile.luns[0].serial, "EMU00L0005");
    EXPECT_EQ(+profile.luns[1].blockSize, 4096u);
    EXPECT_EQ(+profile.luns[1].blocks, 281474976710656u);

    EXPECT_TRUE(ErrorOf(with("{}")).starts_with("/targets: must be a list"));
    EXPECT_TRUE(ErrorOf(with("[{}]")).starts_with("/targets/0/port_name: is missing"));
    const std::pair<const char*, const char*> wrong[] = {
        {R"("luns":[{"number":1},{"number":1}])", "/1/number: the target has this LUN"},
        {R"("luns":[{"number":2048}])", "/0/number: must be"},
        {R"("role":"initiator","luns":[{"number":1}])", "/0: the LUN's target does not exist"},
        {R"("luns":[{"number":1,"block_size":520}])", "/0/block_size: must be one of 512, 4096"},
    };
    for (const auto& [members, text] : wrong) {
        const std::string said =
            ErrorOf(with(R"([{"port_name":"2b00024545000100",)" + std::string(members) + "}]"));
        EXPECT_TRUE(said.starts_with(std::string("/targets/0/luns") + text)) << said;
    }
}

TEST(EmulatorFlashImage, IsOfTheVersionThatWasAskedFor) {
    const auto profile = BuiltIn("lab");
    std::string error;
    const auto versionOf = [&](uint32_t scsiPort, uint32_t region, const char* version) {
        const auto image = vxemu::MakeFlashImage(*profile, scsiPort, region, version, &error);
        flash::VersionText text = "";
        flash::FormatVersion(
            image, region == 1 ? flash::VersionKind::Firmware : flash::VersionKind::Bios, text);
        if (region == 1 && !image.empty()) {
            EXPECT_EQ(formats::CheckFirmware(image, image.size()), formats::FirmwareCheck::Good);
        }
        return std::string(text);
    };
    EXPECT_EQ(versionOf(3, 1, "9.13.00"), "9.13.00");
    EXPECT_EQ(versionOf(6, 1, "10.0.255.7"), "10.00.255");
    EXPECT_EQ(versionOf(3, 7, "3.62"), "3.62");
    EXPECT_EQ(versionOf(9, 255, "1.55"), "1.55");
    for (const char* version : {"", "9", "9.13", "9.13.", "9..1", "9.13.256", "9.13.1.2.3",
                                "9.13.-1", " 9.13.1", "9.13.1 "}) {
        EXPECT_EQ(versionOf(3, 1, version), "") << version;
    }
    EXPECT_EQ(versionOf(3, 7, "13.612"), "") << "longer than what the adapter reports";
    EXPECT_EQ(versionOf(3, 21, "1.0.0"), "");
    EXPECT_EQ(versionOf(3, 99, "1.0.0"), "");
    EXPECT_EQ(versionOf(5, 1, "1.0.0"), "");
}

TEST(EmulatorProfileJson, WhatIsLeftOutFollowsFromTheChip) {
    Profile profile;
    std::string error;
    ASSERT_TRUE(vxemu::ProfileFromJson(kTiny, &profile, &error)) << error;
    EXPECT_EQ(+profile.portCount, 1u);
    EXPECT_STREQ(profile.adapters[0].driverName, "vxfc2");
    EXPECT_EQ(profile.ports[0].nodeName[0], 0x20);
    EXPECT_EQ(profile.ports[0].nodeName[7], 0x01);
    EXPECT_EQ(profile.ports[0].knowsSubCode10, 1);

    const std::string legacy =
        Replaced(kTiny, R"("serial")", R"("driver_generation":"legacy","serial")");
    Profile other;
    ASSERT_TRUE(vxemu::ProfileFromJson(legacy, &other, &error)) << error;
    EXPECT_STREQ(other.adapters[0].driverName, "vxfc1");
    ASSERT_TRUE(vxemu::ProfileFromJson(Replaced(kTiny, "EMU1", "EMU2"), &other, &error));
    EXPECT_NE(std::memcmp(profile.adapters[0].serialBytes, other.adapters[0].serialBytes, 3), 0);

    // The tool's own document carries the profile as its result.
    ASSERT_TRUE(
        vxemu::ProfileFromJson(std::string(R"({"exit":0,"result":)") + kTiny + "}", &other, &error))
        << error;
    EXPECT_EQ(std::memcmp(&profile, &other, sizeof profile), 0);
}

TEST(EmulatorProfileJson, ErrorsNameTheirPlace) {
    struct Case {
        const char* what;
        const char* with;
        const char* error;  // the beginning of the message
    };
    const Case cases[] = {
        {R"("scsi_port":12)", R"("scsi_port":64)",
         "/adapters/0/ports/0/scsi_port: must be a number from 0 to 63"},
        {R"("scsi_port":12)", R"("scsi_port":-1)", "/adapters/0/ports/0/scsi_port: must be"},
        {R"("scsi_port":12)", R"("scsi_port":1.5)", "/adapters/0/ports/0/scsi_port: must be"},
        {R"("scsi_port":12)", R"("scsi_port":18446744073709551616)",
         "/adapters/0/ports/0/scsi_port: must be"},
        {R"("scsi_port":12)", R"("scsi_port":[12])", "/adapters/0/ports/0/scsi_port: must be"},
        {R"("scsi_port":12,)", "", "/adapters/0/ports/0/scsi_port: is missing"},
        {R"("scsi_port")", R"("port_disabled":1,"scsi_port")",
         "/adapters/0/ports/0/port_disabled: must be yes or no"},
        {R"("scsi_port")", R"("speed":1,"scsi_port")", "/adapters/0/ports/0/speed: no such value"},
        {"21-00", "21:0", "/adapters/0/ports/0/port_name: must be 8 bytes"},
        {"21-00-02-45-4d-00-00-01", "0000000000000000",
         "/adapters/0/ports/0/port_name: the port name must not be zero"},
        {R"("0x7742")", R"("0x17742")", "/adapters/0/device_id: must be a number from 0 to 65535"},
        {"EMU1", "REAL1", "/adapters/0/serial: the serial number"},
        {"EMU1", "EMU\\u00001", "/adapters/0/serial: must be a text"},
        {"EMU1", "EMU\\u00e9", "/adapters/0/serial: must be a text"},
        {"EMU1", "EMU4567890123456789012345678901X", "/adapters/0/serial: must be a text of at"},
        {R"("serial")", R"("description":"HBA","serial")", "/adapters/0/description: the desc"},
        {R"("serial")", R"("ports_":[],"serial")", "/adapters/0/ports_: no such value"},
        {R"("tiny")", "7", "/name: must be a text"},
        {R"("name")", R"("version":2,"name")", "/version: no such value"},
        {R"([{"scsi_port)", R"([[],{"scsi_port)", "/adapters/0/ports/0: must be an object"},
        {R"("tiny",)", R"("tiny")", "not JSON: parse error at line 1"},
    };
    for (const Case& test : cases) {
        const std::string error = ErrorOf(Replaced(kTiny, test.what, test.with));
        EXPECT_TRUE(error.starts_with(test.error)) << error << "\nexpected: " << test.error;
    }
    EXPECT_EQ(ErrorOf("[]"), "/: must be an object");
    EXPECT_EQ(ErrorOf("{}"), "/name: is missing");
    EXPECT_TRUE(ErrorOf(R"({"name":"n","adapters":[]})").starts_with("/adapters: must be a list"));
    EXPECT_TRUE(ErrorOf(std::string(100'000, '[')).starts_with("not JSON"));

    // A port of the second adapter is named by its place there, not in the record.
    std::string two = vxemu::ProfileToJson(*BuiltIn("lab"));
    two = Replaced(two, "\"scsi_port\": 9", "\"scsi_port\": 3");
    EXPECT_TRUE(ErrorOf(two).starts_with("/adapters/2/ports/0/scsi_port: ")) << ErrorOf(two);

    std::string many = R"({"name":"many","adapters":[{"device_id":1,"serial":"EMU1","ports":[)";
    for (int port = 0; port < 65; ++port) {
        many += std::string(port == 0 ? "" : ",") + R"({"scsi_port":1,"port_name":""})";
    }
    EXPECT_TRUE(ErrorOf(many + "]}]}").starts_with("/adapters/0/ports: must be a list of 1 to 64"));
}

TEST(EmulatorFieldText, WordsAndBytes) {
    const auto bytesOf = [](FieldScope scope, const char* name, const char* text) {
        const vxemu::Field* field = vxemu::FindField(scope, name, std::strlen(name) + 1);
        EXPECT_NE(field, nullptr) << name;
        uint8_t bytes[vxemu::kFieldValueLength] = {};
        std::string wanted;
        if (!vxemu::ParseField(*field, text, bytes, &wanted)) {
            EXPECT_NE(wanted, "") << name;
            return std::string("refused");
        }
        EXPECT_TRUE(vxemu::FieldValueValid(*field, bytes));
        return vxemu::FormatField(*field, bytes);
    };
    EXPECT_EQ(bytesOf(FieldScope::Port, "port_id", "0A0b0C"), "0a:0b:0c");
    EXPECT_EQ(bytesOf(FieldScope::Port, "port_id", "0A-0b:0C"), "0a:0b:0c");
    EXPECT_EQ(bytesOf(FieldScope::Port, "port_id", "0A.0b.0C"), "refused");
    EXPECT_EQ(bytesOf(FieldScope::Port, "port_id", "0A:0b:0"), "refused");
    EXPECT_EQ(bytesOf(FieldScope::Port, "port_id", "0x0b0c"), "refused");
    EXPECT_EQ(bytesOf(FieldScope::Port, "port_id", ""), "refused");
    EXPECT_EQ(bytesOf(FieldScope::Port, "state", "link-down"), "link-down");
    EXPECT_EQ(bytesOf(FieldScope::Port, "state", "2"), "refused");
    EXPECT_EQ(bytesOf(FieldScope::Port, "fec_active", "off"), "false");
    EXPECT_EQ(bytesOf(FieldScope::Port, "feature_mask", "4294967295"), "0xffffffff");
    EXPECT_EQ(bytesOf(FieldScope::Port, "feature_mask", "4294967296"), "refused");
    EXPECT_EQ(bytesOf(FieldScope::Adapter, "option_rom_version", "3.61"), "3.61");
    EXPECT_EQ(bytesOf(FieldScope::Adapter, "option_rom_version", "13.61"), "refused");
    // A setting that the field table offers must fit the record that carries it.
    for (const vxemu::Field& field : vxemu::ProfileFields()) {
        EXPECT_LE(field.size, vxemu::kFieldValueLength) << field.name;
        EXPECT_LT(std::strlen(field.name), 32u);
    }
}

TEST(EmulatorFaultText, ActionsBothWays) {
    struct Case {
        const char* kind;
        const char* value;
        const char* shown;  // null: refused
    };
    const Case cases[] = {
        {"busy", "", "busy"},
        {"busy", "3", nullptr},
        {"hang", "500", "hang 500"},
        {"hang", "", nullptr},
        {"hang", "180001", nullptr},
        {"status", "0x10", "status 16"},
        {"status", "4294967296", nullptr},
        {"detail", "2", "detail 15:0x2"},
        {"detail", "0x4005", "detail 11:0x4005"},
        {"detail", "11:2", "detail 11:0x2"},
        {"detail", "12:2", nullptr},
        {"detail", ":2", nullptr},
        {"detail", "4294967307:2", nullptr},
        {"short", "0", nullptr},
        {"long", "4294967295", "long 4294967295"},
        {"lie-length", "", "lie-length"},
        {"corrupt", "", "corrupt"},
        {"corrupt-byte", "0x1000", "corrupt-byte 4096"},
        {"corrupt-byte", "", nullptr},
        {"wrong-bank", "", "wrong-bank"},
        {"old-version", "9.12", nullptr},
        {"explode", "", nullptr},
    };
    for (const Case& test : cases) {
        FaultRule rule = {3, 0, vxemu::kAnySubCode, 0, 0, FaultKind::None, 0, 0};
        std::string error;
        const bool taken = vxemu::ParseFaultAction(test.kind, test.value, &rule, &error);
        EXPECT_EQ(taken, test.shown != nullptr) << test.kind << " " << test.value;
        if (taken && test.shown != nullptr) {
            EXPECT_EQ(vxemu::FormatFaultAction(rule), test.shown);
        } else {
            EXPECT_NE(error, "");
        }
    }
}

TEST(EmulatorFaultText, KindsOfOneRequest) {
    FaultRule rule = {3, 0, vxemu::kAnySubCode, 0, 0, FaultKind::None, 0, 0};
    std::string error;
    ASSERT_TRUE(vxemu::ParseFaultAction("bad-signature", "", &rule, &error)) << error;
    EXPECT_EQ(vxemu::FormatFaultCode(rule), "SecureFlashVerify");
    EXPECT_FALSE(vxemu::ParseFaultAction("no-return", "", &rule, &error));
    EXPECT_EQ(error, "no-return is a fault of RestartFirmware");
}

TEST(EmulatorFaultText, RequestsByNameOrCode) {
    FaultRule rule = {3, 0, vxemu::kAnySubCode, 0, 0, FaultKind::Busy, 0, 0};
    EXPECT_EQ(vxemu::FormatFaultCode(rule), "any");
    ASSERT_TRUE(vxemu::ParseFaultCode("portproperties", &rule));
    EXPECT_EQ(+rule.code, 0xF0001001u);
    EXPECT_EQ(+rule.subCode, 2u);
    EXPECT_EQ(vxemu::FormatFaultCode(rule), "PortProperties");
    rule.subCode = vxemu::kAnySubCode;  // several requests share the code
    EXPECT_EQ(vxemu::FormatFaultCode(rule), "0xf0001001");
    // A region is chosen by the caller, so the name stands for all of them.
    ASSERT_TRUE(vxemu::ParseFaultCode("FlashRead", &rule));
    EXPECT_EQ(+rule.subCode, vxemu::kAnySubCode);
    ASSERT_TRUE(vxemu::ParseFaultCode("LegacyQuery", &rule));
    EXPECT_EQ(vxemu::FormatFaultCode(rule), "LegacyQuery");
    EXPECT_FALSE(vxemu::ParseFaultCode("Nothing", &rule));
    EXPECT_FALSE(vxemu::ParseFaultCode("0x1F0001001", &rule));
}

}  // namespace
