// What -t takes: "wwn:NAME" (or a name alone), "id:0x010203", or "BUS:TARGET".
#pragma once

#include <string>
#include <string_view>

#include "hxmgtapi.h"

namespace vxmgr {

// False with a sentence in *error when the text is none of these. The LUN is left zero.
bool ParseTarget(std::string_view text, HX_SCSI_ADDRESS* address, std::string* error);

}  // namespace vxmgr
