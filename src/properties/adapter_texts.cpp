#include "properties/adapter_texts.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>

#include "properties/driver_replies.h"

namespace properties {

void PutText(std::string_view text, std::span<char> field) {
    const size_t length = std::min(text.size(), field.size());
    std::copy_n(text.begin(), length, field.begin());
    std::fill(field.begin() + static_cast<ptrdiff_t>(length), field.end(), '\0');
}

ManufacturerAndSerial SplitManufacturerAndSerial(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kSerialSeparator), text.size()));
    const size_t separator = text.find(kSerialSeparator);
    if (separator == std::string_view::npos) {
        return {text, {}};
    }
    return {text.substr(0, separator), text.substr(separator + 1)};
}

void FormatNumericSerial(std::span<const uint8_t, 3> serialBytes, NumericSerial& text) {
    // The third byte is the middle one: intended.
    const uint32_t number = serialBytes[0] * 0x10000u + serialBytes[2] * 0x100u + serialBytes[1];
    std::snprintf(text, sizeof text, "%c%05u", static_cast<char>('A' + number / 100000),
                  static_cast<unsigned>(number % 100000));
}

bool ReportsSpeeds(std::string_view version) {
    constexpr uint32_t kWanted[] = {8, 1, 2};
    for (size_t i = 0;; ++i) {
        uint32_t number = 0;
        std::from_chars(version.data(), version.data() + version.size(), number);
        if (number != kWanted[i]) {
            return number > kWanted[i];
        }
        if (i + 1 == std::size(kWanted)) {
            return true;
        }
        const size_t dot = version.find('.');
        if (dot == std::string_view::npos) {
            return false;
        }
        version.remove_prefix(dot + 1);
    }
}

bool FirmwareReportsSpeeds(std::string_view version) {
    return std::count(version.begin(), version.end(), '.') >= 2 && ReportsSpeeds(version);
}

}  // namespace properties
