// Byte layouts of the requests that read and change bindings and LUN masks in the driver, both
// generations. The library sends them, the emulated adapters read them. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hxpersist.h"
#include "persist/blocks.h"
#include "properties/driver_replies.h"
#include "properties/port_database_records.h"
#include "properties/target_address.h"

namespace persist {

// Legacy query for the LUN list; the reply is a LunDataV1.
enum class LunSelector : uint32_t { LunList = 12 };

static_assert(sizeof(HX_TARGET_ENTRY) == sizeof(properties::LegacyTargetEntry));

#pragma pack(push, 1)

// LegacySetTarget and LegacyAddTarget: a target and the mask of its LUNs.
struct TargetAndMaskRequest {
    uint8_t reserved0[44];
    HX_TARGET_ENTRY entry;
    uint8_t nodeName[8];  // the entry's names again
    uint8_t portName[8];
    uint8_t reserved92[16];
    uint8_t visible[HX_LUN_MASK_SIZE];
};
static_assert(sizeof(TargetAndMaskRequest) == 364);
static_assert(offsetof(TargetAndMaskRequest, entry) == 44);
static_assert(offsetof(TargetAndMaskRequest, nodeName) == 76);
static_assert(offsetof(TargetAndMaskRequest, portName) == 84);
static_assert(offsetof(TargetAndMaskRequest, visible) == 108);

// A device as older drivers take it: a target entry that also carries state and flags.
struct LegacyDevice {
    uint16_t targetNumber;
    uint8_t bus;
    uint8_t target;
    uint32_t roleAndState;
    uint8_t bindingFlags;
    uint8_t reserved9;
    uint16_t portFlags;
    uint8_t portId[3];
    uint8_t reserved15;
    uint8_t nodeName[8];
    uint8_t portName[8];
};
static_assert(sizeof(LegacyDevice) == sizeof(HX_TARGET_ENTRY));
static_assert(offsetof(LegacyDevice, roleAndState) == 4);
static_assert(offsetof(LegacyDevice, bindingFlags) == 8);
static_assert(offsetof(LegacyDevice, portFlags) == 10);
static_assert(offsetof(LegacyDevice, portId) == 12);
static_assert(offsetof(LegacyDevice, nodeName) == 16);

// LegacySwapTargets.
struct LegacySwapRequest {
    uint8_t reserved0[12];
    LegacyDevice oldDevice;
    LegacyDevice newDevice;
};
static_assert(sizeof(LegacySwapRequest) == 76);
static_assert(offsetof(LegacySwapRequest, newDevice) == 44);

// AddTargetOld and AddTarget send one device, SwapTargetsOld and SwapTargets two.
struct SwapRequest {
    properties::PortDatabaseEntry oldDevice;
    properties::PortDatabaseEntry newDevice;
};
static_assert(sizeof(SwapRequest) == 344);

// TargetLunMask; in front of the mask also SetTargetLunMask.
struct BusAddressBlock {
    HX_BUS_TARGET_LUN address;
    uint8_t reserved6[10];
};
static_assert(sizeof(BusAddressBlock) == 16);

// TargetLunMaskFc; in front of the mask also SetTargetLunMaskFc.
using FcAddressBlock = properties::AddressBlock;

#pragma pack(pop)

}  // namespace persist
