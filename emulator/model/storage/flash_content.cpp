#include "model/storage/flash_content.h"

#include "flash/region_rules.h"
#include "model/storage/flash_signature.h"
#include "model/storage/nvram_content.h"
#include "model/storage/vpd_content.h"

namespace vxemu {
namespace {

constexpr uint8_t kErased = 0xFF;

// The first port of the adapter whose settings stand in the region, in either bank; null when no
// port is that function.
const PortProfile* OwnerOf(const FlashOrigin& origin, const FlashRegion& region) {
    const flash::PortRegionRules& rules =
        region.content == RegionContent::Nvram ? flash::kNvramRegions : flash::kVpdRegions;
    for (uint32_t at = 0; at < origin.profile->portCount; ++at) {
        const PortProfile& port = origin.profile->ports[at];
        if (port.adapter != origin.adapter) {
            continue;
        }
        const flash::PortIdentity identity = {properties::ChipOf(origin.Adapter().deviceId),
                                              static_cast<uint8_t>(port.pciFunction << 5),
                                              port.flashRegionFlag, port.flashRegionCode};
        for (const flash::Bank bank : {flash::Bank::First, flash::Bank::Second}) {
            if (flash::RegionOfPort(rules, identity, bank) == region.code) {
                return &port;
            }
        }
    }
    return nullptr;
}

void PutNvram(const FlashOrigin& origin, const FlashRegion& region, ByteWindow window) {
    const PortProfile* owner = OwnerOf(origin, region);
    if (owner == nullptr) {
        window.Fill(0, region.size, kErased);
        return;
    }
    uint8_t block[flash::kExtendedBlock];
    FillNvram(origin.Adapter(), *owner, flash::BlockKind::Extended, block);
    window.PutRecord(0, block);
}

void PutVpd(const FlashOrigin& origin, const FlashRegion& region, ByteWindow window) {
    if (OwnerOf(origin, region) == nullptr) {
        window.Fill(0, region.size, kErased);
        return;
    }
    uint8_t bytes[kSettingsBytes];
    FillVpd(origin.Adapter(), bytes, sizeof bytes);
    window.PutRecord(0, bytes);
}

// Versions of what is not the running firmware.
formats::VersionNumbers VersionOf(const FlashOrigin& origin, RegionContent content) {
    const formats::VersionNumbers running = formats::ParseVersion(origin.Adapter().firmwareVersion);
    switch (content) {
        case RegionContent::RecoveryFirmware:
            return {{running.parts[0], 0, 0, 0}};
        case RegionContent::AuxiliaryFirmware:
            return {{1, 20, running.parts[0], 0}};
        default:
            return running;
    }
}

// A region up to its signature.
void PutBody(const FlashOrigin& origin, const FlashRegion& region, ByteWindow window) {
    const AdapterProfile& adapter = origin.Adapter();
    switch (region.content) {
        case RegionContent::Boot:
        case RegionContent::RecoveryBoot:
            PutBootCode(origin, region.content == RegionContent::RecoveryBoot, region.size, window);
            break;
        case RegionContent::Firmware:
        case RegionContent::RecoveryFirmware:
        case RegionContent::AuxiliaryFirmware:
            PutFirmware(
                {VersionOf(origin, region.content), adapter.deviceId, adapter.firmwareAttributes},
                region.size, window);
            break;
        case RegionContent::Parameters:
            window.Pattern(0, region.size, region.code);
            break;
        case RegionContent::Nvram:
            PutNvram(origin, region, window);
            break;
        case RegionContent::Vpd:
            PutVpd(origin, region, window);
            break;
        case RegionContent::Blank:
            window.Fill(0, region.size, kErased);
            break;
    }
}

void PutSignature(const FlashOrigin& origin, const FlashRegion& region, ByteWindow window) {
    const uint32_t body = region.size - kSignatureBytes;
    if (window.Part(body, kSignatureBytes).Empty()) {
        return;
    }
    CodeSignature signature;
    std::memcpy(signature.mark, kSignatureMark, sizeof signature.mark);
    signature.deviceId = origin.Adapter().deviceId;
    signature.region = region.code;
    CodeHash hash(signature.deviceId, signature.region);
    ForEachPiece(
        body, [&](ByteWindow piece) { PutBody(origin, region, piece); },
        [&](const uint8_t* bytes, uint32_t length) { hash.Add(bytes, length); });
    signature.hash = hash.Value();
    window.PutRecord(body, signature);
}

}  // namespace

void PutRegion(const FlashOrigin& origin, const FlashRegion& region, ByteWindow window) {
    PutBody(origin, region, window);
    if (region.IsSigned()) {
        PutSignature(origin, region, window);
    }
}

void PutFlash(const FlashOrigin& origin, const FlashRegions& regions, ByteWindow window) {
    regions.ForEachIn(
        window.Begin(), window.End() - window.Begin(), [&](const PlacedRegion& placed) {
            PutRegion(origin, *placed.region, window.Part(placed.start, placed.region->size));
        });
}

}  // namespace vxemu
