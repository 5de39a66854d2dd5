// The product data of an open port.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

inline constexpr uint32_t kMostVpdBytes = 1u << 20;

// Of the bank in use.
HX_STATUS ReadVpd(uint32_t handle, std::vector<uint8_t>* bytes);

}  // namespace vxmgr
