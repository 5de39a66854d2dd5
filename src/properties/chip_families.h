// What each chip of the family can do: the one table of PCI device IDs and traits. Every question
// about a chip is a look-up here; nothing else compares device IDs. Free of platform headers.
#pragma once

#include <cstdint>
#include <string_view>

namespace properties {

inline constexpr uint16_t kVendorId = 0x1ED0;

enum class ChipTrait : uint32_t {
    None = 0,
    NoCtNoRnid = 1u << 0,      // oldest chip: no CT, no RNID
    Newer = 1u << 1,           // manufacturer and serial number may come as text
    FamilyA = 1u << 2,         // named boards in the standard API's adapter attributes
    LargeRom = 1u << 3,        // 256 KiB flash image, 512-byte NVRAM block
    LargeRomSecond = 1u << 4,  // the second kind of large ROM
    RegionLayout = 1u << 5,    // flash in numbered regions
    OffsetAligned = 1u << 6,   // byte offsets must be multiples of 256
    SecureFlash = 1u << 7,
    Banked = 1u << 8,             // two banks of NVRAM, VPD and firmware
    Newest = 1u << 9,             // D-port, SerDes, newer dump rendering
    NvramRegion170 = 1u << 10,    // NVRAM in regions 170 and 172
    OwnVpdRegion = 1u << 11,      // own VPD region when flagged, else region 129
    NvramRestartWait = 1u << 12,  // waits before the restart step of an NVRAM update
    OemBootVariant = 1u << 13,    // has an OEM board that skips boot-code preparation
    SecondOldest = 1u << 14,      // tested before the oldest in the adapter generation
};

constexpr ChipTrait operator|(ChipTrait a, ChipTrait b) {
    return static_cast<ChipTrait>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}

struct Chip {
    uint16_t deviceId;
    char family;         // 'P' to 'R' classic, 'A' to 'H' newer
    uint8_t dumpLayout;  // layout number of the rendered firmware dump, 0 = none
    ChipTrait traits;

    constexpr bool Has(ChipTrait trait) const {
        return (static_cast<uint32_t>(traits) & static_cast<uint32_t>(trait)) != 0;
    }
};

namespace chip_detail {
inline constexpr ChipTrait kA = ChipTrait::Newer | ChipTrait::FamilyA | ChipTrait::LargeRom;
inline constexpr ChipTrait kB =
    ChipTrait::Newer | ChipTrait::LargeRom | ChipTrait::LargeRomSecond | ChipTrait::OffsetAligned;
inline constexpr ChipTrait kRegion =
    ChipTrait::Newer | ChipTrait::RegionLayout | ChipTrait::OffsetAligned;
inline constexpr ChipTrait kC = kRegion | ChipTrait::NvramRegion170;
inline constexpr ChipTrait kD = kRegion | ChipTrait::OwnVpdRegion;
inline constexpr ChipTrait kE = kRegion | ChipTrait::SecureFlash | ChipTrait::Newest;
inline constexpr ChipTrait kBanked = kE | ChipTrait::Banked;
}  // namespace chip_detail

inline constexpr Chip kChips[] = {
    {0x7100, 'P', 0, ChipTrait::NoCtNoRnid},
    {0x7200, 'Q', 0, ChipTrait::SecondOldest},
    {0x7300, 'R', 0, ChipTrait::None},
    {0x7312, 'R', 0, ChipTrait::OemBootVariant},
    {0x7400, 'A', 36, chip_detail::kA},
    {0x7402, 'A', 36, chip_detail::kA},
    {0x7404, 'A', 36, chip_detail::kA},
    {0x7412, 'A', 36, chip_detail::kA},
    {0x7414, 'A', 36, chip_detail::kA},
    {0x7500, 'B', 37, chip_detail::kB},
    {0x7502, 'B', 37, chip_detail::kB},
    {0x7600, 'C', 128, chip_detail::kC},
    {0x7601, 'C', 131, chip_detail::kC | ChipTrait::NvramRestartWait},
    {0x7610, 'D', 0, chip_detail::kD},
    {0x7611, 'D', 0, chip_detail::kD},
    {0x7620, 'D', 0, chip_detail::kD | ChipTrait::Newest},
    {0x7700, 'E', 0, chip_detail::kE},
    {0x7702, 'E', 0, chip_detail::kE},
    {0x7704, 'E', 0, chip_detail::kE},
    {0x7720, 'F', 0, chip_detail::kBanked},
    {0x7740, 'G', 0, chip_detail::kBanked},
    {0x7742, 'G', 0, chip_detail::kBanked},
    {0x7744, 'G', 0, chip_detail::kBanked},
    {0x7746, 'G', 0, chip_detail::kBanked},
    {0x7760, 'H', 0, chip_detail::kE},
    {0x7780, 'H', 0, chip_detail::kE},
};

constexpr int CountChips(ChipTrait trait) {
    int count = 0;
    for (const Chip& chip : kChips) {
        count += chip.Has(trait) ? 1 : 0;
    }
    return count;
}
static_assert(CountChips(ChipTrait::Newer) == 22);
static_assert(CountChips(ChipTrait::LargeRom) == 7);
static_assert(CountChips(ChipTrait::LargeRomSecond) == 2);
static_assert(CountChips(ChipTrait::RegionLayout) == 15);
static_assert(CountChips(ChipTrait::OffsetAligned) == 17);
static_assert(CountChips(ChipTrait::SecureFlash) == 10);
static_assert(CountChips(ChipTrait::Banked) == 5);
static_assert(CountChips(ChipTrait::Newest) == 11);

// The chip of a PCI device ID. An ID outside the table is an unknown chip: it has no trait and is
// served as a classic one.
constexpr Chip ChipOf(uint16_t deviceId) {
    for (const Chip& chip : kChips) {
        if (chip.deviceId == deviceId) {
            return chip;
        }
    }
    return {deviceId, '?', 0, ChipTrait::None};
}

// Model text of a chip of the table: none of their IDs has a digit above 9, so each is a character.
struct ModelText {
    char digits[4];
    constexpr std::string_view View() const { return {digits, sizeof digits}; }
};
constexpr ModelText ModelTextOf(const Chip& chip) {
    return {{static_cast<char>('0' + (chip.deviceId >> 12)),
             static_cast<char>('0' + ((chip.deviceId >> 8) & 0xF)),
             static_cast<char>('0' + ((chip.deviceId >> 4) & 0xF)),
             static_cast<char>('0' + (chip.deviceId & 0xF))}};
}

// The chip whose model text (the device ID's hexadecimal digits, each as a decimal number) is the
// one given; an unknown chip when there is none.
constexpr Chip ChipOfModelText(std::string_view model) {
    for (const Chip& chip : kChips) {
        if (model == ModelTextOf(chip).View()) {
            return chip;
        }
    }
    return {0, '?', 0, ChipTrait::None};
}

// True when the text begins with the model text of a chip that has the trait. Texts of other chips
// may: a digit above 9 takes two characters.
constexpr bool BeginsAsModelOf(ChipTrait trait, std::string_view model) {
    for (const Chip& chip : kChips) {
        if (chip.Has(trait) && model.starts_with(ModelTextOf(chip).View())) {
            return true;
        }
    }
    return false;
}

}  // namespace properties
