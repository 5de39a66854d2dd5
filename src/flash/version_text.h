// Versions of boot code and firmware: from an image to the text records kept on the adapter. Free
// of platform headers.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace flash {

using VersionText = char[16];  // empty: the image has no such code
using VersionRecord = char[36];

// The kinds of version records: letter of the record and its place in the two-wire device.
enum class VersionKind { Efi, Fcode, Bios, Firmware };

struct VersionKindRow {
    VersionKind kind;
    char letter;
    uint16_t offset;
    const char* name;
};
inline constexpr VersionKindRow kVersionKinds[] = {
    {VersionKind::Efi, 'E', 0x042A, "EFI version"},
    {VersionKind::Fcode, 'F', 0x044E, "FCODE version"},
    {VersionKind::Bios, 'B', 0x0472, "BIOS version"},
    {VersionKind::Firmware, 'G', 0x0406, "FwVersion"},
};

// The version of one kind in a boot-code chain or, for the firmware, in a firmware image.
void FormatVersion(std::span<const uint8_t> image, VersionKind kind, VersionText& text);

// The record of a version: the text, cut to 14 characters, and zeros.
void FormatVersionRecord(std::string_view version, char letter, VersionRecord& record);

}  // namespace flash
