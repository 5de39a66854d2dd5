// Regions of the flash through the library beside the bare requests that this consists of.
#pragma once

#include <cstdint>
#include <vector>

#include "bare_request.h"
#include "measure.h"

namespace bench {

// Reads a region of 1 MiB and one of 16 MiB and writes back what was read. A size that no region
// has is left out with a word about it.
std::vector<Result> MeasureFlash(uint32_t handle, const Carrier& carrier, uint32_t samples);

}  // namespace bench
