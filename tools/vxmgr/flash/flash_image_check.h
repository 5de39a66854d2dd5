// Whether an image may be written to a region of an adapter.
#pragma once

#include "vxmgr/flash/flash_image.h"

namespace vxmgr {

// Where the image would go.
struct ImageTarget {
    uint32_t region = 0;
    size_t bytes = 0;  // of the region
    uint16_t vendorId = 0;
    uint16_t deviceId = 0;
    std::string running;  // version in use; empty: none, or not known
    std::string stored;   // version in the region; the same
};

// What the user has agreed to beforehand.
struct ImageLeave {
    bool older = false;
};

struct Finding {
    bool refuses = false;  // else it is something to weigh
    std::string text;
    std::string hint;
};

std::vector<Finding> CheckImage(const ImageInfo& image, const ImageTarget& target,
                                const ImageLeave& leave);

// Null when nothing refuses.
const Finding* FirstRefusal(const std::vector<Finding>& findings);

std::string ChipsText(const std::vector<uint16_t>& chips);  // "0x7740 0x7742"

}  // namespace vxmgr
