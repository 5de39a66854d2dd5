#include "vxmgr/flash/flash_version.h"

#include <array>
#include <charconv>
#include <cstdint>

#include "common/text.h"

namespace vxmgr {
namespace {

using Numbers = std::array<uint32_t, 4>;

std::optional<Numbers> Parse(std::string_view text) {
    const std::vector<std::string> parts = tools::Split(text, '.');
    Numbers numbers{};
    if (parts.empty() || parts.size() > numbers.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        const char* const end = parts[i].data() + parts[i].size();
        const auto [rest, error] = std::from_chars(parts[i].data(), end, numbers[i]);
        if (error != std::errc() || rest != end) {
            return std::nullopt;
        }
    }
    return numbers;
}

}  // namespace

std::optional<std::strong_ordering> CompareVersions(std::string_view left, std::string_view right) {
    const std::optional<Numbers> first = Parse(left);
    const std::optional<Numbers> second = Parse(right);
    if (!first || !second) {
        return std::nullopt;
    }
    return *first <=> *second;
}

}  // namespace vxmgr
