// The parts of the benchmark.
#pragma once

#include <cstdint>

namespace bench {

// The library's own cost: requests go to a driver inside the process that does next to nothing.
void RunAgainstNullDriver(uint32_t samples);

// The first adapter of the machine, or of the emulated ones; says so when there is none.
void RunAgainstRealDriver(uint32_t samples);

}  // namespace bench
