// Option ROM images for tests: PCI expansion ROM images and chains of them.
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

}  // namespace support
