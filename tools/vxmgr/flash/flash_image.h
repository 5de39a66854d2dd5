// What a file or the contents of a flash region are, and whether they are whole.
#pragma once

#include <compare>

#include "vxmgr/app/bytes.h"
#include "vxmgr/flash/flash_firmware.h"
#include "vxmgr/flash/flash_rom.h"

namespace vxmgr {

enum class ImageKind : uint8_t { Unknown, Erased, BootCode, Firmware, Nvram, Vpd };

const char* KindName(ImageKind kind);  // "boot code"

// In results.
inline constexpr const char* kImageKinds[] = {"unknown",  "erased", "boot_code",
                                              "firmware", "nvram",  "vpd"};
Value KindValue(ImageKind kind);

struct ImageInfo {
    ImageKind kind = ImageKind::Unknown;
    size_t size = 0;
    std::string version;          // boot code: of its BIOS; empty: none
    uint16_t vendorId = 0;        // 0: not told
    std::vector<uint16_t> chips;  // device IDs that it is for; empty: not told
    std::string problem;          // why it is damaged; empty: nothing is wrong with it
    RomChain boot;                // BootCode
    FirmwareImage firmware;       // Firmware
};

ImageInfo InspectImage(Bytes bytes);

// Compares dotted numbers one by one, a missing one counting as 0; empty when one of the texts is
// no version.
std::optional<std::strong_ordering> CompareVersions(std::string_view left, std::string_view right);

}  // namespace vxmgr
