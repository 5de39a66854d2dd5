#include "vxmgr/update/update_region.h"

namespace vxmgr {

PlaceWrite RegionWrite(const AdapterSession& session, const FlashLayout& layout,
                       const FlashRegion& region, std::vector<uint8_t> image,
                       std::vector<uint8_t> before) {
    const uint32_t handle = session.Handle();
    return {
        .what = "region " + std::to_string(region.code) + " (" + region.Name() + ")",
        .finishes = "the region",
        .image = std::move(image),
        .before = std::move(before),
        .lookAgain = "look at it again with `fw check`",
        .recheck = Recheck::WhenReadable,
        .read =
            [handle, &layout, region](std::vector<uint8_t>* bytes) {
                return ReadRegion(handle, layout, region, bytes);
            },
        .write =
            [handle, &layout, region](std::vector<uint8_t>& bytes) {
                return WriteRegion(handle, layout, region, bytes);
            },
        .failed = {{" was not written whole, and cannot be read back",
                    "read it with `flash read` once the adapter answers, and write it again before "
                    "the adapter is restarted"},
                   {" was not written: it holds what it held before",
                    "the adapter works as before; the cause is in the status"},
                   {" holds the whole image, but the adapter reported a failure",
                    "look at `fw show` before the adapter is restarted"},
                   {" holds neither its old contents nor the image",
                    "write the region again before the adapter is restarted"}},
        .accepted = {{" was written, but cannot be read back",
                      "read it with `flash read` and compare before the adapter is restarted"},
                     {" was not written, although the adapter reported success: it holds what it "
                      "held before",
                      "the adapter works as before"},
                     {},
                     {" holds neither its old contents nor the image, although the adapter "
                      "reported success",
                      "write the region again before the adapter is restarted"}},
        .mixedUpTo = "it is the image",
    };
}

std::string HarmOfPowerCut(const FlashRegion& region) {
    if (region.code != HX_REGION_FIRMWARE) {
        return RegionKindOf(region.code) == RegionKind::BootCode
                   ? "a power cut leaves half of the boot code: the host cannot boot through it "
                     "then"
                   : "a power cut leaves half of the region";
    }
    return IsStaged(region)
               ? "a power cut leaves half of the firmware, unless the adapter demands secure "
                 "updates: then it keeps the old one"
               : "a power cut leaves half of the firmware: the adapter starts without it then";
}

}  // namespace vxmgr
