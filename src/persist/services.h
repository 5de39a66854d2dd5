// The stores of the family's driver services.
#pragma once

#include "frame/family_services.h"

namespace persist {

inline constexpr auto& kServices = frame::kFamilyServices;

// The two keys of the value-name layout. Readers read the first; writers write both, in this order.
inline constexpr char kDeviceZero[] = "Device0";
inline constexpr char kDevice[] = "Device";

}  // namespace persist
