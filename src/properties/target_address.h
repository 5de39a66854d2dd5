// How a caller's address names a target: the one table of address types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "hxmgtapi.h"
#include "hxpersist.h"

namespace properties {

// Address types as the driver numbers them.
enum class DriverAddress : uint16_t {
    None = 0,
    NodeName = 1,
    PortName = 2,
    PortId = 3,
    BusAndTarget = 5,
};

struct AddressKind {
    uint16_t type;  // HX_ADDRESS_...
    DriverAddress driverType;
    uint8_t bytes;  // of the address that travel
};

inline constexpr AddressKind kAddressKinds[] = {
    {HX_ADDRESS_NODE_NAME, DriverAddress::NodeName, 8},
    {HX_ADDRESS_PORT_NAME, DriverAddress::PortName, 8},
    {HX_ADDRESS_PORT_ID, DriverAddress::PortId, 3},
    {HX_ADDRESS_BUS_TARGET, DriverAddress::BusAndTarget, 4},
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

#pragma pack(push, 1)

// How an address travels in front of a request's own data.
struct AddressBlock {
    uint8_t address[8];   // name; port identifier; or 16-bit bus and target
    uint16_t driverType;  // DriverAddress
    uint16_t page;        // of requests that have more than one kind of answer, else 0
    uint8_t reserved12[4];
};
static_assert(sizeof(AddressBlock) == 16);
static_assert(offsetof(AddressBlock, driverType) == 8);
static_assert(offsetof(AddressBlock, page) == 10);

#pragma pack(pop)

// Nothing for an address of another type.
inline std::optional<AddressBlock> BlockOf(const HX_SCSI_ADDRESS& address) {
    const AddressKind* const kind = KindOf(address);
    if (kind == nullptr) {
        return std::nullopt;
    }
    AddressBlock block{};
    std::memcpy(block.address, address.address, kind->bytes);
    block.driverType = static_cast<uint16_t>(kind->driverType);
    return block;
}

struct BusAndTarget {
    uint16_t bus;
    uint16_t target;
};

inline BusAndTarget BusAndTargetOf(const HX_SCSI_ADDRESS& address) {
    BusAndTarget value;
    std::memcpy(&value, address.address, sizeof value);
    return value;
}

// Whether the address is that of a target in a list of the driver's or of the store's.
template <typename Entry>
bool Names(const HX_SCSI_ADDRESS& address, const Entry& entry) {
    const auto same = [&](const auto& field) {
        return std::memcmp(address.address, field, sizeof field) == 0;
    };
    switch (address.type) {
        case HX_ADDRESS_NODE_NAME:
            return same(entry.nodeName);
        case HX_ADDRESS_PORT_NAME:
            return same(entry.portName);
        case HX_ADDRESS_PORT_ID:
            return same(entry.portId);
        case HX_ADDRESS_BUS_TARGET: {
            const BusAndTarget wanted = BusAndTargetOf(address);
            return wanted.bus == entry.bus && wanted.target == entry.target;
        }
        default:
            return false;
    }
}

}  // namespace properties
