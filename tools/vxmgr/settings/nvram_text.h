// The text form of a classic NVRAM block. The library reads it and passes over what it does not
// understand; here it is checked beforehand. Free of platform headers.
#pragma once

#include <string_view>

namespace vxmgr {

// model: the text that the library writes of a block, which names every variable and its range.
// Throws DocumentError for the first line of text that the library would pass over or cut.
void CheckNvramText(std::string_view text, std::string_view model);

}  // namespace vxmgr
