#include "vxmgr/support/trace_text.h"

namespace vxmgr {
namespace {

// "  01f0 :  00 11 22": an offset in hexadecimal between blanks, then a colon.
bool ShowsBytes(std::string_view line) {
    const size_t start = line.find_first_not_of(' ');
    if (start == std::string_view::npos || start == 0) {
        return false;
    }
    const size_t end = line.find_first_not_of("0123456789abcdefABCDEF", start);
    return end != std::string_view::npos && end != start && line.substr(end).starts_with(" :");
}

}  // namespace

std::string CleanTrace(std::string_view trace,
                       const std::function<std::string(const std::string& line)>& clean) {
    std::string text;
    bool left = false;
    while (!trace.empty()) {
        std::string_view line = trace.substr(0, trace.find('\n'));
        trace.remove_prefix(line.size() < trace.size() ? line.size() + 1 : line.size());
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (ShowsBytes(line)) {
            text += left ? "" : "  ... bytes left out\n";
            left = true;
            continue;
        }
        left = false;
        text += clean(std::string(line)) + "\n";
    }
    return text;
}

}  // namespace vxmgr
