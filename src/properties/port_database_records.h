// Byte layouts of the driver's port database and of its discovered ports and targets. The library
// reads them, the emulated adapters fill them. Free of platform headers; little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace properties {

#pragma pack(push, 1)

// PortDatabase.
struct PortDatabaseRequest {
    uint32_t type;
};
static_assert(sizeof(PortDatabaseRequest) == 4);

// One device of the database; alone, the payload that adds a target.
struct PortDatabaseEntry {
    uint8_t nodeName[8];
    uint8_t portName[8];
    uint8_t portId[3];  // domain, area, port
    uint8_t bindingFlags;
    uint16_t bus;
    uint16_t target;
    uint16_t lun;
    uint8_t reserved26[10];
    uint32_t roleAndState;
    uint16_t targetNumber;  // loop identifier
    uint16_t portFlags;
    char symbolicName[128];
};
static_assert(sizeof(PortDatabaseEntry) == 172);
static_assert(offsetof(PortDatabaseEntry, portName) == 8);
static_assert(offsetof(PortDatabaseEntry, portId) == 16);
static_assert(offsetof(PortDatabaseEntry, bindingFlags) == 19);
static_assert(offsetof(PortDatabaseEntry, bus) == 20);
static_assert(offsetof(PortDatabaseEntry, target) == 22);
static_assert(offsetof(PortDatabaseEntry, lun) == 24);
static_assert(offsetof(PortDatabaseEntry, roleAndState) == 36);
static_assert(offsetof(PortDatabaseEntry, targetNumber) == 40);
static_assert(offsetof(PortDatabaseEntry, portFlags) == 42);
static_assert(offsetof(PortDatabaseEntry, symbolicName) == 44);

struct PortDatabaseHeader {
    uint32_t type;
    uint32_t count;  // of all devices, those beyond the reply among them
};
static_assert(sizeof(PortDatabaseHeader) == 8);

inline constexpr uint32_t kPortDatabaseEntries = 1024;

struct PortDatabaseReply {
    PortDatabaseHeader header;
    PortDatabaseEntry entries[kPortDatabaseEntries];
};
static_assert(sizeof(PortDatabaseReply) == 176136);
static_assert(offsetof(PortDatabaseReply, entries) == 8);

// DiscoveredPort and DiscoveredTarget; the replies are the public records.
struct DiscoveredRequest {
    uint32_t index;
    uint8_t reserved4[12];
};
static_assert(sizeof(DiscoveredRequest) == 16);

#pragma pack(pop)

}  // namespace properties
