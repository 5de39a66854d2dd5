// The shared formats against bytes written out by hand: encoder and decoder are one code, so that
// a fault of one would be hidden by the other.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formats/common_transport.h"
#include "formats/crc32.h"
#include "formats/firmware_image.h"
#include "formats/flash_lock.h"
#include "formats/link_services.h"
#include "formats/nvram_block.h"
#include "formats/rom_image.h"
#include "formats/scsi_data.h"
#include "formats/sfp_pages.h"
#include "formats/sums.h"
#include "formats/version_numbers.h"
#include "formats/vpd_tags.h"

namespace {

using namespace formats;
using Data = std::vector<uint8_t>;

// Bytes of a text, zeros in it included.
template <size_t size>
Data Of(const char (&text)[size]) {
    return {text, text + size - 1};
}

TEST(Formats, PartsAndNumbers) {
    const Data bytes = {0x01, 0x80, 0xFF, 0x10, 0x02};
    EXPECT_EQ(BigEndian(bytes.data(), 3), 0x0180FFu);
    EXPECT_EQ(BigEndian(bytes.data(), 0), 0u);
    uint8_t five[5];
    PutBigEndian(0xFFAB0180FF1002, five);  // what does not fit is cut
    EXPECT_EQ(Data(five, five + 5), (Data{0x01, 0x80, 0xFF, 0x10, 0x02}));
    EXPECT_EQ(BigEndian(five), 0x0180FF1002u);

    EXPECT_EQ(Part(bytes, 3).size(), 2u);
    EXPECT_EQ(Part(bytes, 3, SIZE_MAX).size(), 2u);
    EXPECT_EQ(Part(bytes, 1, 2)[1], 0xFF);
    EXPECT_TRUE(Part(bytes, 6).empty());
    EXPECT_EQ(Padded<uint32_t>(Part(bytes, 3)), 0x0210u);
    EXPECT_TRUE(Holds<uint16_t>(bytes, 3));
    EXPECT_FALSE(Holds<uint16_t>(bytes, 4));
    EXPECT_FALSE(Holds<uint16_t>(bytes, SIZE_MAX));
}

TEST(Formats, Sums) {
    const Data bytes = {0x01, 0x80, 0xFF, 0x10, 0x02, 0x00, 0x00, 0xF0, 0x77};
    EXPECT_EQ(ByteSum(bytes), 0xF9);  // 0x01+0x80+0xFF+0x10+0x02+0xF0+0x77 = 0x2F9
    // A rest that is no whole word does not count.
    EXPECT_EQ(LittleEndianWordSum(bytes), 0x00FF8003u);
    EXPECT_EQ(BigEndianWordSum(bytes), 0x03810000u);

    const Data digits = Of("123456789");
    EXPECT_EQ(Crc32(digits), 0xCBF43926u);
    EXPECT_EQ(Crc32({}), 0u);
    EXPECT_EQ(Crc32Remainder(0, digits), 0x2DFD2D88u);
    EXPECT_EQ(Crc32Remainder(Crc32Remainder(0, Part(digits, 0, 4)), Part(digits, 4)), 0x2DFD2D88u);
}

TEST(Formats, RomImage) {
    Data rom = Of("\x55\xAA\x01");
    rom.resize(24);
    const Data rest =
        Of("\x1C\0\0\0PCIR\xD0\x1E\x40\x77\0\0\x16\0\0\0\x04\x0C\x01\0\x2A\x03\x03\x80");
    rom.insert(rom.end(), rest.begin(), rest.end());
    rom.resize(512);
    ASSERT_TRUE(BeginsRom(rom));
    const auto image = ImageAt(rom, 0);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->length, 512u);
    EXPECT_EQ(image->majorRevision, 3);
    EXPECT_EQ(image->revision, 42);
    EXPECT_EQ(image->codeType, 3);
    EXPECT_TRUE(image->last);
    EXPECT_TRUE(FindImage(rom, RomCode::Efi));
    EXPECT_FALSE(FindImage(rom, RomCode::Bios));
    const auto data = Padded<RomData>(Part(rom, 28));
    EXPECT_EQ(data.vendorId, 0x1ED0);
    EXPECT_EQ(data.deviceId, 0x7740);
    EXPECT_EQ(data.dataLength, 22);
    EXPECT_EQ(data.classCode[1], 4);
    ASSERT_TRUE(UpdateChecksum(rom));
    EXPECT_EQ(rom[511], 0x3A);
    // The signature alone is not enough, and the description must be there as a whole.
    EXPECT_TRUE(BeginsRom(Part(rom, 0, 2)));
    EXPECT_FALSE(BeginsRom(Part(rom, 0, 1)));
    EXPECT_EQ(kShortestRom, 26u);
    EXPECT_FALSE(ImageAt(Part(rom, 0, 25), 0));
    EXPECT_TRUE(ImageAt(Part(rom, 0, 50), 0));
    EXPECT_FALSE(ImageAt(Part(rom, 0, 49), 0));
}

TEST(Formats, FirmwareImage) {
    Data image =
        Of("\0\0\0\x01\0\0\0\x02\0\0\0\x03\0\0\0\x08"
           "\0\0\0\x09\0\0\0\x0C\0\0\0\x01\xFF\xFF\xFF\xDC"
           "\x80\0\0\0\0\0\0\0\x80\0\0\x01\0\0\0\x05\xFF\xFF\xFF\xFA");
    EXPECT_EQ(CheckFirmware(image, image.size()), FirmwareCheck::Good);
    EXPECT_EQ(CheckFirmware(image, image.size() - 1), FirmwareCheck::BadSegments);
    EXPECT_EQ(FirmwareWord(image, kVersionWord), 9u);
    EXPECT_EQ(FirmwareVersion(image), (VersionNumbers{{9, 12, 1, 0xFFFFFFDC}}));
    EXPECT_EQ(FirmwareWord(image, 13), 0u);
    image[32] = 0x81;
    EXPECT_EQ(CheckFirmware(image, image.size()), FirmwareCheck::BadChecksum);
    EXPECT_EQ(kBuildWord, 7u);
    EXPECT_EQ(kDeviceWord, 8u);
    EXPECT_EQ(kAttributesWord, 9u);
}

TEST(Formats, NvramBlock) {
    Data classic = Of("KPU ");
    classic.resize(256);
    classic[100] = 0x90;
    EXPECT_TRUE(HasSignature(classic));
    EXPECT_FALSE(ChecksumHolds(BlockKind::Classic, classic));
    classic[255] = 0x77;  // whatever stood there
    MakeChecksum(BlockKind::Classic, classic);
    EXPECT_EQ(classic[255], 0x60);
    EXPECT_TRUE(ChecksumHolds(BlockKind::Classic, classic));
    EXPECT_FALSE(ChecksumHolds(BlockKind::Extended, classic)) << "too short";
    EXPECT_FALSE(HasSignature(Of("KPU")));
    EXPECT_FALSE(HasSignature(Of("KPV ")));

    Data extended = Of("KPU \0\0\0\0\x01\0\0\xFF");
    extended.resize(516, 0);
    extended[512] = 5;  // behind the block
    MakeChecksum(BlockKind::Extended, extended);
    EXPECT_EQ(Data(extended.begin() + 508, extended.end()), Of("\xB4\xAF\xAA\xE0\x05\0\0\0"));
    EXPECT_TRUE(ChecksumHolds(BlockKind::Extended, extended));
    extended[511] ^= 1;
    EXPECT_FALSE(ChecksumHolds(BlockKind::Extended, extended));
    Data shorter(511, 1);
    MakeChecksum(BlockKind::Extended, shorter);
    EXPECT_EQ(shorter, Data(511, 1));
}

TEST(Formats, VpdTags) {
    const Data vpd =
        Of("\x82\x03\0ABC\x90\x09\0SN\x02"
           "17RV\x01\x68\x78");
    const auto identifier = TagAt(vpd, 0);
    ASSERT_TRUE(identifier);
    EXPECT_EQ(identifier->data, 3u);
    EXPECT_EQ(identifier->End(), 6u);
    const auto section = TagAt(vpd, 6);
    ASSERT_TRUE(section);
    const auto serial = KeywordAt(vpd, 9, section->End());
    ASSERT_TRUE(serial);
    EXPECT_EQ(serial->data, 12u);
    EXPECT_EQ(serial->End(), 14u);
    const auto checksum = KeywordAt(vpd, 14, section->End());
    ASSERT_TRUE(checksum);
    EXPECT_TRUE(ChecksumHolds(vpd, *checksum));
    EXPECT_FALSE(ChecksumHolds(vpd, {17, 0}));
    EXPECT_FALSE(ChecksumHolds(vpd, {16, 1}));
    EXPECT_EQ(TagAt(vpd, 18)->End(), 19u);
    // What ends early: a keyword before its section does, tags before the bytes do.
    EXPECT_FALSE(KeywordAt(vpd, 9, 13));
    EXPECT_FALSE(KeywordAt(vpd, 9, 11));
    EXPECT_FALSE(TagAt(vpd, 19));
    EXPECT_FALSE(TagAt(Part(vpd, 0, 5), 0));
    EXPECT_FALSE(TagAt(Part(vpd, 0, 2), 0));
    EXPECT_FALSE(TagAt(Of("\x79"), 0));
    Data large = Of("\x82\0\x01");
    large.resize(3 + 256);
    EXPECT_EQ(TagAt(large, 0)->length, 256u);
}

TEST(Formats, SfpPages) {
    Data bytes(256);
    const auto put = [&](size_t at, const Data& data) {
        std::copy(data.begin(), data.end(), bytes.begin() + static_cast<ptrdiff_t>(at));
    };
    put(0, Of("\x03\0\x07"));
    put(20, Of("VENDOR"));
    put(60, Of("\x03\x52\0\x2D"));
    put(65, Of("\x1A"));
    put(92, Of("\x68\0\0\x82"));
    auto identity = Padded<SfpIdentity>(bytes);
    EXPECT_EQ(identity.connector, 7);
    EXPECT_EQ(BigEndian(identity.wavelength), 850u);
    EXPECT_TRUE(BaseChecksumHolds(identity));
    EXPECT_TRUE(ExtendedChecksumHolds(identity));
    EXPECT_TRUE(identity.HasMonitoring());
    EXPECT_FALSE(identity.ExternallyCalibrated());
    identity.connector = 8;
    identity.monitoring = 0x69;
    EXPECT_FALSE(BaseChecksumHolds(identity));
    EXPECT_FALSE(ExtendedChecksumHolds(identity));
    UpdateChecksums(identity);
    EXPECT_EQ(identity.baseChecksum, 0x2E);
    EXPECT_EQ(identity.extendedChecksum, 0x83);

    SfpDiagnostics page{};
    PutBigEndian(0x4B00, page.limits[0][0]);
    page.voltage[0][0] = 1;
    page.values[4][1] = 9;  // behind the checksum
    EXPECT_FALSE(ChecksumHolds(page));
    UpdateChecksum(page);
    EXPECT_EQ(page.checksum, 0x4C);
    EXPECT_EQ(BytesOf(page)[105], 9);
}

TEST(Formats, ScsiData) {
    const auto sense = Padded<FixedSense>(Of("\xF0\0\x05\0\0\x12\x34\x0A\0\0\0\0\x24\x01"));
    EXPECT_EQ(sense.response, 0x80 | kCurrentSense);
    EXPECT_EQ(sense.key, 5);
    EXPECT_EQ(BigEndian(sense.information), 0x1234u);
    EXPECT_EQ(sense.additionalLength, 10);
    EXPECT_EQ(sense.code, 0x24);
    EXPECT_EQ(sense.qualifier, 1);
    const auto inquiry =
        Padded<InquiryData>(Of("\0\x80\x06\x12\x5B\0\x10\x02VENDOR  PRODUCT         1.00"));
    EXPECT_EQ(inquiry.additionalLength, 91);
    EXPECT_EQ(std::string(inquiry.product, 7), "PRODUCT");
    EXPECT_EQ(std::string(inquiry.revision, 4), "1.00");
    const auto page = Padded<VpdPageHead>(Of("\0\x83\x01\x02"));
    EXPECT_EQ(page.page, kIdentificationPage);
    EXPECT_EQ(BigEndian(page.length), 0x102u);
    const auto capacity = Padded<Capacity16>(Of("\0\0\0\x01\0\0\0\0\0\0\x02\0"));
    EXPECT_EQ(BigEndian(capacity.lastBlock), 0x100000000u);
    EXPECT_EQ(BigEndian(capacity.blockBytes), 512u);
    EXPECT_EQ(BigEndian(Padded<LunListHead>(Of("\0\0\0\x10")).length), 16u);
}

TEST(Formats, FabricRecords) {
    const auto header = Padded<CtHeader>(Of("\x01\0\0\0\xFC\x02\0\0\x80\x01\0\x9B\0\x09\x02\x07"));
    EXPECT_EQ(header.gsType, kDirectoryService);
    EXPECT_EQ(header.gsSubtype, kNameServer);
    EXPECT_EQ(BigEndian(header.command), kCtReject);
    EXPECT_EQ(BigEndian(header.residual), 155u);
    EXPECT_EQ(header.reason, 9);
    EXPECT_EQ(header.explanation, 2);
    EXPECT_EQ(header.vendor, 7);
    Data named(620);
    named[1] = 0xAA;    // port identifier
    named[12] = 4;      // length of the symbolic port name
    named[268] = 0xBB;  // node name
    named[563] = 0x01;  // type 0, the last byte of the first word
    const auto all = Padded<AllNext>(named);
    EXPECT_EQ(all.portId[0], 0xAA);
    EXPECT_EQ(all.port.length, 4);
    EXPECT_EQ(all.nodeName[0], 0xBB);
    EXPECT_EQ(BigEndian(all.fc4Types[0]), 1u);

    const auto reject = Padded<RejectAnswer>(Of("\x01\0\0\0\0\x0B\x2C\x07"));
    EXPECT_EQ(reject.head.command, kElsReject);
    EXPECT_EQ(reject.reason, 0x0B);
    EXPECT_EQ(reject.explanation, 0x2C);
    const auto address =
        Padded<AddressAnswer>(Of("\x02\0\0\0\0\x01\x02\x03PPPPPPPPNNNNNNNN\0\x0A\x0B\x0C"));
    EXPECT_EQ(BigEndian(address.hardAddress), 0x010203u);
    EXPECT_EQ(address.nodeName[0], 'N');
    EXPECT_EQ(BigEndian(address.portId), 0x0A0B0Cu);
    const auto node = Padded<NodeIdHead>(Of("\x02\0\0\0\xDF\x10\0\x34"));
    EXPECT_EQ(node.format, kTopologyFormat);
    EXPECT_EQ(node.commonLength, sizeof(NodeIdNames));
    EXPECT_EQ(node.specificLength, sizeof(NodeIdTopology));
    EXPECT_EQ(BigEndian(Padded<LinkErrorsAnswer>(Of("\x02\0\0\0\0\0\0\x01\0\0\x01\0")).counters[1]),
              256u);

    Data lock = Of("\x10\x27\0\0\xFF\0\0\0\x01SN1");
    lock.resize(40);
    lock.push_back(9);
    const auto record = Padded<FlashLock>(lock);
    EXPECT_EQ(record.owner, 10000u);
    EXPECT_EQ(record.startTick, 255u);
    EXPECT_STREQ(record.serial, "\x01SN1");
    EXPECT_EQ(record.watchdog, 9u);
}

TEST(Formats, Versions) {
    EXPECT_EQ(ParseVersion("9.12.01.20"), (VersionNumbers{{9, 12, 1, 20}}));
    EXPECT_EQ(ParseVersion("3.6x.7"), (VersionNumbers{{3, 6, 0, 0}}));
    EXPECT_EQ(ParseVersion(""), VersionNumbers{});
    char text[12];
    FormatFirmwareVersion({{9, 12, 1, 0}}, text);
    EXPECT_STREQ(text, "9.12.01");
    FormatFirmwareVersion({{9, 2, 100, 20}}, text);
    EXPECT_STREQ(text, "9.02.100.20");
    FormatFirmwareVersion({{10, 2, 100, 20}}, text);
    EXPECT_STREQ(text, "10.02.100.2") << "cut, and terminated";
    TextWriter writer(text);
    WriteBootVersion(writer.Text("v"), 3, 6);
    EXPECT_STREQ(text, "v3.06");
}

}  // namespace
