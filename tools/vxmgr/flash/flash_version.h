// Versions as dotted numbers.
#pragma once

#include <compare>
#include <optional>
#include <string_view>

namespace vxmgr {

// Compares number by number, a missing one counting as 0; empty when one of them is no version.
std::optional<std::strong_ordering> CompareVersions(std::string_view left, std::string_view right);

}  // namespace vxmgr
