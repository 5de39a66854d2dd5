// The logical units of a SCSI port as its driver lists them to the system. Free of platform
// headers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace mapping {

#pragma pack(push, 1)

// What IOCTL_SCSI_GET_INQUIRY_DATA answers: the number of buses, a head for each, and units that
// lie wherever the offset before them says, counted from the start of the reply.
struct UnitListHead {
    uint8_t buses;
    uint8_t padding[3];
};
struct UnitListBus {
    uint8_t units;
    uint8_t initiator;
    uint8_t padding[2];
    uint32_t firstUnit;
};
static_assert(sizeof(UnitListBus) == 8);

struct ListedUnit {
    uint8_t bus;
    uint8_t target;
    uint8_t lun;
    uint8_t claimed;
    uint32_t inquiryLength;
    uint32_t nextUnit;  // 0: the last one
};
static_assert(sizeof(ListedUnit) == 12);

#pragma pack(pop)

// By the first byte of a unit's INQUIRY data: whether it may be a disk, tape or changer of the
// system. The low bits are the type (SPC), the high ones say whether the unit is connected.
constexpr bool MayBeDevice(uint8_t peripheral) {
    constexpr uint8_t kTypes[] = {0x00, 0x01, 0x04, 0x07, 0x08, 0x0E, 0x14};
    for (const uint8_t type : kTypes) {
        if (peripheral == type) {
            return true;
        }
    }
    return false;
}

// Visits every unit that may be a device. False when the reply is not whole: it tells nothing then.
template <typename Visit>
bool ForEachUnit(std::span<const uint8_t> reply, Visit visit) {
    const auto read = [reply](size_t offset, auto& record) {
        if (offset > reply.size() || reply.size() - offset < sizeof record) {
            return false;
        }
        std::memcpy(&record, reply.data() + offset, sizeof record);
        return true;
    };
    UnitListHead head;
    if (!read(0, head) || head.buses == 0) {
        return false;
    }
    size_t left = reply.size() / sizeof(ListedUnit);  // ends a chain that is a circle
    for (size_t at = 0; at < head.buses; ++at) {
        UnitListBus bus;
        if (!read(sizeof head + at * sizeof bus, bus)) {
            return false;
        }
        size_t offset = bus.units != 0 ? bus.firstUnit : 0;
        while (offset != 0) {
            ListedUnit unit;
            uint8_t peripheral = 0;
            if (left-- == 0 || !read(offset, unit) ||
                (unit.inquiryLength != 0 && !read(offset + sizeof unit, peripheral))) {
                return false;
            }
            if (MayBeDevice(peripheral)) {
                visit(unit);
            }
            offset = unit.nextUnit;
        }
    }
    return true;
}

}  // namespace mapping
