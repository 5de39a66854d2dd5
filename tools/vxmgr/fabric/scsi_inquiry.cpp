#include "vxmgr/fabric/scsi_inquiry.h"

#include "formats/scsi_data.h"
#include "vxmgr/app/code_text.h"
#include "vxmgr/app/getters.h"

namespace vxmgr {
namespace {

using namespace formats;

constexpr CodeText kTypes[] = {
    {0x00, "disk"},
    {0x01, "tape"},
    {0x02, "printer"},
    {0x03, "processor"},
    {0x04, "write-once"},
    {0x05, "CD/DVD"},
    {0x07, "optical"},
    {0x08, "media changer"},
    {0x0C, "storage array controller"},
    {0x0D, "enclosure"},
    {0x0E, "simplified disk"},
    {0x11, "object storage"},
    {0x14, "zoned disk"},
    {0x1E, "well known unit"},
    {0x1F, "unknown or no device"},
};
constexpr CodeText kQualifiers[] = {
    {0, "connected"},
    {1, "not connected"},
    {3, "no such logical unit"},
};
constexpr CodeText kVersions[] = {
    {0, "none claimed"}, {1, "SCSI-1"}, {2, "SCSI-2"}, {3, "SPC"},
    {4, "SPC-2"},        {5, "SPC-3"},  {6, "SPC-4"},  {7, "SPC-5"},
};
constexpr CodeText kPages[] = {
    {0x00, "supported_pages"},       {0x80, "unit_serial_number"},
    {0x83, "device_identification"}, {0x84, "software_interface"},
    {0x85, "management_addresses"},  {0x86, "extended_inquiry"},
    {0x87, "mode_page_policy"},      {0x88, "scsi_ports"},
    {0x8F, "third_party_copy"},      {0xB0, "block_limits"},
    {0xB1, "block_characteristics"}, {0xB2, "logical_block_provisioning"},
};
constexpr CodeText kDesignators[] = {
    {0, "vendor specific"},
    {1, "T10 vendor"},
    {2, "EUI-64"},
    {3, "NAA"},
    {4, "relative port"},
    {5, "target port group"},
    {6, "logical unit group"},
    {7, "MD5"},
    {8, "SCSI name"},
};
constexpr CodeText kAssociations[] = {
    {0, "logical unit"},
    {1, "target port"},
    {2, "target device"},
};

std::string PlainText(Bytes bytes) {
    return FieldText(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// Identifiers name the unit as serial numbers do, and are masked with them.
Value IdentifierValue(const Designator& designator) {
    const std::vector<uint8_t>& bytes = designator.bytes;
    if (bytes.empty()) {
        return {};
    }
    if ((designator.head.codeSet & 0x0F) != kBinary) {
        return Value::Serial(PlainText(bytes));
    }
    if (designator.Type() == kNaa && bytes.size() == sizeof(Wwn::bytes)) {
        uint8_t name[8];
        std::memcpy(name, bytes.data(), sizeof name);
        return Value::Name(Wwn::Of(name));
    }
    return Value::Serial(HexDigits(bytes));
}

std::vector<Designator> DesignatorsOf(Bytes body) {
    std::vector<Designator> designators;
    while (body.size() >= sizeof(DesignatorHead)) {
        const auto head = Padded<DesignatorHead>(body);
        const Bytes bytes = Part(body, sizeof head, head.length);
        designators.push_back({head, {bytes.begin(), bytes.end()}});
        body = Part(body, sizeof head + head.length);
    }
    return designators;
}

const Fields<uint8_t> kPageFields = {
    {"page", "Page", "PAGE", kText, [](uint8_t page) { return Hex(page, 2); }},
    {"name", "Name", "NAME", kText.OrNull(), VpdPageName},
};

const Fields<Designator> kDesignatorFields = {
    {"association", "Names the", "NAMES THE", kText,
     [](const Designator& d) {
         return TextOfCode(kAssociations, d.head.association >> 4 & 3, "reserved");
     }},
    {"type", "Type", "TYPE", kText,
     [](const Designator& d) {
         return TextOfCode(kDesignators, d.Type(), "type " + Hex(d.Type(), 1));
     }},
    {"identifier", "Identifier", "IDENTIFIER", kSerial.OrNull(), IdentifierValue},
};

}  // namespace

std::string DeviceTypeName(uint8_t type) {
    return TextOfCode(kTypes, type & 0x1F, "type " + Hex(type & 0x1F, 2));
}

std::string VpdPageName(uint8_t page) {
    return TextOfCode(kPages, page, {});
}

size_t InquiryLength(Bytes data) {
    const auto inquiry = Padded<InquiryData>(data);
    return offsetof(InquiryData, flags5) + inquiry.additionalLength;
}

size_t VpdLength(Bytes data) {
    return sizeof(VpdPageHead) + BigEndian(Padded<VpdPageHead>(data).length);
}

InquiryData DecodeInquiry(Bytes data) {
    return Padded<InquiryData>(Part(data, 0, InquiryLength(data)));
}

const Fields<InquiryData> kInquiryFields = {
    {"device_type", "Device type", kText,
     [](const InquiryData& inquiry) { return DeviceTypeName(inquiry.peripheral); }},
    {"qualifier", "Presence", kText,
     [](const InquiryData& inquiry) {
         const uint8_t code = inquiry.peripheral >> 5;
         return Value(Value::Text(TextOfCode(kQualifiers, code, "qualifier " + Hex(code, 1)))
                          .In(code == 0 ? Tone::Good : Tone::Warning));
     }},
    {"vendor", "Vendor", kText.OrNull(), TextOf<&InquiryData::vendor>},
    {"product", "Product", kText.OrNull(), TextOf<&InquiryData::product>},
    {"revision", "Revision", kText.OrNull(), TextOf<&InquiryData::revision>},
    {"standard", "Standard", kText,
     [](const InquiryData& inquiry) {
         return TextOfCode(kVersions, inquiry.version, Hex(inquiry.version, 2));
     }},
    {"removable", "Removable medium", kFlag, Bit<&InquiryData::removable, 0x80>},
    {"command_queuing", "Command queuing", kFlag, Bit<&InquiryData::flags7, 0x02>},
    {"multiple_ports", "Several ports", kFlag, Bit<&InquiryData::flags6, 0x10>},
    {"asymmetric_access", "Asymmetric access", kFlag, Bit<&InquiryData::flags5, 0x30>},
    {"protection", "Protection information", kFlag, Bit<&InquiryData::flags5, 0x01>},
};

ScsiVpdPage DecodeScsiVpd(Bytes data) {
    ScsiVpdPage page{Padded<VpdPageHead>(data), {}, {}, {}};
    const Bytes body = Part(data, sizeof page.head, BigEndian(page.head.length));
    if (page.head.page == kSupportedPages) {
        page.pages.emplace(body.begin(), body.end());
    } else if (page.head.page == kSerialPage) {
        page.serial = PlainText(body);
    } else if (page.head.page == kIdentificationPage) {
        page.identifiers = DesignatorsOf(body);
    }
    return page;
}

const Fields<ScsiVpdPage> kScsiVpdFields = {
    {"page", "Page", kText, [](const ScsiVpdPage& vpd) { return Hex(vpd.head.page, 2); }},
    {"name", "Name", kText.OrNull(),
     [](const ScsiVpdPage& vpd) { return VpdPageName(vpd.head.page); }},
    {"device_type", "Device type", kText,
     [](const ScsiVpdPage& vpd) { return DeviceTypeName(vpd.head.peripheral); }},
    {"length", "Length", Integer("bytes"),
     [](const ScsiVpdPage& vpd) { return BigEndian(vpd.head.length); }},
    {"pages", "Pages", kPageFields, &ScsiVpdPage::pages, "no pages"},
    {"serial", "Serial number", kSerial.OrNull().OrAbsent(), &ScsiVpdPage::serial},
    {"identifiers", "Identifiers", kDesignatorFields, &ScsiVpdPage::identifiers, "no identifiers"},
};

}  // namespace vxmgr
