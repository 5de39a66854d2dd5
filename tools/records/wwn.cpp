#include "wwn.h"

#include <algorithm>

#include "text.h"

namespace tools {
namespace {

constexpr size_t kPlainLength = 16;
constexpr size_t kSeparatedLength = 23;

int DigitOf(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

std::string Join(const std::array<uint8_t, 8>& bytes, std::string_view separator) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        if (!text.empty()) {
            text += separator;
        }
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

}  // namespace

Wwn Wwn::Of(const uint8_t (&raw)[8]) {
    Wwn wwn;
    std::copy(std::begin(raw), std::end(raw), wwn.bytes.begin());
    return wwn;
}

std::optional<Wwn> Wwn::Parse(std::string_view text) {
    const bool separated = text.size() == kSeparatedLength;
    if (!separated && text.size() != kPlainLength) {
        return std::nullopt;
    }
    const char separator = separated ? text[2] : '\0';
    if (separated && separator != ':' && separator != '-') {
        return std::nullopt;
    }
    Wwn wwn;
    size_t position = 0;
    for (uint8_t& byte : wwn.bytes) {
        if (separated && position != 0 && text[position++] != separator) {
            return std::nullopt;
        }
        const int high = DigitOf(text[position]);
        const int low = DigitOf(text[position + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        byte = static_cast<uint8_t>(high * 16 + low);
        position += 2;
    }
    return wwn;
}

size_t Wwn::LengthAt(std::string_view text, size_t position) {
    for (const size_t length : {kSeparatedLength, kPlainLength}) {
        if (position + length <= text.size() && IsWordStart(text, position) &&
            IsWordEnd(text, position + length) && Parse(text.substr(position, length))) {
            return length;
        }
    }
    return 0;
}

bool Wwn::IsZero() const {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

std::string Wwn::Colons() const {
    return Join(bytes, ":");
}

std::string Wwn::Digits() const {
    return Join(bytes, "");
}

}  // namespace tools
