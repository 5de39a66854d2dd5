#include "model/storage/flash_regions.h"

#include "hxflash.h"

namespace vxemu {
namespace {

using properties::ChipTrait;

constexpr uint32_t kKib = 1024;
constexpr uint8_t kSecure = HX_REGION_FLAG_SECURE;

constexpr FlashRegion Row(uint16_t code, RegionContent content, uint32_t size, uint8_t flags = 0) {
    return {code, flags, content == RegionContent::RecoveryFirmware, content, size};
}
constexpr FlashRegion Nvram(uint16_t code) {
    return Row(code, RegionContent::Nvram, kSettingsBytes);
}
constexpr FlashRegion Vpd(uint16_t code) {
    return Row(code, RegionContent::Vpd, kSettingsBytes);
}

// The whole flash of a chip without regions.
constexpr FlashRegion kClassic[] = {
    Row(255, RegionContent::Boot, 128 * kKib),
};

// Boot code stands at the start of the flash of every chip.
constexpr FlashRegion kLargeRom[] = {
    Row(7, RegionContent::Boot, 192 * kKib),
    Row(1, RegionContent::Firmware, 256 * kKib),
    Row(8, RegionContent::RecoveryFirmware, 32 * kKib),
    Vpd(20),
    Nvram(21),
    Vpd(22),
    Nvram(23),
    Row(254, RegionContent::Blank, 30 * kKib),
};

constexpr FlashRegion kLargeRomSecond[] = {
    Row(7, RegionContent::Boot, 192 * kKib),
    Row(17, RegionContent::Boot, 192 * kKib),
    Row(1, RegionContent::Firmware, 256 * kKib),
    Row(8, RegionContent::RecoveryFirmware, 32 * kKib),
    Vpd(20),
    Nvram(21),
    Vpd(22),
    Nvram(23),
    Row(254, RegionContent::Blank, 94 * kKib),
};

constexpr FlashRegion kFamilyC[] = {
    Row(7, RegionContent::Boot, 256 * kKib),
    Row(1, RegionContent::Firmware, 512 * kKib),
    Row(8, RegionContent::RecoveryFirmware, 64 * kKib),
    Row(9, RegionContent::AuxiliaryFirmware, 64 * kKib),
    Vpd(20),
    Nvram(170),
    Vpd(22),
    Nvram(172),
    Row(254, RegionContent::Blank, 126 * kKib),
};

constexpr FlashRegion kFamilyD[] = {
    Row(7, RegionContent::Boot, 256 * kKib),
    Row(1, RegionContent::Firmware, 512 * kKib),
    Row(8, RegionContent::RecoveryFirmware, 64 * kKib),
    Row(9, RegionContent::AuxiliaryFirmware, 64 * kKib),
    Vpd(129),
    Nvram(21),
    Nvram(23),
    Nvram(213),
    Nvram(215),
    Row(254, RegionContent::Blank, 125 * kKib + 512),
};

constexpr FlashRegion kSecureFlash[] = {
    Row(7, RegionContent::Boot, 256 * kKib),
    Row(1, RegionContent::Firmware, 512 * kKib, kSecure),
    Row(2, RegionContent::RecoveryBoot, 64 * kKib),
    Row(8, RegionContent::RecoveryFirmware, 128 * kKib),
    Row(9, RegionContent::AuxiliaryFirmware, 128 * kKib),
    Row(102, RegionContent::Parameters, 32 * kKib),
    Row(103, RegionContent::Parameters, 32 * kKib),
    Vpd(20),
    Nvram(21),
    Vpd(22),
    Nvram(23),
    Vpd(212),
    Nvram(213),
    Vpd(214),
    Nvram(215),
    Row(254, RegionContent::Blank, 124 * kKib),
};

constexpr FlashRegion kBanked[] = {
    Row(7, RegionContent::Boot, 256 * kKib),
    Row(1, RegionContent::Firmware, 512 * kKib, kSecure),
    Row(2, RegionContent::RecoveryBoot, 64 * kKib),
    Row(8, RegionContent::RecoveryFirmware, 128 * kKib),
    Row(9, RegionContent::AuxiliaryFirmware, 128 * kKib),
    Row(102, RegionContent::Parameters, 32 * kKib),
    Row(103, RegionContent::Parameters, 32 * kKib),
    Vpd(20),
    Nvram(21),
    Vpd(22),
    Nvram(23),
    Vpd(212),
    Nvram(213),
    Vpd(214),
    Nvram(215),
    Vpd(268),
    Nvram(269),
    Vpd(270),
    Nvram(271),
    Vpd(272),
    Nvram(273),
    Vpd(274),
    Nvram(275),
    Row(254, RegionContent::Blank, 120 * kKib),
    Row(252, RegionContent::Blank, 1024 * kKib),
    Row(253, RegionContent::Blank, 16384 * kKib),
};

// A chip's regions are those of the first row with its trait.
struct FamilyRow {
    ChipTrait trait;
    FlashRegions regions;
};

template <size_t count>
constexpr FlashRegions Table(const FlashRegion (&rows)[count]) {
    static_assert(count <= kMaxFlashRegions);
    return {rows, count};
}

constexpr FamilyRow kFamilies[] = {
    {ChipTrait::Banked, Table(kBanked)},
    {ChipTrait::SecureFlash, Table(kSecureFlash)},
    {ChipTrait::OwnVpdRegion, Table(kFamilyD)},
    {ChipTrait::RegionLayout, Table(kFamilyC)},
    {ChipTrait::LargeRomSecond, Table(kLargeRomSecond)},
    {ChipTrait::LargeRom, Table(kLargeRom)},
};

}  // namespace

uint32_t FlashRegions::Bytes() const {
    uint32_t bytes = 0;
    for (uint32_t at = 0; at < count; ++at) {
        bytes += rows[at].size;
    }
    return bytes;
}

PlacedRegion FlashRegions::WithCode(uint32_t code) const {
    PlacedRegion found;
    ForEach([&](const PlacedRegion& placed) {
        if (!found && placed.region->code == code) {
            found = placed;
        }
    });
    return found;
}

PlacedRegion FlashRegions::WithContent(RegionContent content) const {
    PlacedRegion found;
    ForEach([&](const PlacedRegion& placed) {
        if (!found && placed.region->content == content) {
            found = placed;
        }
    });
    return found;
}

FlashRegions RegionsOf(const properties::Chip& chip) {
    for (const FamilyRow& row : kFamilies) {
        if (chip.Has(row.trait)) {
            return row.regions;
        }
    }
    return Table(kClassic);
}

}  // namespace vxemu
