#include "flash/version_text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>

#include "formats/firmware_image.h"
#include "formats/rom_image.h"

namespace flash {
namespace {

void FormatFirmware(std::span<const uint8_t> image, VersionText& text) {
    uint32_t numbers[3];
    for (uint32_t i = 0; i < std::size(numbers); ++i) {
        numbers[i] = FirmwareWord(image, kVersionWord + i);
    }
    // Anything above a byte is no version.
    const uint32_t highest = *std::max_element(std::begin(numbers), std::end(numbers));
    if (highest != 0 && highest <= UINT8_MAX) {
        std::snprintf(text, sizeof text, "%u.%02u.%02u", static_cast<unsigned>(numbers[0]),
                      static_cast<unsigned>(numbers[1]), static_cast<unsigned>(numbers[2]));
    }
}

void FormatBoot(std::span<const uint8_t> image, RomCode code, VersionText& text) {
    const std::optional<RomImage> found = FindImage(image, code);
    if (found && (found->majorRevision != 0 || found->revision != 0)) {
        std::snprintf(text, sizeof text, "%d.%02d", found->majorRevision, found->revision);
    }
}

}  // namespace

void FormatVersion(std::span<const uint8_t> image, VersionKind kind, VersionText& text) {
    text[0] = 0;
    switch (kind) {
        case VersionKind::Firmware:
            return FormatFirmware(image, text);
        case VersionKind::Efi:
            return FormatBoot(image, RomCode::Efi, text);
        case VersionKind::Fcode:
            return FormatBoot(image, RomCode::Fcode, text);
        case VersionKind::Bios:
            return FormatBoot(image, RomCode::Bios, text);
    }
}

void FormatVersionRecord(std::string_view version, char letter, VersionRecord& record) {
    std::fill(std::begin(record), std::end(record), '\0');
    // The date is always zero: intended.
    constexpr size_t kLongest = 14;
    std::snprintf(record, sizeof record, "V:%.*s,D:00000000,A:Y,T:%c",
                  static_cast<int>(std::min(version.size(), kLongest)), version.data(), letter);
}

}  // namespace flash
