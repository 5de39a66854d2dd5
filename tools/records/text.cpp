#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "unicode.h"

namespace tools {
namespace {

constexpr char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}
constexpr char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

constexpr bool IsWordCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// How many letters have to be added, left out, exchanged or swapped with their neighbour.
size_t Slips(std::string_view left, std::string_view right) {
    std::vector<std::vector<size_t>> table(left.size() + 1, std::vector<size_t>(right.size() + 1));
    for (size_t i = 0; i <= left.size(); ++i) {
        for (size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const size_t exchange = left[i - 1] == right[j - 1] ? 0 : 1;
            table[i][j] = std::min(
                {table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + exchange});
            if (i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1]) {
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
            }
        }
    }
    return table[left.size()][right.size()];
}

}  // namespace

std::string Uppercase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = Upper(c);
    }
    return result;
}

std::string Lowercase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = Lower(c);
    }
    return result;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    return Lowercase(left) == Lowercase(right);
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        const size_t end = text.find(separator, start);
        parts.emplace_back(text.substr(start, end - start));
        if (end == std::string_view::npos) {
            return parts;
        }
        start = end + 1;
    }
}

bool IsWordStart(std::string_view text, size_t position) {
    return position == 0 || !IsWordCharacter(text[position - 1]);
}

bool IsWordEnd(std::string_view text, size_t position) {
    return position >= text.size() || !IsWordCharacter(text[position]);
}

std::string Hex(uint64_t value, int digits) {
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "0x%0*llx", digits,
                  static_cast<unsigned long long>(value));
    return buffer;
}

std::optional<uint64_t> ParseNumber(std::string_view text) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    uint64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, base);
    if (text.empty() || error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return value;
}

std::string FieldText(const char* field, size_t size) {
    std::string_view rest(field, strnlen(field, size));
    std::string text;
    while (!rest.empty()) {
        const std::string_view before = rest;
        const bool printable = IsPrintable(TakeCharacter(rest));
        text += printable ? before.substr(0, before.size() - rest.size()) : "?";
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

size_t DisplayWidth(std::string_view text) {
    size_t width = 0;
    while (!text.empty()) {
        width += CellsOf(TakeCharacter(text));
    }
    return width;
}

std::string Nearest(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr size_t kLongestWord = 64;
    constexpr size_t kLonger = 5;
    const std::string wanted = Lowercase(word.substr(0, kLongestWord));
    size_t least = word.size() < kLonger ? 1 : 2;
    std::string nearest;
    for (const std::string& candidate : candidates) {
        const size_t slips = Slips(wanted, candidate);
        if (slips < least || (slips == least && nearest.empty())) {
            least = slips;
            nearest = candidate;
        }
    }
    // A beginning is no slip: "lun" for "lunmask".
    for (size_t i = 0; nearest.empty() && wanted.size() > 1 && i < candidates.size(); ++i) {
        if (candidates[i].starts_with(wanted) || wanted.starts_with(candidates[i])) {
            nearest = candidates[i];
        }
    }
    return nearest;
}

std::string Wrapped(std::string_view text, size_t width, size_t indent) {
    std::string lines;
    size_t used = 0;
    for (const std::string& word : Split(text, ' ')) {
        const size_t length = DisplayWidth(word);
        if (used != 0 && used + 1 + length > width) {
            lines += "\n" + std::string(indent, ' ');
            used = 0;
        }
        lines += (used == 0 ? "" : " ") + word;
        used += (used == 0 ? 0 : 1) + length;
    }
    return lines;
}

std::string FormatUtc(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss<milliseconds> clock(floor<milliseconds>(time - day));
    char buffer[40];
    std::snprintf(
        buffer, sizeof buffer, "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
        static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
        static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count()));
    return buffer;
}

}  // namespace tools
