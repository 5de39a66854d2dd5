// Texts of status codes.
#pragma once

#include "hxmgtapi.h"

namespace frame {

const char* GetErrorString(HX_STATUS status);

}  // namespace frame
