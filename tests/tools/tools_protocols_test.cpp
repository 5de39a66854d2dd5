// What vxmgr makes of the bytes that units, fabrics and remote ports send: the words, and that no
// length in them leads astray.
#include <gtest/gtest.h>

#include <random>

#include "support/shown.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/diag/dport_results.h"
#include "vxmgr/diag/register_space.h"
#include "vxmgr/fabric/fc_ct.h"
#include "vxmgr/fabric/fc_els.h"
#include "vxmgr/fabric/scsi_inquiry.h"
#include "vxmgr/fabric/scsi_sense.h"
#include "vxmgr/fabric/scsi_target.h"
#include "vxmgr/fabric/scsi_units.h"

namespace {

using namespace vxmgr;
using support::Shown;
using Data = std::vector<uint8_t>;

tools::Record InquiryRecord(Bytes data) {
    return kInquiryFields.Make(DecodeInquiry(data));
}
tools::Record VpdRecord(Bytes data) {
    return kScsiVpdFields.Make(DecodeScsiVpd(data));
}
tools::Record NodeRecord(Bytes data) {
    return kNodeIdentificationFields.Make(DecodeNodeIdentification(data));
}

Data FixedSenseData(uint8_t key, uint8_t code, uint8_t qualifier) {
    return {0x70, 0, key, 0, 0, 0, 0, 10, 0, 0, 0, 0, code, qualifier, 0, 0, 0, 0};
}

TEST(ToolsSense, FixedAndDescriptorFormatSayTheSame) {
    const Data fixed = FixedSenseData(5, 0x24, 0);
    const Data descriptor = {0x72, 5, 0x24, 0, 0, 0, 0, 0};
    ASSERT_TRUE(DecodeSense(fixed) && DecodeSense(descriptor));
    EXPECT_EQ(SenseText(*DecodeSense(fixed)), "illegal request: invalid field in CDB (5/24/00)");
    EXPECT_EQ(SenseText(*DecodeSense(descriptor)), SenseText(*DecodeSense(fixed)));
    EXPECT_TRUE(DecodeSense(descriptor)->descriptorFormat);

    Data deferred = FixedSenseData(3, 0x0C, 0);
    deferred[0] = 0x71;
    EXPECT_EQ(SenseText(*DecodeSense(deferred)),
              "medium error: write error (3/0c/00), of an earlier command");
    EXPECT_EQ(AdditionalSenseText(0x04, 0x01), "logical unit is becoming ready");
    EXPECT_EQ(AdditionalSenseText(0x7F, 0x01), "code 0x7f, qualifier 0x01");
    EXPECT_EQ(AdditionalSenseText(0x90, 0x01), "vendor specific code 0x90, qualifier 0x01");
}

TEST(ToolsSense, InformationIsThereOnlyWhenItIsValid) {
    Data fixed = FixedSenseData(3, 0x11, 0);
    fixed[3] = 0x01;
    fixed[6] = 0x02;
    EXPECT_FALSE(DecodeSense(fixed)->information);
    fixed[0] |= 0x80;
    EXPECT_EQ(DecodeSense(fixed)->information, 0x01000002u);
    // Behind a descriptor of another type.
    Data descriptors = {0x72, 3,  0x11, 0, 0, 0, 0, 16, 0x02, 2, 0, 0,
                        0x00, 10, 0x80, 0, 1, 2, 3, 4,  5,    6, 7, 8};
    EXPECT_EQ(DecodeSense(descriptors)->information, 0x0102030405060708u);
    descriptors[14] = 0;
    EXPECT_FALSE(DecodeSense(descriptors)->information);
}

TEST(ToolsSense, WhatWasNotSentIsNotRead) {
    EXPECT_FALSE(DecodeSense({}));
    EXPECT_FALSE(DecodeSense(Data{0x70, 0}));
    EXPECT_FALSE(DecodeSense(Data{0x72}));
    EXPECT_FALSE(DecodeSense(Data(32)));          // no response code
    EXPECT_FALSE(DecodeSense(Data{0x7F, 0, 5}));  // a vendor's format
    EXPECT_EQ(DecodeSense(Data{0x70, 0, 5})->key, 5);
    // The additional length ends before the code: what stands there is left over from before.
    Data cut = FixedSenseData(2, 0x3A, 1);
    cut[7] = 4;
    EXPECT_EQ(DecodeSense(cut)->code, 0);
    cut[7] = 5;
    EXPECT_EQ(DecodeSense(cut)->code, 0x3A);
    EXPECT_EQ(DecodeSense(cut)->qualifier, 0);
    // A descriptor that claims more than there is, and the longest additional length.
    EXPECT_FALSE(DecodeSense(Data{0x72, 3, 0, 0, 0, 0, 0, 255, 0, 10, 0x80, 0, 1})->information);
    EXPECT_FALSE(DecodeSense(Data{0x72, 3, 0, 0, 0, 0, 0, 3, 0, 0, 0})->information);
}

TEST(ToolsInquiry, StandardDataStopsAtItsLength) {
    Data data(96, 'X');
    const char kText[] = "ACME    Very fast disk  1.0 ";
    std::copy_n(kText, 28, data.begin() + 8);
    data[0] = 0;
    data[1] = 0x80;
    data[2] = 6;
    data[4] = 31;
    tools::Record record = InquiryRecord(data);
    EXPECT_EQ(Shown(record, "vendor"), "ACME");
    EXPECT_EQ(Shown(record, "product"), "Very fast disk");
    EXPECT_EQ(Shown(record, "revision"), "1.0");
    EXPECT_EQ(Shown(record, "removable"), "yes");
    EXPECT_EQ(Shown(record, "standard"), "SPC-4");
    data[4] = 11;  // ends with the vendor
    record = InquiryRecord(data);
    EXPECT_EQ(Shown(record, "vendor"), "ACME");
    EXPECT_EQ(Shown(record, "product"), "-");
    data[0] = 0x7F;
    EXPECT_EQ(Shown(InquiryRecord(data), "qualifier"), "no such logical unit");
    EXPECT_EQ(Shown(InquiryRecord({}), "vendor"), "-");
}

TEST(ToolsInquiry, IdentifiersWithinThePage) {
    const Data page = {0, 0x83, 0, 20,                                          // head
                       1, 0x03, 0, 8,  0x50, 1,   2,   3,   4,    5,    6, 7,   // NAA
                       2, 0x18, 0, 4,  'i',  'q', 'n', '.', 0x01, 0x03, 0, 8};  // SCSI name; beyond
    const tools::Record record = VpdRecord(page);
    const auto& rows = record.MainList()->records;
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(Shown(rows[0], "identifier"), "50:01:02:03:04:05:06:07");
    EXPECT_EQ(Shown(rows[0], "association"), "logical unit");
    EXPECT_EQ(Shown(rows[1], "identifier"), "iqn.");
    EXPECT_EQ(Shown(rows[1], "association"), "target port");

    // A designator longer than the page, and a page longer than the data.
    const Data lying = {0, 0x83, 0xFF, 0xFF, 1, 0x03, 0, 255, 1, 2, 3};
    const tools::Record cut = VpdRecord(lying);
    ASSERT_EQ(cut.MainList()->records.size(), 1u);
    EXPECT_EQ(Shown(cut.MainList()->records[0], "identifier"), "010203");
    EXPECT_EQ(Shown(VpdRecord(Data{0, 0x80, 0, 9, 'S', '1'}), "serial"), "S1");
    EXPECT_EQ(VpdRecord(Data{0, 0, 0, 3, 0, 0x80, 0x83, 0xB0}).MainList()->records.size(), 3u);
}

TEST(ToolsUnits, CapacitiesAtTheirLimits) {
    const Data small = {0, 0, 0x07, 0xFF, 0, 0, 2, 0};
    EXPECT_EQ(DecodeCapacity10(small)->TotalBytes(), 2048u * 512);
    EXPECT_FALSE(NeedsLongForm(*DecodeCapacity10(small)));
    EXPECT_TRUE(NeedsLongForm(*DecodeCapacity10(Data{255, 255, 255, 255, 0, 0, 2, 0})));
    EXPECT_FALSE(DecodeCapacity10(Data(7)));
    EXPECT_FALSE(DecodeCapacity16(Data(11)));
    Data huge(12, 0xFF);
    EXPECT_FALSE(DecodeCapacity16(huge)->Blocks());
    huge[7] = 0xFE;
    EXPECT_EQ(DecodeCapacity16(huge)->Blocks(), UINT64_MAX);
    EXPECT_FALSE(DecodeCapacity16(huge)->TotalBytes());
    EXPECT_EQ(SizeText(999), "999 bytes");
    EXPECT_EQ(SizeText(1000), "1.00 kB (0.98 KiB)");
    EXPECT_EQ(SizeText(2199023255552), "2.20 TB (2.00 TiB)");
    EXPECT_EQ(SizeText(UINT64_MAX), "18.45 EB (16.00 EiB)");
}

TEST(ToolsUnits, LunListsInEveryAddressing) {
    Data list = {0, 0, 0, 32, 0, 0, 0, 0};
    for (const auto& [high, low] : {std::pair{0x00, 0x05}, {0x41, 0x02}, {0x80, 0x23}, {0xC1, 0}}) {
        list.insert(list.end(), {static_cast<uint8_t>(high), static_cast<uint8_t>(low)});
        list.resize(list.size() + 6);
    }
    const auto luns = DecodeLuns(list);
    ASSERT_EQ(luns.size(), 4u);
    EXPECT_EQ(luns[0].lun, 5u);
    EXPECT_EQ(luns[1].lun, 0x102u);
    EXPECT_EQ(luns[2].lun, 3u);
    EXPECT_FALSE(luns[3].lun);
    EXPECT_EQ(luns[1].address, "4102000000000000");
    list[3] = 15;  // an entry and a half
    EXPECT_EQ(DecodeLuns(list).size(), 1u);
    list[0] = 0xFF;  // far more than there is
    EXPECT_EQ(DecodeLuns(list).size(), 4u);
    EXPECT_EQ(LunListLength(list), 0xFF00000Full + 8);
    EXPECT_TRUE(DecodeLuns(Data{0, 0, 0}).empty());
}

TEST(ToolsTarget, EveryNotationAndNothingElse) {
    HX_SCSI_ADDRESS address{};
    std::string error;
    ASSERT_TRUE(ParseTarget("wwn:21:00:00:0e:1e:00:00:01", &address, &error));
    EXPECT_EQ(address.type, HX_ADDRESS_PORT_NAME);
    EXPECT_EQ(address.address[7], 1);
    EXPECT_TRUE(ParseTarget("2100000e1e000001", &address, &error));
    ASSERT_TRUE(ParseTarget("id:0x010203", &address, &error));
    EXPECT_EQ(address.type, HX_ADDRESS_PORT_ID);
    EXPECT_EQ(Data(address.address, address.address + 4), (Data{1, 2, 3, 0}));
    ASSERT_TRUE(ParseTarget("1:515", &address, &error));
    EXPECT_EQ(address.type, HX_ADDRESS_BUS_TARGET);
    EXPECT_EQ(Data(address.address, address.address + 4), (Data{1, 0, 3, 2}));
    for (const char* wrong : {"", "wwn:", "wwn:21:00", "id:", "id:0x1000000", "id:abc", "1",
                              "1:", ":1", "1:2:3", "65536:0", "0:-1", "all"}) {
        EXPECT_FALSE(ParseTarget(wrong, &address, &error)) << wrong;
        EXPECT_FALSE(error.empty()) << wrong;
    }
    Data bytes;
    EXPECT_TRUE(ParseHex("12 00:0A-ff", &bytes));
    EXPECT_EQ(bytes, (Data{0x12, 0, 0x0A, 0xFF}));
    for (const char* wrong : {"", " ", "1", "1 2", "12 3", "0x12", "12,13", "zz"}) {
        EXPECT_FALSE(ParseHex(wrong, &bytes)) << wrong;
    }
}

TEST(ToolsRegisters, SpacesWithinTheirLimits) {
    // The space as it is told, and what else it takes of "ADDRESS=VALUE".
    const struct {
        const char* space;
        const char* text;
        const char* good;
        const char* wrong;
    } kRows[] = {
        {"serdes", "serdes", "0xffff=0xffff", "0x10000=1"},
        {"serdes", "serdes", "0=0", "0=0x10000"},
        {"serdes:3", "serdes:3", "0xffffffff=0xffffffff", "0=0x100000000"},
        {"retimer", "retimer:0x18", "0x100=0xff", "0=0x100"},
        {"retimer:127", "retimer:0x7f", "65535=0", "65536=0"},
    };
    RegisterSpace space;
    RegisterChoice choice;
    std::string error;
    for (const auto& row : kRows) {
        ASSERT_TRUE(ParseRegisterSpace(row.space, &space, &error)) << row.space << error;
        EXPECT_EQ(space.Text(), row.text);
        EXPECT_TRUE(ParseRegister(row.good, space, true, &choice, &error)) << row.good << error;
        EXPECT_TRUE(choice.value);
        EXPECT_FALSE(ParseRegister(row.wrong, space, true, &choice, &error)) << row.wrong;
    }
    for (const char* wrong : {"", "serde", "serdes:", "serdes:65536", "retimer:128", "retimer:x"}) {
        error.clear();
        EXPECT_FALSE(ParseRegisterSpace(wrong, &space, &error)) << wrong;
        EXPECT_FALSE(error.empty()) << wrong;
    }
    ASSERT_TRUE(ParseRegisterSpace("serdes", &space, &error));
    ASSERT_TRUE(ParseRegister("0x10", space, false, &choice, &error));
    EXPECT_EQ(choice.address, 0x10u);
    EXPECT_FALSE(choice.value);
    EXPECT_FALSE(ParseRegister("0x10=1", space, false, &choice, &error));
    for (const char* wrong : {"0x10", "0x10=", "=1", "", "1=2=3"}) {
        EXPECT_FALSE(ParseRegister(wrong, space, true, &choice, &error)) << wrong;
    }
}

TEST(ToolsDport, WordsOfTheResults) {
    HX_DPORT_RESULT_EX2 result{};
    const auto shown = [&](const char* key) {
        return Shown(kDportOutcomeFields.Make(DecodeDport(result)), key);
    };
    const auto put = [&](size_t at, uint8_t value) { result.bytes[at] = value; };
    put(0, 2);
    put(2, 4);
    put(4, 1);
    EXPECT_EQ(shown("state"), "complete");
    EXPECT_EQ(shown("hop"), "whole link");
    EXPECT_EQ(shown("tests"), "1");
    EXPECT_EQ(shown("verdict"), "passed");
    put(8, 1);
    put(1087, 9);
    EXPECT_EQ(shown("verdict"), "failed");
    ASSERT_EQ(DecodeDport(result).failed.size(), 2u);
    EXPECT_EQ(DecodeDport(result).failed[1].place, 1079u);
    put(2, 5);
    EXPECT_EQ(shown("hop"), "-");
    EXPECT_EQ(shown("hop_word"), "0x0005");
    put(0, 1);
    EXPECT_EQ(shown("state"), "running");
    EXPECT_EQ(shown("verdict"), "-");
    put(0, 3);
    EXPECT_EQ(shown("state"), "-");
    EXPECT_EQ(shown("verdict"), "-");
}

TEST(ToolsCt, RequestsAndAnswers) {
    const Data request = NameServerRequest(kGetAllNext, Data{0, 1, 2, 3}, kGetAllNextLength);
    EXPECT_EQ(request, (Data{1, 0, 0, 0, 0xFC, 2, 0, 0, 1, 0, 0, 155, 0, 0, 0, 0, 0, 1, 2, 3}));
    Data response = request;
    response[8] = 0x80;
    response[9] = 0x01;
    response[13] = 9;
    response[14] = 2;
    ASSERT_TRUE(DecodeCtResponse(response));
    EXPECT_FALSE(DecodeCtResponse(response)->accepted);
    EXPECT_EQ(CtRejectText(*DecodeCtResponse(response)),
              "unable to perform the request: port name not registered (0x09/0x02)");
    response[13] = 0x77;
    response[14] = 0x88;
    EXPECT_EQ(CtRejectText(*DecodeCtResponse(response)),
              "reason 0x77: explanation 0x88 (0x77/0x88)");
    response[9] = 0x02;
    EXPECT_TRUE(DecodeCtResponse(response)->accepted);
    EXPECT_FALSE(DecodeCtResponse(Bytes(response).first(15)));

    Data answer(kGetAllNextLength);
    answer[0] = 1;
    answer[3] = 0x44;
    answer[4] = 0x21;
    answer[12] = 255;  // the longest symbolic name, not ended by a zero
    std::fill_n(answer.begin() + 13, 255, 'n');
    answer[562] = 1;  // FC-4 type 8: bit 8 of the first word, big-endian
    const auto port = DecodeNamedPort(answer);
    ASSERT_TRUE(port);
    EXPECT_EQ(port->portId, 0x44u);
    EXPECT_EQ(PortTypeName(port->type), "N_Port");
    EXPECT_EQ(port->symbolicPort, std::string(255, 'n'));
    EXPECT_EQ(port->nodeName.Digits(), "0000000000000000");
    EXPECT_EQ(port->protocols, "FCP");
    answer.pop_back();
    EXPECT_FALSE(DecodeNamedPort(answer));
}

TEST(ToolsEls, RequestsAndAnswers) {
    EXPECT_EQ(LinkErrorsRequest(0x010203), (Data{0x0F, 0, 0, 0, 0, 1, 2, 3}));
    Data errors(28);
    errors[0] = 2;
    errors[7] = 7;
    errors[27] = 9;
    ASSERT_TRUE(DecodeLinkErrors(errors));
    EXPECT_EQ(DecodeLinkErrors(errors)->linkFailures, 7u);
    EXPECT_EQ(DecodeLinkErrors(errors)->crcErrors, 9u);
    EXPECT_FALSE(DecodeLinkErrors(Bytes(errors).first(27)));
    errors[0] = 1;
    EXPECT_FALSE(DecodeLinkErrors(errors));

    EXPECT_EQ(*ElsRejectText(Data{1, 0, 0, 0, 0, 0x0B, 0x2C, 0}),
              "command not supported: request not supported (0x0b/0x2c)");
    EXPECT_FALSE(ElsRejectText(Data{1, 0, 0, 0, 0, 0x0B, 0x2C}));
    EXPECT_FALSE(ElsRejectText(Data{2, 0, 0, 0, 0, 0x0B, 0x2C, 0}));

    const Data echo = EchoRequest(64, 5);
    ASSERT_EQ(echo.size(), 64u);
    EXPECT_EQ(echo[0], 0x10);
    Data back = echo;
    back[0] = 2;
    EXPECT_TRUE(IsEchoOf(echo, back));
    EXPECT_FALSE(IsEchoOf(echo, echo));  // no accept
    EXPECT_FALSE(IsEchoOf(echo, Bytes(back).first(63)));
    back[63] ^= 1;
    EXPECT_FALSE(IsEchoOf(echo, back));
    EXPECT_FALSE(IsEchoOf(echo, {}));
    EXPECT_EQ(EchoRequest(0, 0).size(), kElsWord);
}

TEST(ToolsEls, NodeIdentificationWithinItsLengths) {
    Data answer(76);
    answer[0] = 2;
    answer[4] = 0xDF;
    answer[5] = 16;
    answer[7] = 52;
    answer[8] = 0x21;
    answer[16] = 0x20;
    answer[43] = 0x0A;
    answer[51] = 3;
    EXPECT_EQ(Shown(NodeRecord(answer), "unit_type"), "host");
    EXPECT_EQ(Shown(NodeRecord(answer), "attached_nodes"), "3");
    EXPECT_EQ(Shown(NodeRecord(answer), "node_wwn"), "20:00:00:00:00:00:00:00");
    answer[7] = 0;  // common data alone
    EXPECT_EQ(Shown(NodeRecord(answer), "unit_type"), "-");
    answer[5] = 8;  // half of it
    EXPECT_EQ(Shown(NodeRecord(answer), "node_wwn"), "-");
    EXPECT_EQ(Shown(NodeRecord({}), "port_wwn"), "-");
}

// Bytes of any kind at any length: whatever is wrong with them shows under the sanitizers.
TEST(ToolsProtocols, AnyBytesAtAnyLength) {
    std::mt19937 random(20);
    for (int round = 0; round < 4000; ++round) {
        Data bytes(random() % 80);
        for (uint8_t& byte : bytes) {
            byte = static_cast<uint8_t>(random() % 4 == 0 ? 0xFF : random());
        }
        if (bytes.size() > 1) {
            constexpr uint8_t kStarts[] = {0x70, 0x72, 0x00, 0x02};
            bytes[0] = kStarts[round % 4];
            bytes[1] = round % 8 < 4 ? 0x83 : bytes[1];
        }
        const size_t rows = (bytes.size() + 7) / 8;
        EXPECT_LE(DecodeLuns(bytes).size(), rows);
        if (const auto sense = DecodeSense(bytes)) {
            EXPECT_FALSE(SenseText(*sense).empty());
        }
        const tools::Record page = VpdRecord(bytes);
        const tools::Field* list = page.MainList();
        EXPECT_TRUE(list == nullptr || list->records.size() <= bytes.size());
        EXPECT_FALSE(InquiryRecord(bytes).Empty());
        EXPECT_FALSE(NodeRecord(bytes).Empty());
        EXPECT_EQ(DecodeLinkErrors(bytes).has_value(), bytes.size() >= 28 && bytes[0] == 2);
    }
}

}  // namespace
