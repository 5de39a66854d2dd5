// What a file or the contents of a flash region are, and whether they are whole.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxmgr/app/bytes.h"
#include "vxmgr/flash/flash_firmware.h"
#include "vxmgr/flash/flash_rom.h"

namespace vxmgr {

enum class ImageKind : uint8_t { Unknown, Erased, BootCode, Firmware, Nvram, Vpd };

const char* KindName(ImageKind kind);  // "boot code"
const char* KindKey(ImageKind kind);   // "boot_code", in documents

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

}  // namespace vxmgr
