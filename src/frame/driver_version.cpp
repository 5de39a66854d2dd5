#include "frame/driver_version.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace frame {

uint32_t ParseDriverVersion(std::span<const char> text) {
    constexpr size_t kKept = 31;
    constexpr std::string_view kSeparators = " .\n\t";

    std::string_view rest(text.data(), std::min(text.size(), kKept));
    rest = rest.substr(0, rest.find('\0'));
    uint32_t parts[3] = {};
    for (uint32_t& part : parts) {
        const size_t start = rest.find_first_not_of(kSeparators);
        if (start == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(start);
        const std::string_view token = rest.substr(0, rest.find_first_of(kSeparators));
        std::from_chars(token.data(), token.data() + token.size(), part);
        rest.remove_prefix(token.size());
    }
    return (parts[0] * 100 + parts[1]) * 100 + parts[2];
}

}  // namespace frame
