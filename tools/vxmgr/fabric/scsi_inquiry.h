// INQUIRY data and vital product data pages (SPC) as records.
#pragma once

#include <string>

#include "vxmgr/app/bytes.h"

namespace vxmgr {

std::string DeviceTypeName(uint8_t type);  // of the low five bits of INQUIRY byte 0

// "unit_serial_number"; empty for a page without a name here.
std::string VpdPageName(uint8_t page);

tools::Record InquiryRecord(Bytes data);

// The page's fields: what it supports, a serial number, or identifiers. Pages of other kinds give
// their number and length alone.
tools::Record VpdRecord(Bytes data);

// How many bytes the data claims to have, its header with it.
size_t VpdLength(Bytes data);
size_t InquiryLength(Bytes data);

}  // namespace vxmgr
