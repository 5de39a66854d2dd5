// Flag bits of the node reply.
#pragma once

#include <cstdint>

namespace vxemu {

inline constexpr uint32_t kNodeFlagTextSerial = 16;  // manufacturer and serial come as text

}  // namespace vxemu
