// Which flash region does what: rules by region code, and the NVRAM and VPD region of a port. Free
// of platform headers.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>

#include "properties/chip_families.h"

namespace flash {

inline constexpr uint32_t kFirmwareRegion = 1;
inline constexpr uint32_t kBootRegion = 7;
inline constexpr uint32_t kSecondBootRegion = 17;
inline constexpr uint32_t kWholeFlashRegion = 255;  // all of a flash without regions

// Regions whose images are prepared as boot code before an update of a chip without region layout.
inline constexpr uint32_t kPreparedRegions[] = {2, 4, 5, 6, 7, 255};
// Regions whose update needs the update lock once the adapter's capabilities are known.
inline constexpr uint32_t kLockedRegions[] = {1, 2, 7, 9, 102, 103, 158, 159, 209, 211, 241, 242};
// Regions whose update ends with a reset of the adapter's ports.
inline constexpr uint32_t kResetRegions[] = {1, 2, 7, 9};
// Regions whose update is recorded in the adapter's version records.
inline constexpr uint32_t kVersionedRegions[] = {kFirmwareRegion, kBootRegion, kSecondBootRegion};

constexpr bool IsAmong(std::span<const uint32_t> regions, uint32_t code) {
    return std::find(regions.begin(), regions.end(), code) != regions.end();
}

// One OEM board keeps its boot code as it is delivered.
inline constexpr uint16_t kOemSubsystemVendor = 0x1ED9;
inline constexpr uint16_t kOemSubsystemDevice = 0x0101;

constexpr bool KeepsBootCode(const properties::Chip& chip, uint16_t subsystemVendor,
                             uint16_t subsystemDevice) {
    return chip.Has(properties::ChipTrait::OemBootVariant) &&
           subsystemVendor == kOemSubsystemVendor && subsystemDevice == kOemSubsystemDevice;
}

// Bytes of the flash image and of its NVRAM block.
constexpr uint32_t FlashImageBytes(const properties::Chip& chip) {
    return chip.Has(properties::ChipTrait::LargeRom) ? 256 * 1024 : 128 * 1024;
}
constexpr uint32_t FlashNvramBytes(const properties::Chip& chip) {
    return chip.Has(properties::ChipTrait::LargeRom) ? 512 : 256;
}

// True when NVRAM and VPD stand in flash regions of their own.
constexpr bool HasPortRegions(const properties::Chip& chip) {
    return chip.Has(properties::ChipTrait::LargeRom | properties::ChipTrait::RegionLayout);
}

// Region by PCI function; 0 = none.
struct RegionSet {
    uint16_t byFunction[8];
};

// A chip's regions are those of the first row with one of its traits.
struct PortRegionRow {
    properties::ChipTrait traits;
    RegionSet firstBank;
    RegionSet secondBank;  // of banked chips
};

struct PortRegionRules {
    properties::ChipTrait ownCode;  // chips that use the code of their chip property when flagged
    std::span<const PortRegionRow> rows;
};

namespace region_detail {
using properties::ChipTrait;
inline constexpr RegionSet kNone = {};
inline constexpr RegionSet kNvram = {{21, 23, 213, 215}};
inline constexpr RegionSet kVpd = {{20, 22, 212, 214}};
// clang-format off
inline constexpr PortRegionRow kNvramRows[] = {
    {ChipTrait::Banked,         kNvram, {{269, 271, 273, 275}}},
    {ChipTrait::NvramRegion170, {{170, 172, 170, 172, 172, 172, 170, 172}}, kNone},
    {ChipTrait::RegionLayout,   kNvram, kNone},
    {ChipTrait::LargeRom,       {{21, 23, 21, 23, 23, 23, 21, 23}}, kNone},
};
inline constexpr PortRegionRow kVpdRows[] = {
    {ChipTrait::Banked,         kVpd, {{268, 270, 272, 274}}},
    {ChipTrait::SecureFlash,    kVpd, kNone},
    {ChipTrait::OwnVpdRegion,   {{129, 129, 129, 129, 129, 129, 129, 129}}, kNone},
    {ChipTrait::LargeRom | ChipTrait::RegionLayout, {{20, 22, 20, 22, 22, 22, 20, 22}}, kNone},
};
// clang-format on
}  // namespace region_detail

inline constexpr PortRegionRules kNvramRegions = {properties::ChipTrait::RegionLayout,
                                                  region_detail::kNvramRows};
inline constexpr PortRegionRules kVpdRegions = {properties::ChipTrait::OwnVpdRegion,
                                                region_detail::kVpdRows};

// What the region of a port depends on.
struct PortIdentity {
    properties::Chip chip;
    uint8_t functionBits;  // PCI function number in the top three bits
    uint8_t regionFlag;
    uint8_t regionCode;
};

enum class Bank { First, Second };
enum class Direction { Read, Write };

// The bank that an access goes to, by the active bank's byte. Writes never go to the bank that is
// in use: intended.
constexpr Bank BankOf(Direction direction, bool secondIsActive) {
    return (direction == Direction::Read) == secondIsActive ? Bank::Second : Bank::First;
}

constexpr bool UsesOwnRegion(const PortRegionRules& rules, const PortIdentity& port) {
    return port.regionFlag != 0 && port.chip.Has(rules.ownCode);
}

// The port's region, or nothing when it has none.
constexpr std::optional<uint32_t> RegionOfPort(const PortRegionRules& rules,
                                               const PortIdentity& port, Bank bank) {
    if (UsesOwnRegion(rules, port)) {
        return port.regionCode;
    }
    const auto row = std::find_if(rules.rows.begin(), rules.rows.end(),
                                  [&](const auto& r) { return port.chip.Has(r.traits); });
    if (row == rules.rows.end()) {
        return std::nullopt;
    }
    const RegionSet& set = bank == Bank::Second ? row->secondBank : row->firstBank;
    const uint16_t code = set.byFunction[port.functionBits >> 5];
    return code != 0 ? std::optional<uint32_t>(code) : std::nullopt;
}

}  // namespace flash
