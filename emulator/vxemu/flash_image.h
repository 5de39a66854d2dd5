// Images to update emulated adapters with: what the factory would have written, in another
// version. Free of platform headers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/profile/profile.h"

namespace vxemu {

// The image of a whole region for the adapter of a port. Boot code and firmware are made in that
// version. Empty, with a sentence in *error, when there is no such image.
std::vector<uint8_t> MakeFlashImage(const Profile& profile, uint32_t scsiPort, uint32_t region,
                                    const std::string& version, std::string* error);

}  // namespace vxemu
