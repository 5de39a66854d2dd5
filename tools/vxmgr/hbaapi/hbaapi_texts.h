// Codes of the standard HBA API as people read them, under the API's own names.
#pragma once

#include <string>

#include "hbaapi.h"

namespace vxmgr {

// "HBA_STATUS_ERROR_ARG". A handler may also hand on a status of the library: those, and any other,
// come as a hexadecimal number.
std::string HbaStatusText(HBA_STATUS status);

// "NPORT", "ONLINE"; a number that has no name comes as "7".
std::string HbaPortTypeText(HBA_PORTTYPE type);
std::string HbaPortStateText(HBA_PORTSTATE state);

// "4 Gbit/s, 8 Gbit/s" for a set; empty when nothing is known or reported.
std::string HbaSpeedsText(HBA_PORTSPEED speeds);

// "FCP, IP"; numbers for the other types of FC-GS; empty for none.
std::string HbaFc4TypesText(const HBA_FC4TYPES& types);

// "3" for the LUN in the eight bytes that FCP sends; the bytes as hexadecimal digits when they
// address it in another way than by a number.
std::string HbaFcpLunText(HBA_UINT64 lun);

// "192.0.2.7", "2001:db8:0:0:0:0:0:1"; empty for an unknown version.
std::string HbaAddressText(HBA_UINT16 version, const HBA_UINT8 (&address)[16]);

}  // namespace vxmgr
