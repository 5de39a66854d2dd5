#include "flash/version_text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>

#include "formats/firmware_image.h"
#include "formats/rom_image.h"
#include "formats/version_numbers.h"

namespace flash {
namespace {

using formats::RomCode;

void FormatFirmware(std::span<const uint8_t> image, VersionText& text) {
    formats::VersionNumbers version = formats::FirmwareVersion(image);
    version.parts[3] = 0;
    // Anything above a byte is no version.
    const uint32_t highest = *std::max_element(std::begin(version.parts), std::end(version.parts));
    if (highest != 0 && highest <= UINT8_MAX) {
        formats::FormatFirmwareVersion(version, text);
    }
}

void FormatBoot(std::span<const uint8_t> image, RomCode code, VersionText& text) {
    const std::optional<formats::RomImage> found = formats::FindImage(image, code);
    if (found && (found->majorRevision != 0 || found->revision != 0)) {
        formats::TextWriter writer(text);
        formats::WriteBootVersion(writer, found->majorRevision, found->revision);
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
