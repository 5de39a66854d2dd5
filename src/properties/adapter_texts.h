// Texts of an adapter that are taken apart or put together. Free of platform headers.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace properties {

inline constexpr char kManufacturer[] = "Tarnel, Inc.";

// The text of a field that ends at its first zero or at its end.
constexpr std::string_view TextOf(std::span<const char> field) {
    const std::string_view whole(field.data(), field.size());
    return whole.substr(0, whole.find('\0'));
}

// Writes text into a field, cut to its size; the rest of the field is zero.
void PutText(std::string_view text, std::span<char> field);

struct ManufacturerAndSerial {
    std::string_view manufacturer;  // empty when the text has no piece
    std::string_view serial;        // empty when nothing follows a separator
};

// Splits "manufacturer-serial". Separators before the manufacturer are passed over.
ManufacturerAndSerial SplitManufacturerAndSerial(std::string_view text);

// Serial number of three bytes: a letter and five digits, e.g. "A00042".
using NumericSerial = char[8];
void FormatNumericSerial(std::span<const uint8_t, 3> serialBytes, NumericSerial& text);

// True for version 8.1.2 and newer, which reports speeds; a number that is needed and missing
// counts as old.
bool ReportsSpeeds(std::string_view version);

// The same for firmware, whose version has two dots at least: a text that misses one counts as old,
// whatever its numbers.
bool FirmwareReportsSpeeds(std::string_view version);

}  // namespace properties
