// INQUIRY data and vital product data pages (SPC) decoded.
#pragma once

#include "formats/scsi_data.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

std::string DeviceTypeName(uint8_t type);  // of the low five bits of INQUIRY byte 0

// "unit_serial_number"; empty for a page without a name here.
std::string VpdPageName(uint8_t page);

// What the data claims to have; zero behind that.
formats::InquiryData DecodeInquiry(Bytes data);
extern const Fields<formats::InquiryData> kInquiryFields;

struct Designator {
    formats::DesignatorHead head;
    std::vector<uint8_t> bytes;

    uint8_t Type() const { return head.association & 0x0F; }
};

// What a page holds: the pages that the unit supports, a serial number, or identifiers. Pages of
// other kinds give their number and length alone.
struct ScsiVpdPage {
    formats::VpdPageHead head;
    std::optional<std::vector<uint8_t>> pages;
    std::optional<std::string> serial;
    std::optional<std::vector<Designator>> identifiers;
};
ScsiVpdPage DecodeScsiVpd(Bytes data);
extern const Fields<ScsiVpdPage> kScsiVpdFields;

// How many bytes the data claims to have, its header with it.
size_t VpdLength(Bytes data);
size_t InquiryLength(Bytes data);

}  // namespace vxmgr
