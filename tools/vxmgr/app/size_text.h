// Sizes as people read them.
#pragma once

#include <cstdint>
#include <string>

namespace vxmgr {

// "2.20 TB (2.00 TiB)"; "512 bytes" below a thousand.
std::string SizeText(uint64_t bytes);

}  // namespace vxmgr
