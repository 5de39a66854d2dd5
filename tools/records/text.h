// Small text helpers of the tools. Free of platform headers; ASCII rules only, so that output never
// depends on the locale.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools {

std::string Uppercase(std::string_view text);
std::string Lowercase(std::string_view text);
bool EqualIgnoringCase(std::string_view left, std::string_view right);
std::vector<std::string> Split(std::string_view text, char separator);

// The texts of a list's elements (a member, or what a function gives), one behind the other.
template <class List, class Text = std::identity>
std::string TextsJoined(const List& list, std::string_view separator, Text text = {}) {
    std::string joined;
    for (const auto& element : list) {
        joined += joined.empty() ? "" : separator;
        joined += std::invoke(text, element);
    }
    return joined;
}

// Whether a word of letters and digits may begin, or has ended, at the position.
bool IsWordStart(std::string_view text, size_t position);
bool IsWordEnd(std::string_view text, size_t position);

// "0x" and at least `digits` hexadecimal digits, lower case.
std::string Hex(uint64_t value, int digits);

// The whole text as an unsigned number, decimal or after "0x" hexadecimal.
std::optional<uint64_t> ParseNumber(std::string_view text);

// A text field of a driver or firmware: ends at its first zero or at its size, trailing blanks go,
// and anything that a terminal or a JSON reader could stumble over becomes '?': what is no valid
// UTF-8, controls, and what turns the direction of a line. Letters of any script stay.
std::string FieldText(const char* field, size_t size);

// The number of a console's cells that UTF-8 text takes.
size_t DisplayWidth(std::string_view text);

// The candidate that the word was most likely meant to be, or empty: one slip in a short word, two
// in a longer one.
std::string Nearest(std::string_view word, const std::vector<std::string>& candidates);

// Words broken into lines of at most `width` cells, each line but the first behind `indent` blanks.
std::string Wrapped(std::string_view text, size_t width, size_t indent);

// "2026-01-31T23:59:59.123Z"
std::string FormatUtc(std::chrono::system_clock::time_point time);

}  // namespace tools
