#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include "persist/blocks.h"
#include "persist/persist.h"
#include "persist/port_store.h"
#include "properties/generation.h"
#include "properties/port_database.h"
#include "properties/target_address.h"

namespace persist {
namespace {

HX_STATUS GetLive(uint32_t handle, HX_LUN_DATA& block) {
    properties::KnownDevices devices;
    if (const HX_STATUS status = devices.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::unique_ptr<LunDataV1> masks(new (std::nothrow) LunDataV1{});
    if (masks == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const std::span<const HX_DEVICE_RECORD> records = devices.Records();
    const auto count = static_cast<uint16_t>(std::min<size_t>(records.size(), HX_MAX_TARGETS));
    for (uint16_t i = 0; i < count; ++i) {
        const HX_DEVICE_RECORD& device = records[i];
        const HX_BUS_TARGET_LUN address{device.bus, device.target, device.lun};
        uint8_t mask[HX_LUN_MASK_SIZE] = {};
        const HX_STATUS status = GetLunMask(handle, &address, false, mask, sizeof mask);
        LunRecordV1& record = masks->records[i];
        if (status == HXMGT_SUCCESS) {
            std::memcpy(record.visible, mask, kVersion1Luns / 8);
        } else if (status != HXMGT_DEVICE_NOT_FOUND) {
            return status;
        }
        std::memcpy(record.nodeName, device.nodeName, kNameSize);
        std::memcpy(record.portName, device.portName, kNameSize);
    }
    block.version = kLunVersion2;
    block.count = count;
    for (uint16_t i = 0; i < count; ++i) {
        std::memcpy(block.records[i].nodeName, masks->records[i].nodeName, kNameSize);
        std::memcpy(block.records[i].portName, masks->records[i].portName, kNameSize);
        HideLuns(masks->records[i].visible, block.records[i].luns);
    }
    return HXMGT_SUCCESS;
}

DESTINATIONADDRESS AddressOf(const HX_DEVICE_RECORD& device) {
    DESTINATIONADDRESS address{};
    address.type = HX_ADDRESS_BUS_TARGET;
    const properties::BusAndTarget busAndTarget{device.bus, device.target};
    std::memcpy(address.address, &busAndTarget, sizeof busAndTarget);
    address.lun = device.lun;
    return address;
}

HX_STATUS SetLive(uint32_t handle, const HX_LUN_DATA& block) {
    properties::KnownDevices devices;
    if (const HX_STATUS status = devices.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::span<const HX_DEVICE_RECORD> known = devices.Records();
    for (const HX_LUN_RECORD& record : std::span(block.records).first(CountOf(block.count))) {
        const auto device =
            std::find_if(known.begin(), known.end(), [&](const HX_DEVICE_RECORD& candidate) {
                return SameName(candidate.portName, record.portName);
            });
        if (IsFree(record) || device == known.end()) {
            continue;
        }
        uint8_t mask[HX_LUN_MASK_SIZE];
        PackLuns(record.luns, mask);
        const DESTINATIONADDRESS address = AddressOf(*device);
        const HX_STATUS status = UpdateLunMaskFc(handle, &address, false, mask, sizeof mask);
        // A target that the driver does not know after all is passed over.
        if (status != HXMGT_SUCCESS && status != HXMGT_DEVICE_NOT_FOUND) {
            return status;
        }
    }
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetLunData(uint32_t handle, HX_LUN_DATA* block, bool fromRegistry) {
    if (const HX_STATUS status = properties::CheckQuery(handle, block); status != HXMGT_SUCCESS) {
        return status;
    }
    return fromRegistry
               ? PortStore::With(handle,
                                 [&](const PortStore& store) { return store.ReadLuns(*block); })
               : GetLive(handle, *block);
}

HX_STATUS SetLunData(uint32_t handle, HX_LUN_DATA* block, bool toRegistry) {
    if (const HX_STATUS status = properties::CheckQuery(handle, block); status != HXMGT_SUCCESS) {
        return status;
    }
    // The stored form follows the driver, whatever the caller had: intended.
    block->version = properties::TakesExtendedRequests(handle) ? kLunVersion2 : kLunVersion1;
    return toRegistry ? PortStore::With(
                            handle, [&](const PortStore& store) { return store.WriteLuns(*block); })
                      : SetLive(handle, *block);
}

}  // namespace persist
