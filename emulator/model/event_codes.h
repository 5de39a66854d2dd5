// The event codes of the driver.
#pragma once

#include <cstdint>

namespace vxemu::event_code {

inline constexpr uint32_t kLip = 0x8010;
inline constexpr uint32_t kLinkUp = 0x8011;
inline constexpr uint32_t kLinkDown = 0x8012;
inline constexpr uint32_t kLipReset = 0x8013;
inline constexpr uint32_t kPortUpdate = 0x8014;
inline constexpr uint32_t kRscn = 0x8015;
inline constexpr uint32_t kTest = 0x8080;

}  // namespace vxemu::event_code
