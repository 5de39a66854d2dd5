#include "vxmgr/fabric/scsi_inquiry.h"

#include "common/text.h"
#include "formats/scsi_data.h"
#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

using namespace formats;
using tools::Record;
using tools::Value;

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

std::string TextOf(Bytes bytes) {
    return tools::FieldText(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

Record PageRow(uint8_t page) {
    Record row;
    row.Add("page", "Page", Value::Text(tools::Hex(page, 2)), "PAGE");
    row.Add("name", "Name", Value::TextOrNull(VpdPageName(page)), "NAME");
    return row;
}

// Identifiers name the unit as serial numbers do, and are masked with them.
Value DesignatorValue(uint8_t codeSet, uint8_t type, Bytes bytes) {
    if (codeSet != kBinary) {
        return Value::Serial(TextOf(bytes));
    }
    if (type == kNaa && bytes.size() == sizeof(tools::Wwn::bytes)) {
        uint8_t name[8];
        std::memcpy(name, bytes.data(), sizeof name);
        return Value::Name(tools::Wwn::Of(name));
    }
    return Value::Serial(HexDigits(bytes));
}

Record DesignatorRow(const DesignatorHead& head, Bytes bytes) {
    const uint8_t type = head.association & 0x0F;
    const uint8_t association = head.association >> 4 & 3;
    Record row;
    row.Add("association", "Names the",
            Value::Text(TextOfCode(kAssociations, association, "reserved")), "NAMES THE");
    row.Add("type", "Type",
            Value::Text(TextOfCode(kDesignators, type, "type " + tools::Hex(type, 1))), "TYPE");
    row.Add("identifier", "Identifier",
            bytes.empty() ? Value() : DesignatorValue(head.codeSet & 0x0F, type, bytes),
            "IDENTIFIER");
    return row;
}

void AddSupportedPages(Record& record, Bytes body) {
    std::vector<Record> rows;
    for (const uint8_t page : body) {
        rows.push_back(PageRow(page));
    }
    record.AddList("pages", "Pages", tools::ListLayout::Table, PageRow(0), "no pages",
                   std::move(rows));
}

void AddDesignators(Record& record, Bytes body) {
    std::vector<Record> rows;
    while (body.size() >= sizeof(DesignatorHead)) {
        const auto head = Padded<DesignatorHead>(body);
        rows.push_back(DesignatorRow(head, Part(body, sizeof head, head.length)));
        body = Part(body, sizeof head + head.length);
    }
    record.AddList("identifiers", "Identifiers", tools::ListLayout::Table, DesignatorRow({}, {}),
                   "no identifiers", std::move(rows));
}

}  // namespace

std::string DeviceTypeName(uint8_t type) {
    return TextOfCode(kTypes, type & 0x1F, "type " + tools::Hex(type & 0x1F, 2));
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

Record InquiryRecord(Bytes data) {
    const auto inquiry = Padded<InquiryData>(Part(data, 0, InquiryLength(data)));
    const uint8_t qualifier = inquiry.peripheral >> 5;
    const auto text = [](const char* field, size_t size) {
        return Value::TextOrNull(tools::FieldText(field, size));
    };
    Record record;
    record.Add("device_type", "Device type", Value::Text(DeviceTypeName(inquiry.peripheral)));
    record.Add(
        "qualifier", "Presence",
        Value::Text(TextOfCode(kQualifiers, qualifier, "qualifier " + tools::Hex(qualifier, 1)))
            .In(qualifier == 0 ? tools::Tone::Good : tools::Tone::Warning));
    record.Add("vendor", "Vendor", text(inquiry.vendor, sizeof inquiry.vendor));
    record.Add("product", "Product", text(inquiry.product, sizeof inquiry.product));
    record.Add("revision", "Revision", text(inquiry.revision, sizeof inquiry.revision));
    record.Add("standard", "Standard",
               Value::Text(TextOfCode(kVersions, inquiry.version, tools::Hex(inquiry.version, 2))));
    record.Add("removable", "Removable medium", Value::Flag((inquiry.removable & 0x80) != 0));
    record.Add("command_queuing", "Command queuing", Value::Flag((inquiry.flags7 & 0x02) != 0));
    record.Add("multiple_ports", "Several ports", Value::Flag((inquiry.flags6 & 0x10) != 0));
    record.Add("asymmetric_access", "Asymmetric access", Value::Flag((inquiry.flags5 & 0x30) != 0));
    record.Add("protection", "Protection information", Value::Flag((inquiry.flags5 & 0x01) != 0));
    return record;
}

Record VpdRecord(Bytes data) {
    const auto head = Padded<VpdPageHead>(data);
    const Bytes body = Part(data, sizeof head, BigEndian(head.length));
    Record record;
    record.Add("page", "Page", Value::Text(tools::Hex(head.page, 2)));
    record.Add("name", "Name", Value::TextOrNull(VpdPageName(head.page)));
    record.Add("device_type", "Device type", Value::Text(DeviceTypeName(head.peripheral)));
    record.Add("length", "Length", Value::Number(BigEndian(head.length), "bytes"));
    if (head.page == kSupportedPages) {
        AddSupportedPages(record, body);
    } else if (head.page == kSerialPage) {
        record.Add("serial", "Serial number", Value::Serial(TextOf(body)));
    } else if (head.page == kIdentificationPage) {
        AddDesignators(record, body);
    }
    return record;
}

}  // namespace vxmgr
