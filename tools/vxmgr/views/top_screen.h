// The live screen of the ports, line by line. Free of platform headers.
#pragma once

#include "vxmgr/views/top_view.h"

namespace vxmgr {

struct TopLook {
    ScreenSize size{};
    bool blocks = true;  // there is more than ASCII to draw with
    bool colors = true;
};

// As many lines as the screen has, none wider than it is. A screen that is too narrow has fewer
// columns; one that is too low has no events, and then no help.
std::vector<ScreenLine> DrawTop(const TopPicture& picture, TopView& view, const TopLook& look);

// The last `width` values as bars, the highest of them for the largest; zero is the lowest, and
// nothing else is.
std::string Sparkline(const std::deque<uint64_t>& values, size_t width, bool blocks);

}  // namespace vxmgr
