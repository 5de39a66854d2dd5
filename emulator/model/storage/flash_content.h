// What a flash holds as delivered, made on demand from the profile: nothing of it is kept until it
// is written to.
#pragma once

#include <cstdint>

#include "formats/rom_image.h"
#include "formats/version_numbers.h"
#include "model/bytes/byte_window.h"
#include "model/profile/profile.h"
#include "model/storage/flash_regions.h"

namespace vxemu {

// An adapter of a profile, as it was when the adapters started.
struct FlashOrigin {
    const Profile* profile;
    uint32_t adapter;

    const AdapterProfile& Adapter() const { return profile->adapters[adapter]; }
};

// Fills a window of the whole flash.
void PutFlash(const FlashOrigin& origin, const FlashRegions& regions, ByteWindow window);

// Fills a window of one region.
void PutRegion(const FlashOrigin& origin, const FlashRegion& region, ByteWindow window);

struct FirmwareSpec {
    formats::VersionNumbers version;
    uint16_t deviceId;
    uint32_t attributes;
};

// Fills a window of a region whose first three quarters are firmware.
void PutFirmware(const FirmwareSpec& spec, uint32_t regionBytes, ByteWindow window);

// Version of a kind of boot code: major and minor.
formats::VersionNumbers BootVersion(const AdapterProfile& adapter, formats::RomCode code);

// Fills a window of a region that begins with boot code.
void PutBootCode(const FlashOrigin& origin, bool biosAlone, uint32_t regionBytes,
                 ByteWindow window);

}  // namespace vxemu
