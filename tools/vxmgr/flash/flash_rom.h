// Boot code: a chain of PCI expansion ROM images, as a file or a flash
// region holds it.
#pragma once

#include "formats/rom_image.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

enum class Sum : uint8_t { None, Good, Bad };  // None: the format has none

inline constexpr uint8_t kBiosCode = static_cast<uint8_t>(formats::RomCode::Bios);

struct RomImage {
    size_t offset = 0;
    size_t length = 0;
    uint8_t codeType = 0;
    std::string version;  // "3.61"
    uint16_t vendorId = 0;
    std::vector<uint16_t> devices;
    Sum checksum = Sum::None;  // BIOS images alone have one
    bool last = false;
};

struct RomChain {
    std::vector<RomImage> images;
    size_t bytes = 0;     // up to the end of the last image
    std::string problem;  // why it is no whole chain; empty: it is one

    const RomImage* Bios() const;  // null when there is none
};

std::string CodeTypeName(uint8_t codeType);  // "BIOS"

RomChain DecodeRomChain(Bytes bytes);

}  // namespace vxmgr
