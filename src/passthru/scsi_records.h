// Byte layouts of SCSI pass-through requests, both driver generations. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "properties/target_address.h"

namespace passthru {

#pragma pack(push, 1)

// ScsiPassThrough; the data, out or in, follows.
struct ScsiRequest {
    uint8_t address[8];  // name, port identifier, or bus and target
    uint16_t addressType;
    uint16_t lun;
    uint32_t reserved12;
    uint8_t direction;
    uint8_t cdbLength;
    uint8_t cdb[78];
    uint8_t sense[256];  // returned
};
static_assert(sizeof(ScsiRequest) == 352);
static_assert(offsetof(ScsiRequest, addressType) == 8);
static_assert(offsetof(ScsiRequest, direction) == 16);
static_assert(offsetof(ScsiRequest, cdb) == 18);
static_assert(offsetof(ScsiRequest, sense) == 96);

using properties::DriverAddress;

enum class ScsiDirection : uint8_t { None = 0, In = 1, Out = 2 };

inline constexpr uint32_t kLegacyDataRoom = 4096;
inline constexpr uint32_t kLegacyCdbRoom = 16;
inline constexpr uint32_t kLegacyFlagsIn = 4096;
inline constexpr uint32_t kLegacyFlagsOut = 0x10000000;

// LegacyScsiPassThrough.
struct LegacyScsiRequest {
    uint16_t loopId;
    uint8_t lun;
    uint8_t constantFf;
    uint32_t flags;
    uint8_t scsiStatus;          // returned
    uint8_t senseKey;            // returned
    uint8_t additionalSense[2];  // returned: code and qualifier
    uint32_t cdbLength;
    uint8_t cdb[kLegacyCdbRoom];
    uint8_t data[kLegacyDataRoom];
};
static_assert(sizeof(LegacyScsiRequest) == 4128);
static_assert(offsetof(LegacyScsiRequest, scsiStatus) == 8);
static_assert(offsetof(LegacyScsiRequest, cdbLength) == 12);
static_assert(offsetof(LegacyScsiRequest, data) == 32);

#pragma pack(pop)

}  // namespace passthru
