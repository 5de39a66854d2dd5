// World wide names: eight bytes, read with ':' or '-' between the bytes or with no separator.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tools {

struct Wwn {
    std::array<uint8_t, 8> bytes{};

    static Wwn Of(const uint8_t (&raw)[8]);
    static std::optional<Wwn> Parse(std::string_view text);

    // The length of a name that stands in running text at the position; 0 when there is none.
    static size_t LengthAt(std::string_view text, size_t position);

    bool IsZero() const;
    std::string Colons() const;  // "21:00:00:0e:1e:00:00:01", for people
    std::string Digits() const;  // "2100000e1e000001", for programs

    friend bool operator==(const Wwn&, const Wwn&) = default;
};

}  // namespace tools
