#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include "persist/blocks.h"
#include "persist/persist.h"
#include "persist/port_store.h"
#include "persist/target_requests.h"
#include "properties/generation.h"
#include "properties/legacy_targets.h"
#include "properties/port_database.h"
#include "transport/requests.h"

namespace persist {
namespace {

// The header word, reserved bytes and bus stay as the caller had them: intended.
HX_STATUS GetLive(uint32_t handle, HX_TARGET_DATA& block) {
    properties::KnownDevices devices;
    if (const HX_STATUS status = devices.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    const std::span<const HX_DEVICE_RECORD> records = devices.Records();
    block.count = static_cast<uint16_t>(std::min<size_t>(records.size(), HX_MAX_TARGETS));
    for (uint16_t i = 0; i < block.count; ++i) {
        const HX_DEVICE_RECORD& device = records[i];
        HX_TARGET_ENTRY& entry = block.entries[i];
        std::memcpy(entry.nodeName, device.nodeName, sizeof entry.nodeName);
        std::memcpy(entry.portName, device.portName, sizeof entry.portName);
        std::memcpy(entry.portId, device.portId, sizeof entry.portId);
        entry.bindingFlags = device.bindingFlags;
        entry.target = static_cast<uint8_t>(device.target);
        entry.targetNumber = device.targetNumber;
    }
    return HXMGT_SUCCESS;
}

// The visible ones of a target's LUNs, as the driver has them now.
HX_STATUS GetLiveMask(uint32_t handle, const HX_TARGET_ENTRY& target,
                      uint8_t (&mask)[HX_LUN_MASK_SIZE]) {
    const std::unique_ptr<HX_LUN_DATA> luns(new (std::nothrow) HX_LUN_DATA{});
    if (luns == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    if (const HX_STATUS status = GetLunData(handle, luns.get(), false); status != HXMGT_SUCCESS) {
        return status;
    }
    for (const HX_LUN_RECORD& record : std::span(luns->records).first(CountOf(luns->count))) {
        if (SameNames(record, target)) {
            PackLuns(record.luns, mask);
            return HXMGT_SUCCESS;
        }
    }
    return HXMGT_DEVICE_NOT_FOUND;
}

HX_STATUS Bind(uint32_t handle, const properties::LegacyTargets& known,
               const HX_TARGET_ENTRY& wanted) {
    const auto entries = known.Entries();
    const auto found = std::find_if(
        entries.begin(), entries.end(),
        [&](const properties::LegacyTargetEntry& entry) { return SameNames(entry, wanted); });
    if (found == entries.end()) {
        return HXMGT_DEVICE_NOT_FOUND;
    }
    auto entry = std::bit_cast<HX_TARGET_ENTRY>(*found);
    uint8_t mask[HX_LUN_MASK_SIZE];
    // Fetched again for each target: intended.
    if (const HX_STATUS status = GetLiveMask(handle, entry, mask); status != HXMGT_SUCCESS) {
        return status;
    }
    entry.bindingFlags = wanted.bindingFlags;
    return SendTargetAndMask(handle, transport::command::LegacySetTarget, entry, mask);
}

// Drivers of every generation take their bindings as plain requests.
HX_STATUS Apply(uint32_t handle, const HX_TARGET_DATA& block) {
    properties::LegacyTargets known;
    if (const HX_STATUS status = known.Fetch(handle); status != HXMGT_SUCCESS) {
        return status;
    }
    for (const HX_TARGET_ENTRY& wanted : std::span(block.entries).first(CountOf(block.count))) {
        if (IsFree(wanted)) {
            continue;
        }
        if (const HX_STATUS status = Bind(handle, known, wanted); status != HXMGT_SUCCESS) {
            return status;
        }
    }
    return HXMGT_SUCCESS;
}

}  // namespace

HX_STATUS GetTargetData(uint32_t handle, HX_TARGET_DATA* block, bool fromRegistry) {
    if (const HX_STATUS status = properties::CheckQuery(handle, block); status != HXMGT_SUCCESS) {
        return status;
    }
    return fromRegistry
               ? PortStore::With(handle,
                                 [&](const PortStore& store) { return store.ReadTargets(*block); })
               : GetLive(handle, *block);
}

HX_STATUS SetTargetData(uint32_t handle, const HX_TARGET_DATA* block, bool toRegistry) {
    if (const HX_STATUS status = properties::CheckQuery(handle, block); status != HXMGT_SUCCESS) {
        return status;
    }
    return toRegistry
               ? PortStore::With(handle,
                                 [&](const PortStore& store) { return store.WriteTargets(*block); })
               : Apply(handle, *block);
}

}  // namespace persist
