// The library's trace without what names somebody.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace vxmgr {

// Lines that show bytes go, since names in them cannot be told from the rest; one line says so in
// their place. The others pass through clean().
std::string CleanTrace(std::string_view trace,
                       const std::function<std::string(const std::string& line)>& clean);

}  // namespace vxmgr
