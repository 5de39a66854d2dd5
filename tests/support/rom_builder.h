// Flash images for tests: PCI expansion ROM images, chains of them, and firmware.
#pragma once

#include <algorithm>
#include <cstring>
#include <numeric>
#include <optional>
#include <vector>

#include "formats/rom_image.h"

namespace support {

struct RomSpec {
    formats::RomCode code = formats::RomCode::Bios;
    uint16_t units = 2;  // of 512 bytes
    bool last = true;
    std::optional<uint16_t> subsystemVendor = {};
    std::optional<uint8_t> nvramFill = {};  // an NVRAM block of this byte behind its signature
    size_t nvramBytes = 256;
    uint8_t major = 0;
    uint8_t minor = 0;
    uint16_t vendor = 0;
    uint16_t device = 0;
};

inline constexpr size_t kRomNvramMarkAt = 0x100;
inline constexpr size_t kRomNvramAt = kRomNvramMarkAt + formats::kNvramMarkLead;

inline std::vector<uint8_t> MakeRom(const RomSpec& spec) {
    std::vector<uint8_t> rom(size_t{spec.units} * formats::kRomUnit);
    for (size_t i = 0; i < rom.size(); ++i) {
        rom[i] = static_cast<uint8_t>(i * 7 + static_cast<size_t>(spec.code));
    }
    formats::RomHeader header = {};
    header.signature = formats::kRomSignature;
    header.length = static_cast<uint8_t>(spec.units);
    header.dataOffset = 0x40;
    if (spec.subsystemVendor) {
        std::memcpy(header.subsystemMark, formats::kSubsystemMark, sizeof header.subsystemMark);
        header.subsystemVendor = *spec.subsystemVendor;
    }
    std::memcpy(rom.data(), &header, sizeof header);
    formats::RomData data = {};
    std::memcpy(data.mark, formats::kRomDataMark, sizeof data.mark);
    data.vendorId = spec.vendor;
    data.deviceId = spec.device;
    data.length = spec.units;
    data.majorRevision = spec.major;
    data.revision = spec.minor;
    data.codeType = static_cast<uint8_t>(spec.code);
    data.indicator = spec.last ? formats::kLastImage : 0;
    std::memcpy(rom.data() + header.dataOffset, &data, sizeof data);
    if (spec.nvramFill) {
        std::memcpy(rom.data() + kRomNvramMarkAt, formats::kNvramMark, sizeof formats::kNvramMark);
        std::fill_n(rom.begin() + kRomNvramAt + 4, spec.nvramBytes - 4, *spec.nvramFill);
    }
    return rom;
}

inline std::vector<uint8_t> Chain(const std::vector<std::vector<uint8_t>>& roms) {
    std::vector<uint8_t> chain;
    for (const auto& rom : roms) {
        chain.insert(chain.end(), rom.begin(), rom.end());
    }
    return chain;
}

// Whether the checksum of the image at a position holds: all bytes of it but the last but one add
// up to 0.
inline bool ChecksumHolds(const std::vector<uint8_t>& bytes, size_t start) {
    const size_t length = bytes[start + 2] * size_t{formats::kRomUnit};
    uint32_t sum = 0;
    for (size_t i = 0; i < length; ++i) {
        sum += i == length - 2 ? 0 : bytes[start + i];
    }
    return sum % 256 == 0;
}

// Words of firmware are big-endian.
inline void PutWord(std::vector<uint8_t>& image, size_t word, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) {
        image[word * 4 + i] = static_cast<uint8_t>(value >> (24 - 8 * i));
    }
}

// The last of so many words from the first on makes all of them add up to 0.
inline void SealSegment(std::vector<uint8_t>& image, size_t first, size_t words) {
    uint32_t sum = 0;
    for (size_t at = first * 4; at < (first + words - 1) * 4; ++at) {
        sum += uint32_t{image[at]} << (24 - 8 * (at % 4));
    }
    PutWord(image, first + words - 1, 0 - sum);
}

// Two segments of these lengths in words, their sums right, in a file of so many words. The head is
// what stands behind the length of the first one: version and device.
inline std::vector<uint8_t> MakeFirmware(uint32_t first, uint32_t second, size_t words,
                                         const std::vector<uint32_t>& head = {}) {
    std::vector<uint8_t> image(words * 4, 0xFF);
    for (uint32_t word = 0; word < first + second; ++word) {
        PutWord(image, word, 0x01020304u * (word + 7));
    }
    PutWord(image, 3, first);
    PutWord(image, first + 3, second);
    for (size_t i = 0; i < head.size(); ++i) {
        PutWord(image, 4 + i, head[i]);
    }
    SealSegment(image, 0, first);
    SealSegment(image, first, second);
    return image;
}

}  // namespace support
