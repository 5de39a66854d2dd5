// SHA-256 (FIPS 180-4), by the system's cryptography (CNG).
#pragma once

#include <string>

#include "vxmgr/app/bytes.h"

namespace vxmgr {

// 64 hexadecimal digits. Throws std::runtime_error where the system has no such function.
std::string Sha256Of(Bytes bytes);

}  // namespace vxmgr
