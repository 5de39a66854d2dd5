#include "mapping/device_names.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "hxmapping.h"

namespace mapping {
namespace {

struct NameRow {
    std::string_view prefix;
    uint32_t type;
};
constexpr NameRow kNames[] = {
    {"PhysicalDrive", HX_OS_DEVICE_DISK},
    {"Tape", HX_OS_DEVICE_TAPE},
    {"Changer", HX_OS_DEVICE_CHANGER},
};

constexpr DeviceName kNone{0, 0};

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

DeviceName ParseDeviceName(std::string_view name) {
    for (const NameRow& row : kNames) {
        if (!name.starts_with(row.prefix)) {
            continue;
        }
        const std::string_view digits = name.substr(row.prefix.size());
        uint32_t number = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), number);
        const bool whole = end == digits.data() + digits.size() && error == std::errc{};
        return whole && IsDigit(digits[0]) ? DeviceName{row.type, number} : kNone;
    }
    return kNone;
}

void WriteDiskName(uint32_t number, DiskNameText& out) {
    const std::string_view prefix = kNames[0].prefix;
    static_assert(kNames[0].type == HX_OS_DEVICE_DISK);
    char* const digits = std::copy(prefix.begin(), prefix.end(), out);
    *std::to_chars(digits, std::end(out) - 1, number).ptr = 0;
}

bool JoinText(std::string_view first, std::string_view second, std::span<char> out) {
    const bool fits = first.size() + second.size() < out.size();
    if (fits) {
        std::copy(first.begin(), first.end(), out.begin());
        std::copy(second.begin(), second.end(), out.begin() + static_cast<ptrdiff_t>(first.size()));
    }
    out[fits ? first.size() + second.size() : 0] = 0;
    return fits;
}

bool IsVolumeName(std::string_view text) {
    return text.starts_with(kVolumePrefix);
}

bool EndWithBackslash(std::string_view text, std::span<char> out) {
    if (text.starts_with(kDevicePrefix)) {
        text.remove_prefix(kDevicePrefix.size());
    }
    return JoinText(text, text.ends_with('\\') ? "" : "\\", out);
}

std::string_view FirstOf(std::span<const char> list) {
    const std::string_view all(list.data(), list.size());
    const size_t end = all.find('\0');
    return end != std::string_view::npos ? all.substr(0, end) : std::string_view{};
}

}  // namespace mapping
