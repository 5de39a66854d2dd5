#include "vxmgr/sfp/sfp_identity.h"

#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"

namespace vxmgr {
namespace {

using Sfp = SfpIdentity;

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
    uint8_t Sfp::*byte;
    uint8_t bit;
    const char* text;
};
constexpr BitRow kSpeeds[] = {
    {&Sfp::fibreChannelSpeeds, 0x01, "1"},  {&Sfp::fibreChannelSpeeds, 0x04, "2"},
    {&Sfp::fibreChannelSpeeds, 0x10, "4"},  {&Sfp::fibreChannelSpeeds, 0x40, "8"},
    {&Sfp::fibreChannelSpeeds, 0x80, "10"}, {&Sfp::fibreChannelSpeeds, 0x20, "16"},
    {&Sfp::fibreChannelSpeeds, 0x08, "32"}, {&Sfp::fibreChannelSpeeds2, 0x01, "64"},
};
constexpr BitRow kLinkLengths[] = {
    {&Sfp::fibreChannelLink, 0x40, "short"},     {&Sfp::fibreChannelLink, 0x20, "intermediate"},
    {&Sfp::fibreChannelLink, 0x08, "medium"},    {&Sfp::fibreChannelLink, 0x10, "long"},
    {&Sfp::fibreChannelLink, 0x80, "very long"},
};
constexpr BitRow kTechnologies[] = {
    {&Sfp::fibreChannelTechnology, 0x40, "shortwave laser"},
    {&Sfp::fibreChannelTechnology, 0x20, "shortwave laser with open fibre control"},
    {&Sfp::fibreChannelLink, 0x04, "shortwave laser, linear receiver"},
    {&Sfp::fibreChannelTechnology, 0x10, "longwave laser (LL)"},
    {&Sfp::fibreChannelLink, 0x02, "longwave laser (LC)"},
    {&Sfp::fibreChannelLink, 0x01, "electrical between enclosures"},
    {&Sfp::fibreChannelTechnology, 0x80, "electrical within an enclosure"},
    {&Sfp::fibreChannelTechnology, 0x08, "active cable"},
    {&Sfp::fibreChannelTechnology, 0x04, "passive cable"},
};
constexpr BitRow kMedia[] = {
    {&Sfp::fibreChannelMedia, 0x01, "single mode"},
    {&Sfp::fibreChannelMedia, 0x04, "multimode 50 um"},
    {&Sfp::fibreChannelMedia, 0x08, "multimode 62.5 um"},
    {&Sfp::fibreChannelMedia, 0x10, "video coaxial"},
    {&Sfp::fibreChannelMedia, 0x20, "miniature coaxial"},
    {&Sfp::fibreChannelMedia, 0x40, "twisted pair"},
    {&Sfp::fibreChannelMedia, 0x80, "twin axial"},
};
constexpr BitRow kEthernet[] = {
    {&Sfp::gigabitEthernet, 0x01, "1000BASE-SX"}, {&Sfp::gigabitEthernet, 0x02, "1000BASE-LX"},
    {&Sfp::gigabitEthernet, 0x04, "1000BASE-CX"}, {&Sfp::gigabitEthernet, 0x08, "1000BASE-T"},
    {&Sfp::ethernet, 0x10, "10GBASE-SR"},         {&Sfp::ethernet, 0x20, "10GBASE-LR"},
    {&Sfp::ethernet, 0x40, "10GBASE-LRM"},        {&Sfp::ethernet, 0x80, "10GBASE-ER"},
};

template <size_t rows>
std::string BitText(const BitRow (&table)[rows], const Sfp& sfp) {
    std::string text;
    for (const BitRow& row : table) {
        if ((sfp.*row.byte & row.bit) != 0) {
            text += (text.empty() ? "" : ", ") + std::string(row.text);
        }
    }
    return text;
}

Value LengthValue(uint8_t units, uint32_t metres) {
    if (units == 0) {
        return {};
    }
    const uint64_t length = uint64_t{units} * metres;
    return units == kLengthBeyondByte
               ? Value::Number(length - metres).Shown("> " + std::to_string(length - metres) + " m")
               : Value::Number(length, "m");
}

Value SingleModeValue(const Sfp& sfp) {
    // The finer unit says more, where it is not beyond its byte.
    const bool fine = sfp.lengthSingleMode100 != 0 && sfp.lengthSingleMode100 != kLengthBeyondByte;
    return fine || sfp.lengthSingleMode == 0 ? LengthValue(sfp.lengthSingleMode100, 100)
                                             : LengthValue(sfp.lengthSingleMode, 1000);
}

constexpr FieldType kLength = kInteger.OrNull();
const Fields<Sfp> kLengthFields = {
    {"single_mode_m", "Single mode", kLength, SingleModeValue},
    {"om1_m", "OM1", kLength, [](const Sfp& sfp) { return LengthValue(sfp.lengthOm1, 10); }},
    {"om2_m", "OM2", kLength, [](const Sfp& sfp) { return LengthValue(sfp.lengthOm2, 10); }},
    {"om3_m", "OM3", kLength, [](const Sfp& sfp) { return LengthValue(sfp.lengthOm3, 10); }},
    {"om4_m", "OM4", kLength,
     [](const Sfp& sfp) { return LengthValue(sfp.IsCopper() ? 0 : sfp.lengthOm4, 10); }},
    {"copper_m", "Copper", kLength,
     [](const Sfp& sfp) { return LengthValue(sfp.IsCopper() ? sfp.lengthOm4 : 0, 1); }},
};

// Tenths would be lost in whole gigabits: megabaud.
Value RateValue(const Sfp& sfp) {
    const uint64_t rate =
        sfp.nominalRate == kRateBeyondByte ? sfp.maxRate * 250u : sfp.nominalRate * 100u;
    return rate == 0 ? Value() : Value::Number(rate, "MBd");
}

Value SpeedsValue(const Sfp& sfp) {
    const std::string speeds = BitText(kSpeeds, sfp);
    return speeds.empty() ? Value() : Value::Text(speeds).Shown(speeds + " Gbit/s");
}

Value WavelengthValue(const Sfp& sfp) {
    const uint64_t wavelength = BigEndian(sfp.wavelength);
    return sfp.IsCopper() || wavelength == 0 ? Value() : Value::Number(wavelength, "nm");
}

Value ChecksumValue(bool holds) {
    return Value::Flag(holds).Shown(holds ? "good" : "wrong").In(holds ? Tone::Plain : Tone::Bad);
}

// The name that the second flag chooses, where the first one holds.
template <size_t names>
const char* ChosenWhen(bool known, const char* const (&choices)[names], bool second) {
    return known ? choices[second ? 1 : 0] : nullptr;
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

constexpr const char* kCalibrations[] = {"internal", "external"};
constexpr const char* kPowerMeasures[] = {"amplitude", "average"};
const Fields<Sfp> kSfpIdentityFields = {
    {"identifier", "Type", "TYPE", kText,
     [](const Sfp& sfp) { return TextOrNumber(kIdentifiers, sfp.identifier, "type"); }},
    {"connector", "Connector", kText,
     [](const Sfp& sfp) { return TextOrNumber(kConnectors, sfp.connector, "connector"); }},
    {"vendor", "Vendor", "VENDOR", kText.OrNull(), TextOf<&Sfp::vendor>},
    {"vendor_oui", "Vendor OUI", kText, [](const Sfp& sfp) { return HexDigits(sfp.vendorOui); }},
    {"part", "Part", "PART", kText.OrNull(), TextOf<&Sfp::part>},
    {"revision", "Revision", kText.OrNull(), TextOf<&Sfp::revision>},
    {"serial", "Serial", "SERIAL", kSerial.OrNull(), TextOf<&Sfp::serial>},
    {"date", "Made on", kText.OrNull(), [](const Sfp& sfp) { return SfpDate(sfp.date); }},
    {"speeds_gbit", "Speeds", "SPEEDS", kText.OrNull(), SpeedsValue},
    {"technology", "Technology", kText.OrNull(),
     [](const Sfp& sfp) { return BitText(kTechnologies, sfp); }},
    {"link_length", "Link length", kText.OrNull(),
     [](const Sfp& sfp) { return BitText(kLinkLengths, sfp); }},
    {"media", "Media", kText.OrNull(), [](const Sfp& sfp) { return BitText(kMedia, sfp); }},
    {"ethernet", "Ethernet", kText.OrNull(),
     [](const Sfp& sfp) { return BitText(kEthernet, sfp); }},
    {"wavelength_nm", "Wavelength", kInteger.OrNull(), WavelengthValue},
    {"encoding", "Encoding", kText,
     [](const Sfp& sfp) { return TextOrNumber(kEncodings, sfp.encoding, "encoding"); }},
    {"nominal_rate_mbd", "Nominal rate", kInteger.OrNull(), RateValue},
    {"monitoring", "Diagnostics", kFlag, &Sfp::HasMonitoring},
    {"calibration", "Calibration", Choice(kCalibrations).OrNull(),
     [](const Sfp& sfp) {
         return ChosenWhen(sfp.HasMonitoring(), kCalibrations, sfp.ExternallyCalibrated());
     }},
    {"power_measure", "Received power", Choice(kPowerMeasures).OrNull(),
     [](const Sfp& sfp) {
         return ChosenWhen(sfp.HasMonitoring(), kPowerMeasures, sfp.AveragePower());
     }},
    {"compliance", "SFF-8472 revision", kText,
     [](const Sfp& sfp) { return TextOrNumber(kRevisions, sfp.compliance, "revision"); }},
    {"base_checksum_good", "Base checksum", kFlag,
     [](const Sfp& sfp) { return ChecksumValue(formats::BaseChecksumHolds(sfp)); }},
    {"extended_checksum_good", "Ext. checksum", kFlag,
     [](const Sfp& sfp) { return ChecksumValue(formats::ExtendedChecksumHolds(sfp)); }},
    {"lengths", "Lengths", kLengthFields},
};

}  // namespace vxmgr
