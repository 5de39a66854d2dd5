// Versions as dotted numbers: "9.12.01" is 9, 12, 1 and 0.
#pragma once

#include <cstdint>

#include "formats/text_writer.h"

namespace formats {

struct VersionNumbers {
    uint32_t parts[4];

    bool operator==(const VersionNumbers&) const = default;
};

inline VersionNumbers ParseVersion(const char* text) {
    VersionNumbers version = {};
    for (uint32_t& part : version.parts) {
        for (; *text >= '0' && *text <= '9'; ++text) {
            part = part * 10 + static_cast<uint32_t>(*text - '0');
        }
        if (*text != '.') {
            break;
        }
        ++text;
    }
    return version;
}

// As firmware reports itself: the last number only where there is one.
template <size_t size>
void FormatFirmwareVersion(const VersionNumbers& version, char (&text)[size]) {
    TextWriter writer(text);
    writer.Number(version.parts[0]).Text(".").Number(version.parts[1], 2);
    writer.Text(".").Number(version.parts[2], 2);
    if (version.parts[3] != 0) {
        writer.Text(".").Number(version.parts[3]);
    }
}

// As boot code reports itself: the first two numbers.
inline TextWriter& WriteBootVersion(TextWriter& writer, uint32_t major, uint32_t minor) {
    return writer.Number(major).Text(".").Number(minor, 2);
}

}  // namespace formats
