// How a caller's address names a target: the one table of address types.
#pragma once

#include <cstdint>
#include <cstring>

#include "hxmgtapi.h"
#include "hxpersist.h"

namespace properties {

// Address types as the driver numbers them.
enum class DriverAddressType : uint16_t {
    NodeName = 1,
    PortName = 2,
    PortId = 3,
    BusAndTarget = 5
};

struct AddressKind {
    uint16_t type;  // HX_ADDRESS_...
    DriverAddressType driverType;
    uint8_t bytes;  // of the address that travel
    bool (*names)(const HX_SCSI_ADDRESS& address, const HX_TARGET_ENTRY& entry);
};

struct BusAndTarget {
    uint16_t bus;
    uint16_t target;
};

inline BusAndTarget BusAndTargetOf(const HX_SCSI_ADDRESS& address) {
    BusAndTarget value;
    std::memcpy(&value, address.address, sizeof value);
    return value;
}

inline constexpr AddressKind kAddressKinds[] = {
    {HX_ADDRESS_NODE_NAME, DriverAddressType::NodeName, 8,
     [](const HX_SCSI_ADDRESS& address, const HX_TARGET_ENTRY& entry) {
         return std::memcmp(address.address, entry.nodeName, sizeof entry.nodeName) == 0;
     }},
    {HX_ADDRESS_PORT_NAME, DriverAddressType::PortName, 8,
     [](const HX_SCSI_ADDRESS& address, const HX_TARGET_ENTRY& entry) {
         return std::memcmp(address.address, entry.portName, sizeof entry.portName) == 0;
     }},
    {HX_ADDRESS_PORT_ID, DriverAddressType::PortId, 3,
     [](const HX_SCSI_ADDRESS& address, const HX_TARGET_ENTRY& entry) {
         return std::memcmp(address.address, entry.portId, sizeof entry.portId) == 0;
     }},
    {HX_ADDRESS_BUS_TARGET, DriverAddressType::BusAndTarget, 4,
     [](const HX_SCSI_ADDRESS& address, const HX_TARGET_ENTRY& entry) {
         const BusAndTarget wanted = BusAndTargetOf(address);
         return wanted.bus == entry.bus && wanted.target == entry.target;
     }},
};

// Null for any other type: it names nothing.
inline const AddressKind* KindOf(const HX_SCSI_ADDRESS& address) {
    for (const AddressKind& kind : kAddressKinds) {
        if (kind.type == address.type) {
            return &kind;
        }
    }
    return nullptr;
}

}  // namespace properties
