#include "vxmgr/sfp/sfp_identity.h"

#include "common/text.h"
#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

using tools::Record;
using tools::Tone;
using tools::Value;

constexpr uint8_t kRateBeyondByte = 255;
constexpr uint8_t kLengthBeyondByte = 255;

constexpr CodeText kIdentifiers[] = {
    {0x00, "not specified"}, {0x01, "GBIC"},        {0x02, "soldered module"},
    {0x03, "SFP"},           {0x04, "300-pin XBI"}, {0x05, "XENPAK"},
    {0x06, "XFP"},           {0x07, "XFF"},         {0x08, "XFP-E"},
    {0x09, "XPAK"},          {0x0A, "X2"},          {0x0B, "DWDM-SFP"},
    {0x0C, "QSFP"},          {0x0D, "QSFP+"},       {0x0E, "CXP"},
    {0x11, "QSFP28"},        {0x18, "QSFP-DD"},     {0x19, "OSFP"},
    {0x1A, "SFP-DD"},
};
constexpr CodeText kConnectors[] = {
    {0x00, "not specified"},
    {0x01, "SC"},
    {0x02, "Fibre Channel style 1 copper"},
    {0x03, "Fibre Channel style 2 copper"},
    {0x04, "BNC/TNC"},
    {0x05, "Fibre Channel coaxial"},
    {0x06, "Fibre Jack"},
    {0x07, "LC"},
    {0x08, "MT-RJ"},
    {0x09, "MU"},
    {0x0A, "SG"},
    {0x0B, "optical pigtail"},
    {0x0C, "MPO 1x12"},
    {0x0D, "MPO 2x16"},
    {0x20, "HSSDC II"},
    {0x21, "copper pigtail"},
    {0x22, "RJ45"},
    {0x23, "none"},
    {0x24, "MXC 2x16"},
};
constexpr CodeText kEncodings[] = {
    {0x00, "not specified"}, {0x01, "8B/10B"},     {0x02, "4B/5B"},
    {0x03, "NRZ"},           {0x04, "Manchester"}, {0x06, "64B/66B"},
    {0x07, "256B/257B"},     {0x08, "PAM4"},       {0x05, "SONET scrambled"},
};
constexpr CodeText kRevisions[] = {
    {0, "not specified"}, {1, "9.3"},  {2, "9.5"},  {3, "10.2"}, {4, "10.4"},
    {5, "11.0"},          {6, "11.3"}, {7, "11.4"}, {8, "12.3"}, {9, "12.4"},
};

// Bits of a byte of the page and what they stand for.
struct BitRow {
    uint8_t SfpIdentity::*byte;
    uint8_t bit;
    const char* text;
};
constexpr BitRow kSpeeds[] = {
    {&SfpIdentity::fibreChannelSpeeds, 0x01, "1"},  {&SfpIdentity::fibreChannelSpeeds, 0x04, "2"},
    {&SfpIdentity::fibreChannelSpeeds, 0x10, "4"},  {&SfpIdentity::fibreChannelSpeeds, 0x40, "8"},
    {&SfpIdentity::fibreChannelSpeeds, 0x80, "10"}, {&SfpIdentity::fibreChannelSpeeds, 0x20, "16"},
    {&SfpIdentity::fibreChannelSpeeds, 0x08, "32"}, {&SfpIdentity::fibreChannelSpeeds2, 0x01, "64"},
};
constexpr BitRow kLinkLengths[] = {
    {&SfpIdentity::fibreChannelLink, 0x40, "short"},
    {&SfpIdentity::fibreChannelLink, 0x20, "intermediate"},
    {&SfpIdentity::fibreChannelLink, 0x08, "medium"},
    {&SfpIdentity::fibreChannelLink, 0x10, "long"},
    {&SfpIdentity::fibreChannelLink, 0x80, "very long"},
};
constexpr BitRow kTechnologies[] = {
    {&SfpIdentity::fibreChannelTechnology, 0x40, "shortwave laser"},
    {&SfpIdentity::fibreChannelTechnology, 0x20, "shortwave laser with open fibre control"},
    {&SfpIdentity::fibreChannelLink, 0x04, "shortwave laser, linear receiver"},
    {&SfpIdentity::fibreChannelTechnology, 0x10, "longwave laser (LL)"},
    {&SfpIdentity::fibreChannelLink, 0x02, "longwave laser (LC)"},
    {&SfpIdentity::fibreChannelLink, 0x01, "electrical between enclosures"},
    {&SfpIdentity::fibreChannelTechnology, 0x80, "electrical within an enclosure"},
    {&SfpIdentity::fibreChannelTechnology, 0x08, "active cable"},
    {&SfpIdentity::fibreChannelTechnology, 0x04, "passive cable"},
};
constexpr BitRow kMedia[] = {
    {&SfpIdentity::fibreChannelMedia, 0x01, "single mode"},
    {&SfpIdentity::fibreChannelMedia, 0x04, "multimode 50 um"},
    {&SfpIdentity::fibreChannelMedia, 0x08, "multimode 62.5 um"},
    {&SfpIdentity::fibreChannelMedia, 0x10, "video coaxial"},
    {&SfpIdentity::fibreChannelMedia, 0x20, "miniature coaxial"},
    {&SfpIdentity::fibreChannelMedia, 0x40, "twisted pair"},
    {&SfpIdentity::fibreChannelMedia, 0x80, "twin axial"},
};
constexpr BitRow kEthernet[] = {
    {&SfpIdentity::gigabitEthernet, 0x01, "1000BASE-SX"},
    {&SfpIdentity::gigabitEthernet, 0x02, "1000BASE-LX"},
    {&SfpIdentity::gigabitEthernet, 0x04, "1000BASE-CX"},
    {&SfpIdentity::gigabitEthernet, 0x08, "1000BASE-T"},
    {&SfpIdentity::ethernet, 0x10, "10GBASE-SR"},
    {&SfpIdentity::ethernet, 0x20, "10GBASE-LR"},
    {&SfpIdentity::ethernet, 0x40, "10GBASE-LRM"},
    {&SfpIdentity::ethernet, 0x80, "10GBASE-ER"},
};

template <size_t rows>
std::string BitText(const BitRow (&table)[rows], const SfpIdentity& identity) {
    std::string text;
    for (const BitRow& row : table) {
        if ((identity.*row.byte & row.bit) != 0) {
            text += (text.empty() ? "" : ", ") + std::string(row.text);
        }
    }
    return text;
}

struct LengthRow {
    uint8_t SfpIdentity::*byte;
    uint32_t metres;  // of one unit
    const char* key;
    const char* label;
};
constexpr LengthRow kLengths[] = {
    {&SfpIdentity::lengthOm1, 10, "om1_m", "OM1"},
    {&SfpIdentity::lengthOm2, 10, "om2_m", "OM2"},
    {&SfpIdentity::lengthOm3, 10, "om3_m", "OM3"},
    {&SfpIdentity::lengthOm4, 10, "om4_m", "OM4"},
};

Value LengthValue(uint8_t units, uint32_t metres) {
    if (units == 0) {
        return {};
    }
    const uint64_t length = uint64_t{units} * metres;
    return units == kLengthBeyondByte
               ? Value::Number(length - metres).Shown("> " + std::to_string(length - metres) + " m")
               : Value::Number(length, "m");
}

Record LengthsRecord(const SfpIdentity& identity) {
    Record record;
    // The finer unit says more, where it is not beyond its byte.
    const bool fine =
        identity.lengthSingleMode100 != 0 && identity.lengthSingleMode100 != kLengthBeyondByte;
    record.Add("single_mode_m", "Single mode",
               fine || identity.lengthSingleMode == 0
                   ? LengthValue(identity.lengthSingleMode100, 100)
                   : LengthValue(identity.lengthSingleMode, 1000));
    for (const LengthRow& row : kLengths) {
        const bool copper = identity.IsCopper() && row.byte == &SfpIdentity::lengthOm4;
        record.Add(row.key, row.label,
                   copper ? Value() : LengthValue(identity.*row.byte, row.metres));
    }
    record.Add("copper_m", "Copper",
               identity.IsCopper() ? LengthValue(identity.lengthOm4, 1) : Value());
    return record;
}

// Tenths would be lost in whole gigabits: megabaud.
Value RateValue(const SfpIdentity& identity) {
    const uint64_t rate = identity.nominalRate == kRateBeyondByte ? identity.maxRate * 250u
                                                                  : identity.nominalRate * 100u;
    return rate == 0 ? Value() : Value::Number(rate, "MBd");
}

template <size_t size>
std::string TextOf(const char (&field)[size]) {
    return tools::FieldText(field, size);
}

Value ChecksumValue(bool holds) {
    return Value::Flag(holds).Shown(holds ? "good" : "wrong").In(holds ? Tone::Plain : Tone::Bad);
}

const char* CalibrationOf(const SfpIdentity& identity) {
    return identity.ExternallyCalibrated() ? "external" : "internal";
}

}  // namespace

std::string SfpDate(const char (&date)[8]) {
    constexpr size_t kDigits = 6;
    for (size_t i = 0; i < kDigits; ++i) {
        if (date[i] < '0' || date[i] > '9') {
            return {};
        }
    }
    const std::string text(date, kDigits);
    const std::string month = text.substr(2, 2);
    const std::string day = text.substr(4, 2);
    if (month < "01" || month > "12" || day < "01" || day > "31") {
        return {};
    }
    return "20" + text.substr(0, 2) + "-" + month + "-" + day;
}

Record SfpIdentityRecord(const SfpIdentity& identity) {
    const bool monitored = identity.HasMonitoring();
    const uint32_t wavelength = static_cast<uint32_t>(BigEndian(identity.wavelength));
    Record record;
    record.Add("identifier", "Type",
               Value::Text(TextOrNumber(kIdentifiers, identity.identifier, "type")), "TYPE");
    record.Add("connector", "Connector",
               Value::Text(TextOrNumber(kConnectors, identity.connector, "connector")));
    record.Add("vendor", "Vendor", Value::TextOrNull(TextOf(identity.vendor)), "VENDOR");
    record.Add("vendor_oui", "Vendor OUI", Value::Text(HexDigits(identity.vendorOui)));
    record.Add("part", "Part", Value::TextOrNull(TextOf(identity.part)), "PART");
    record.Add("revision", "Revision", Value::TextOrNull(TextOf(identity.revision)));
    record.Add("serial", "Serial", Value::Serial(TextOf(identity.serial)), "SERIAL");
    record.Add("date", "Made on", Value::TextOrNull(SfpDate(identity.date)));
    const std::string speeds = BitText(kSpeeds, identity);
    record.Add("speeds_gbit", "Speeds",
               speeds.empty() ? Value() : Value::Text(speeds).Shown(speeds + " Gbit/s"), "SPEEDS");
    record.Add("technology", "Technology", Value::TextOrNull(BitText(kTechnologies, identity)));
    record.Add("link_length", "Link length", Value::TextOrNull(BitText(kLinkLengths, identity)));
    record.Add("media", "Media", Value::TextOrNull(BitText(kMedia, identity)));
    record.Add("ethernet", "Ethernet", Value::TextOrNull(BitText(kEthernet, identity)));
    record.Add("wavelength_nm", "Wavelength",
               identity.IsCopper() || wavelength == 0 ? Value() : Value::Number(wavelength, "nm"));
    record.Add("encoding", "Encoding",
               Value::Text(TextOrNumber(kEncodings, identity.encoding, "encoding")));
    record.Add("nominal_rate_mbd", "Nominal rate", RateValue(identity));
    record.Add("monitoring", "Diagnostics", Value::Flag(monitored));
    record.Add("calibration", "Calibration",
               monitored ? Value::Text(CalibrationOf(identity)) : Value());
    record.Add(
        "power_measure", "Received power",
        monitored ? Value::Text(identity.AveragePower() ? "average" : "amplitude") : Value());
    record.Add("compliance", "SFF-8472 revision",
               Value::Text(TextOrNumber(kRevisions, identity.compliance, "revision")));
    record.Add("base_checksum_good", "Base checksum",
               ChecksumValue(formats::BaseChecksumHolds(identity)));
    record.Add("extended_checksum_good", "Ext. checksum",
               ChecksumValue(formats::ExtendedChecksumHolds(identity)));
    record.AddGroup("lengths", "Lengths", LengthsRecord(identity));
    return record;
}

}  // namespace vxmgr
