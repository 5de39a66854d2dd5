#include "flash/firmware_version.h"

#include <charconv>

namespace flash {

bool IsAtLeast(std::string_view version, std::span<const uint32_t> wanted) {
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (i != 0) {
            const size_t dot = version.find('.');
            if (dot == std::string_view::npos) {
                return false;
            }
            version.remove_prefix(dot + 1);
        }
        uint32_t number = 0;
        std::from_chars(version.data(), version.data() + version.size(), number);
        if (number != wanted[i]) {
            return number > wanted[i];
        }
    }
    return true;
}

}  // namespace flash
