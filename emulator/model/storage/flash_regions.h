// The regions of each chip family's flash: one table per family, in the order of the flash. They
// follow each other without gaps, so that sizes are all there is to say.
#pragma once

#include <cstdint>

#include "properties/chip_families.h"

namespace vxemu {

enum class RegionContent : uint8_t {
    Blank,              // never written at the factory
    Boot,               // chain of BIOS, FCODE and EFI
    RecoveryBoot,       // chain of a BIOS alone
    Firmware,           // what the adapter runs
    RecoveryFirmware,   // what it runs when that is damaged
    AuxiliaryFirmware,  // of the management processor
    Parameters,         // signed data
    Nvram,
    Vpd,
};

struct FlashRegion {
    uint16_t code;
    uint8_t flags;  // HX_REGION_FLAG_...
    bool readOnly;
    RegionContent content;
    uint32_t size;  // bytes

    // Whether its image ends with a signature.
    bool IsSigned() const {
        return content != RegionContent::Blank && content != RegionContent::Nvram &&
               content != RegionContent::Vpd;
    }
};

// A region and its first byte in the flash.
struct PlacedRegion {
    const FlashRegion* region = nullptr;
    uint32_t start = 0;

    explicit operator bool() const { return region != nullptr; }
    uint32_t End() const { return start + region->size; }
};

struct FlashRegions {
    const FlashRegion* rows;
    uint32_t count;

    uint32_t Bytes() const;
    PlacedRegion WithCode(uint32_t code) const;
    PlacedRegion WithContent(RegionContent content) const;  // the first one

    // Calls visit(placed region) for each region that has bytes in the range.
    template <typename Visit>
    void ForEachIn(uint32_t offset, uint32_t length, Visit visit) const {
        uint32_t start = 0;
        for (uint32_t at = 0; at < count; start += rows[at++].size) {
            if (length != 0 && start < offset + length && offset < start + rows[at].size) {
                visit(PlacedRegion{&rows[at], start});
            }
        }
    }
    template <typename Visit>
    void ForEach(Visit visit) const {
        ForEachIn(0, Bytes(), visit);
    }
};

FlashRegions RegionsOf(const properties::Chip& chip);

inline constexpr uint32_t kMaxFlashRegions = 32;
inline constexpr uint32_t kSettingsBytes = 512;  // of an NVRAM or VPD region

}  // namespace vxemu
