#include "vxmgr/flash/flash_image_check.h"

#include <algorithm>

#include "vxmgr/flash/flash_regions.h"

namespace vxmgr {
namespace {

struct ContentRow {
    RegionKind region;
    ImageKind image;
    bool mayBeErased;
};
// A region of plain data takes anything.
constexpr ContentRow kContents[] = {
    {RegionKind::BootCode, ImageKind::BootCode, false},
    {RegionKind::Firmware, ImageKind::Firmware, false},
    {RegionKind::Nvram, ImageKind::Nvram, true},
    {RegionKind::Vpd, ImageKind::Vpd, true},
};

class Checker {
  public:
    Checker(const ImageInfo& image, const ImageTarget& target, const ImageLeave& leave)
        : image_(image), target_(target), leave_(leave) {}

    std::vector<Finding> Run() {
        const bool fits = CheckContent();
        CheckSize(fits);
        CheckWholeness();
        CheckChip();
        if (fits) {
            CheckVersion("runs", target_.running);
            CheckVersion("is stored", target_.stored);
        }
        return std::move(findings_);
    }

  private:
    void Refuse(std::string text, std::string hint = {}) {
        findings_.push_back({true, std::move(text), std::move(hint)});
    }
    void Weigh(std::string text) { findings_.push_back({false, std::move(text), {}}); }

    void CheckSize(bool mayPad) {
        if (image_.size == target_.bytes) {
            return;
        }
        Refuse("the image has " + std::to_string(image_.size) + " bytes, the region " +
                   std::to_string(target_.bytes),
               mayPad && image_.size < target_.bytes
                   ? "--pad fills it up with 0xff, for images that may be shorter than their region"
                   : "");
    }

    // Whether the image is what the region holds.
    bool CheckContent() {
        for (const ContentRow& row : kContents) {
            if (row.region != RegionKindOf(target_.region) || row.image == image_.kind ||
                (row.mayBeErased && image_.kind == ImageKind::Erased)) {
                continue;
            }
            Refuse("the file holds " + std::string(KindName(image_.kind)) + ", the region " +
                       KindName(row.image),
                   "`fw inspect` shows what a file is");
            return false;
        }
        return true;
    }

    void CheckWholeness() {
        if (!image_.problem.empty()) {
            Refuse("the image is damaged: " + image_.problem, "`fw inspect` shows its parts");
        }
    }

    bool IsFor(const std::vector<uint16_t>& chips) const {
        return std::ranges::find(chips, target_.deviceId) != chips.end();
    }

    void CheckChip() {
        const std::string chip = Hex(target_.deviceId, 4);
        if (image_.vendorId != 0 && image_.vendorId != target_.vendorId) {
            Refuse("the image is for adapters of vendor " + Hex(image_.vendorId, 4) +
                   ", this is one of " + Hex(target_.vendorId, 4));
        }
        if (!image_.chips.empty() && !IsFor(image_.chips)) {
            Refuse("the image is for " + ChipsText(image_.chips) + ", the adapter's chip is " +
                   chip);
        } else if (image_.chips.empty() && (image_.kind == ImageKind::Firmware)) {
            Weigh("the image does not tell which chip it is for");
        }
        for (const RomImage& rom : image_.boot.images) {
            if (IsFor(image_.chips) && !IsFor(rom.devices)) {
                Weigh("the " + CodeTypeName(rom.codeType) + " of the image is not for chip " +
                      chip);
            }
        }
    }

    void CheckVersion(const std::string& state, const std::string& other) {
        const auto order = CompareVersions(image_.version, other);
        if (!order || *order >= 0) {
            return;
        }
        const std::string text =
            "the image is older: " + image_.version + ", and " + other + " " + state;
        if (leave_.older) {
            Weigh(text);
        } else {
            Refuse(text, "--allow-older writes it all the same");
        }
    }

    const ImageInfo& image_;
    const ImageTarget& target_;
    const ImageLeave& leave_;
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> CheckImage(const ImageInfo& image, const ImageTarget& target,
                                const ImageLeave& leave) {
    return Checker(image, target, leave).Run();
}

const Finding* FirstRefusal(const std::vector<Finding>& findings) {
    const auto found = std::ranges::find_if(findings, &Finding::refuses);
    return found == findings.end() ? nullptr : &*found;
}

std::string ChipsText(const std::vector<uint16_t>& chips) {
    return TextsJoined(chips, " ", [](uint16_t chip) { return Hex(chip, 4); });
}

}  // namespace vxmgr
