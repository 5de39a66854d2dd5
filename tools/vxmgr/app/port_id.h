// A port identifier as the three bytes of a record, and as the number that people write.
#pragma once

#include "formats/bytes.h"

namespace vxmgr {

inline uint32_t PortIdOf(const uint8_t (&bytes)[3]) {
    return static_cast<uint32_t>(formats::BigEndian(bytes));
}

inline void SetPortId(uint32_t id, uint8_t (&bytes)[3]) {
    formats::PutBigEndian(id, bytes);
}

}  // namespace vxmgr
