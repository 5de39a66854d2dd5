// One target of a mask request: how the caller named it and how the driver is told.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "persist/driver_records.h"
#include "properties/target_address.h"
#include "transport/ext_ioctl.h"

namespace persist {

struct MaskTarget {
    DESTINATIONADDRESS address{};
    const properties::AddressKind* kind = nullptr;  // null: the address names nothing

    // Requests of a driver of 7.05.03 and later.
    transport::Command read{};
    transport::Command write{};
    std::array<uint8_t, 16> block{};
    // Older drivers.
    uint32_t legacyWrite = 0;
    bool unknownHasNoName = false;  // a target that is not in the list has a second name of zeros
};

inline MaskTarget ByBusAndTarget(const HX_BUS_TARGET_LUN& address) {
    MaskTarget target;
    target.address.type = HX_ADDRESS_BUS_TARGET;
    const properties::BusAndTarget busAndTarget{address.bus, address.target};
    std::memcpy(target.address.address, &busAndTarget, sizeof busAndTarget);
    target.address.lun = address.lun;
    target.kind = properties::KindOf(target.address);
    target.read = transport::command::TargetLunMask;
    target.write = transport::command::SetTargetLunMask;
    target.block = std::bit_cast<std::array<uint8_t, 16>>(BusAddressBlock{address, {}});
    target.legacyWrite = transport::command::LegacyAddTarget;
    target.unknownHasNoName = true;
    return target;
}

inline MaskTarget ByAddress(const DESTINATIONADDRESS& address) {
    MaskTarget target;
    target.address = address;
    target.kind = properties::KindOf(address);
    target.read = transport::command::TargetLunMaskFc;
    target.write = transport::command::SetTargetLunMaskFc;
    if (const std::optional<FcAddressBlock> block = properties::BlockOf(address)) {
        target.block = std::bit_cast<std::array<uint8_t, 16>>(*block);
    }
    target.legacyWrite = transport::command::LegacySetTarget;
    return target;
}

inline bool Names(const MaskTarget& target, const HX_TARGET_ENTRY& entry) {
    return !IsFree(entry) && properties::Names(target.address, entry);
}

// Masks in the driver and in the store. mask has maskSize bytes, and 256 for ReadMaskFromStore.
HX_STATUS ReadLiveMask(uint32_t handle, const MaskTarget& target, uint8_t* mask, uint32_t maskSize);
HX_STATUS WriteLiveMask(uint32_t handle, const MaskTarget& target, const uint8_t* mask,
                        uint32_t maskSize);
HX_STATUS ReadMaskFromStore(uint32_t handle, const MaskTarget& target, uint8_t* mask,
                            uint32_t maskSize);
// The address names a node or a port.
HX_STATUS WriteMaskToStore(uint32_t handle, const MaskTarget& target, const uint8_t* mask,
                           uint32_t maskSize);

}  // namespace persist
