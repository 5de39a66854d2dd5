#include "flash_image.h"

#include <algorithm>
#include <memory>

#include "formats/version_numbers.h"
#include "model/bytes/bytes.h"
#include "model/storage/flash_content.h"

namespace vxemu {
namespace {

// Whether the version is so written that the image tells it: numbers of a byte, as many as the
// content has.
bool IsVersion(const std::string& text, uint32_t least, uint32_t most) {
    const formats::VersionNumbers version = formats::ParseVersion(text.c_str());
    std::string written;
    uint32_t count = 0;
    for (size_t at = 0; at <= text.size() && count < most; ++count) {
        const size_t dot = std::min(text.find('.', at), text.size());
        const std::string part = text.substr(at, dot - at);
        if (part.empty() || part.find_first_not_of("0123456789") != std::string::npos ||
            version.parts[count] > UINT8_MAX) {
            return false;
        }
        written += (count == 0 ? "" : ".") + part;
        at = dot + 1;
    }
    return count >= least && written == text;
}

}  // namespace

std::vector<uint8_t> MakeFlashImage(const Profile& profile, uint32_t scsiPort, uint32_t region,
                                    const std::string& version, std::string* error) {
    const PortProfile* port = profile.ports;
    while (port != profile.ports + profile.portCount && port->scsiPort != scsiPort) {
        ++port;
    }
    if (port == profile.ports + profile.portCount) {
        *error = "no such port";
        return {};
    }
    const auto changed = std::make_unique<Profile>(profile);
    AdapterProfile& adapter = changed->adapters[port->adapter];
    const FlashRegions regions = RegionsOf(properties::ChipOf(adapter.deviceId));
    const PlacedRegion placed = regions.WithCode(region);
    if (!placed) {
        *error = "the flash has no such region";
        return {};
    }
    const RegionContent content = placed.region->content;
    if (content == RegionContent::Firmware && IsVersion(version, 3, 4)) {
        CopyText(adapter.firmwareVersion, version.c_str());
    } else if ((content == RegionContent::Boot || content == RegionContent::RecoveryBoot) &&
               IsVersion(version, 2, 2) && version.size() < sizeof adapter.optionRomVersion) {
        CopyText(adapter.optionRomVersion, version.c_str());
    } else {
        *error = content == RegionContent::Firmware ? "versions of firmware are like 9.13.00"
                 : content == RegionContent::Boot || content == RegionContent::RecoveryBoot
                     ? "versions of boot code are like 3.62"
                     : "images are made of firmware and boot code";
        return {};
    }
    std::vector<uint8_t> image(placed.region->size);
    PutRegion({changed.get(), port->adapter}, *placed.region,
              ByteWindow(0, image.data(), placed.region->size));
    return image;
}

}  // namespace vxemu
