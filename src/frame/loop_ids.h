// FC-AL loop identifiers. Free of platform headers.
#pragma once

#include <cstdint>

namespace frame {

// The AL_PA of a loop ID below 127, else 0.
uint32_t AlPaOfLoopId(uint16_t loopId);

}  // namespace frame
