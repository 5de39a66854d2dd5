// Boot code: a chain of PCI expansion ROM images, as a file or a flash
// region holds it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vxmgr/app/bytes.h"

namespace vxmgr {

#pragma pack(push, 1)

struct RomHead {
    uint16_t signature;  // kRomSignature
    uint8_t length;      // of the bytes that add up to 0, in kRomUnit
    uint8_t reserved3[21];
    uint16_t dataOffset;  // of the RomData
};
static_assert(sizeof(RomHead) == 26);
static_assert(offsetof(RomHead, dataOffset) == 24);

struct RomData {
    char mark[4];  // "PCIR"
    uint16_t vendorId;
    uint16_t deviceId;
    uint16_t deviceList;  // from here to more device IDs that end with 0; 0: none
    uint16_t dataLength;
    uint8_t dataRevision;
    uint8_t classCode[3];
    uint16_t length;  // of the image, in kRomUnit
    uint8_t minorRevision;
    uint8_t majorRevision;
    uint8_t codeType;
    uint8_t indicator;  // kLastRom
};
static_assert(sizeof(RomData) == 22);
static_assert(offsetof(RomData, length) == 16);
static_assert(offsetof(RomData, codeType) == 20);

#pragma pack(pop)

inline constexpr uint16_t kRomSignature = 0xAA55;
inline constexpr size_t kRomUnit = 512;
inline constexpr uint8_t kLastRom = 0x80;
inline constexpr uint8_t kBiosCode = 0;
inline constexpr size_t kMostRoms = 11;  // the library looks no further

enum class Sum : uint8_t { None, Good, Bad };  // None: the format has none

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

bool BeginsRom(Bytes bytes);
RomChain DecodeRomChain(Bytes bytes);

}  // namespace vxmgr
