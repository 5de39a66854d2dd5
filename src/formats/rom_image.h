// PCI expansion ROM images: the chain they form in a file or a flash, and their checksum.
#pragma once

#include <optional>

#include "formats/bytes.h"

namespace formats {

#pragma pack(push, 1)

inline constexpr uint16_t kRomSignature = 0xAA55;
inline constexpr char kSubsystemMark[4] = {'S', 'V', 'I', 'D'};
inline constexpr uint32_t kRomUnit = 512;  // image lengths count in this

struct RomHeader {
    uint16_t signature;  // kRomSignature
    uint8_t length;      // of the checksum, in kRomUnit
    uint8_t reserved3[21];
    uint16_t dataOffset;  // of the RomData
    uint8_t reserved26[2];
    char subsystemMark[4];  // kSubsystemMark where the vendor ID follows
    uint16_t subsystemVendor;
};
static_assert(sizeof(RomHeader) == 34);
static_assert(offsetof(RomHeader, dataOffset) == 24);
static_assert(offsetof(RomHeader, subsystemMark) == 28);

// Up to where the description is told.
inline constexpr size_t kShortestRom =
    offsetof(RomHeader, dataOffset) + sizeof RomHeader::dataOffset;

inline constexpr char kRomDataMark[4] = {'P', 'C', 'I', 'R'};

struct RomData {
    char mark[4];
    uint16_t vendorId;
    uint16_t deviceId;
    uint16_t deviceList;  // from here to more device IDs that end with 0; 0: none
    uint16_t dataLength;
    uint8_t dataRevision;
    uint8_t classCode[3];
    uint16_t length;  // of the image, in kRomUnit
    uint8_t revision;
    uint8_t majorRevision;
    uint8_t codeType;   // RomCode
    uint8_t indicator;  // kLastImage
};
static_assert(sizeof(RomData) == 22);
static_assert(offsetof(RomData, length) == 16);
static_assert(offsetof(RomData, codeType) == 20);
inline constexpr uint8_t kLastImage = 0x80;

enum class RomCode : uint8_t { Bios = 0, Fcode = 1, PaRisc = 2, Efi = 3 };

#pragma pack(pop)

// The NVRAM block inside a flash image stands behind these two characters.
inline constexpr char kNvramMark[6] = {'M', 'E', 'K', 'P', 'U', ' '};
inline constexpr size_t kNvramMarkLead = 2;

// One image of a chain.
struct RomImage {
    size_t start;
    size_t length;  // as the image tells it; the flash may end before
    uint8_t majorRevision;
    uint8_t revision;
    uint8_t codeType;
    bool last;
};

// Whether the bytes begin with the signature; an image takes kShortestRom of them.
bool BeginsRom(Bytes bytes);

// The image at a position of a flash, or nothing when none begins there.
std::optional<RomImage> ImageAt(Bytes flash, size_t start);

// The image behind another one of the same chain, or nothing when that was the last.
std::optional<RomImage> NextImage(Bytes flash, const RomImage& image);

inline constexpr uint32_t kLongestChain = 11;  // images that a walk looks at

// The first image of a code type among the first kLongestChain of the chain at the flash's start.
std::optional<RomImage> FindImage(Bytes flash, RomCode code);

// Makes the checksum of an image that begins a span. False when its length byte tells 0 or more
// than there is; nothing is changed then.
bool UpdateChecksum(std::span<uint8_t> image);

}  // namespace formats
