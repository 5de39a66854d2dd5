// Whole operations of the library beside the bare requests that they consist of.
#pragma once

#include <cstdint>
#include <vector>

#include "bare_request.h"
#include "hxmgtapi.h"
#include "measure.h"

namespace bench {

// An INQUIRY to the target, the standard API's adapter attributes, the port's counters, the remote
// ports, and fetching the raw firmware dump. What the driver does not answer is left out with a
// word about it.
std::vector<Result> MeasureOperations(uint32_t handle, const Carrier& carrier,
                                      const HX_SCSI_ADDRESS& target, uint32_t samples);

}  // namespace bench
