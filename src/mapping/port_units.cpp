#include "mapping/port_units.h"

#include <windows.h>
#include <winioctl.h>

#include <ntddscsi.h>

#include <algorithm>
#include <cstddef>

#include "frame/handle_table.h"
#include "frame/owned.h"

namespace mapping {
namespace {

static_assert(sizeof(UnitListBus) == sizeof(SCSI_BUS_DATA));
static_assert(offsetof(UnitListBus, firstUnit) == offsetof(SCSI_BUS_DATA, InquiryDataOffset));
static_assert(sizeof(UnitListHead) == offsetof(SCSI_ADAPTER_BUS_INFO, BusData));
static_assert(sizeof(ListedUnit) == offsetof(SCSI_INQUIRY_DATA, InquiryData));
static_assert(offsetof(ListedUnit, nextUnit) == offsetof(SCSI_INQUIRY_DATA, NextInquiryDataOffset));

constexpr DWORD kFirstRoom = 8 * 1024;
constexpr DWORD kMostRoom = 1024 * 1024;

}  // namespace

bool PortUnits::Fetch(uint32_t handle) {
    const HXMGT_API_HANDLE* const record = frame::OpenRecord(handle);
    if (record == nullptr) {
        return false;
    }
    for (DWORD room = kFirstRoom; room <= kMostRoom; room *= 4) {
        const frame::Bytes reply = frame::ZeroedBytes(room);
        if (reply == nullptr) {
            return false;
        }
        DWORD returned = 0;
        if (DeviceIoControl(record->hDevice, IOCTL_SCSI_GET_INQUIRY_DATA, nullptr, 0, reply.get(),
                            room, &returned, nullptr)) {
            const std::span<const uint8_t> list(reply.get(), std::min(returned, room));
            size_t count = 0;
            return ForEachUnit(list, [&](const ListedUnit&) { ++count; }) &&
                   units_.Reserve(count) &&
                   ForEachUnit(list, [&](const ListedUnit& unit) { units_.Add(unit); });
        }
        const DWORD error = GetLastError();
        if (error != ERROR_INSUFFICIENT_BUFFER && error != ERROR_MORE_DATA) {
            return false;
        }
    }
    return false;
}

template <typename Goes>
void PortUnits::Remove(Goes goes) {
    const std::span<ListedUnit> units = units_.Records();
    const auto end = std::remove_if(units.begin(), units.end(), goes);
    units_.Shorten(static_cast<size_t>(end - units.begin()));
}

void PortUnits::KeepAt(uint32_t bus, uint32_t target) {
    Remove([&](const ListedUnit& unit) { return unit.bus != bus || unit.target != target; });
}

void PortUnits::Found(uint32_t bus, uint32_t target, uint32_t lun) {
    Remove([&](const ListedUnit& unit) {
        return unit.bus == bus && unit.target == target && unit.lun == lun;
    });
}

}  // namespace mapping
