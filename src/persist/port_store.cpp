#include "persist/port_store.h"

#include <cstring>
#include <memory>
#include <new>

#include "frame/discovery.h"
#include "frame/handle_table.h"
#include "persist/blocks.h"
#include "persist/port_blocks.h"
#include "persist/services.h"
#include "properties/properties.h"

namespace persist {
namespace {

constexpr uint32_t kTargetDataVersion = 1;

std::span<const uint8_t> BytesOf(const void* block, size_t size) {
    return {static_cast<const uint8_t*>(block), size};
}

HX_STATUS Written(bool written) {
    return written ? HXMGT_SUCCESS : HXMGT_REGISTRY_INVALID;
}

bool WriteTargetBlock(const PortValues& values, const HX_TARGET_DATA& block) {
    return values.WriteBytes(value::kData, BytesOf(&block, sizeof block)) &&
           values.WriteNumber(value::kLength, sizeof block);
}

bool WriteLunBlock(const PortValues& values, const void* block, uint32_t length) {
    return values.WriteBytes(value::kLunData, BytesOf(block, length)) &&
           values.WriteNumber(value::kLunLength, length);
}

}  // namespace

PortStore::PortStore(Layout layout, const char* service, const char* port)
    : values_(layout == Layout::Subkeys ? PortValues::InSubkey(service, port)
                                        : PortValues::InValueNames(service, kDeviceZero, port)),
      second_(layout == Layout::Subkeys ? values_
                                        : PortValues::InValueNames(service, kDevice, port)) {}

HX_STATUS PortStore::Find(uint32_t handle, Place& place) {
    const HXMGT_API_HANDLE* const record = frame::OpenRecord(handle);
    if (record == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    static_assert(sizeof place.service == frame::kDiscoveryTextSize);
    std::strcpy(place.service, frame::DriverNameOfPort(record->dwScsiPort));
    if (place.service[0] == 0) {
        return HXMGT_REGISTRY_INVALID;
    }
    HX_PORT_PROPERTY port{};
    if (const HX_STATUS status = properties::GetPortProperty(handle, &port);
        status != HXMGT_SUCCESS) {
        return status;
    }
    frame::WriteWwn(port.portName, place.port);
    place.layout = frame::GetDriverType(handle) == 1 ? Layout::ValueNames : Layout::Subkeys;
    return HXMGT_SUCCESS;
}

HX_STATUS PortStore::WriteTargets(const HX_TARGET_DATA& block) const {
    if (values_.KeyLayout() == Layout::ValueNames) {
        return Written(WriteTargetBlock(values_, block) && WriteTargetBlock(second_, block));
    }
    // The checksum comes after the data: what is half written is refused by the next read.
    return Written(WriteTargetBlock(values_, block) &&
                   values_.WriteNumber(value::kChecksum, TargetDataChecksum(block)) &&
                   values_.WriteNumber(value::kVersion, kTargetDataVersion));
}

HX_STATUS PortStore::ReadTargets(HX_TARGET_DATA& block) const {
    StoredBlock stored;
    if (!stored.Read(values_, value::kLength, value::kData, sizeof block)) {
        return HXMGT_REGISTRY_INVALID;
    }
    // A missing checksum counts as 0, the checksum of a block of zeros.
    if (values_.KeyLayout() == Layout::Subkeys &&
        (stored.Bytes().size() != sizeof block ||
         values_.ReadNumber(value::kVersion) != kTargetDataVersion ||
         values_.ReadNumber(value::kChecksum) !=
             TargetDataChecksum(*reinterpret_cast<const HX_TARGET_DATA*>(stored.Bytes().data())))) {
        return HXMGT_REGISTRY_INVALID;
    }
    std::memcpy(&block, stored.Bytes().data(), stored.Bytes().size());
    return HXMGT_SUCCESS;
}

HX_STATUS PortStore::WriteLuns(const HX_LUN_DATA& block) const {
    if (block.count > HX_MAX_TARGETS) {
        // The stored head must not promise records that are not there.
        const std::unique_ptr<HX_LUN_DATA> bounded(new (std::nothrow) HX_LUN_DATA(block));
        if (bounded == nullptr) {
            return HXMGT_OUT_OF_MEMORY;
        }
        bounded->count = HX_MAX_TARGETS;
        return WriteLuns(*bounded);
    }
    const uint32_t length = BlockLength<HX_LUN_RECORD>(block.count);
    if (values_.KeyLayout() == Layout::ValueNames) {
        // Always the version 2 form, whatever the version word says: intended.
        return Written(WriteLunBlock(values_, &block, length) &&
                       WriteLunBlock(second_, &block, length));
    }
    switch (block.version) {
        case kLunVersion1:
            return WriteLunsAsVersion1(block);
        case kLunVersion2:
            return Written(WriteLunBlock(values_, &block, length) &&
                           values_.WriteNumber(value::kLunVersion, kLunVersion2));
        default:
            return HXMGT_PERSISTENT_STORAGE_ERROR;
    }
}

HX_STATUS PortStore::WriteLunsAsVersion1(const HX_LUN_DATA& block) const {
    const std::unique_ptr<LunDataV1> packed(new (std::nothrow) LunDataV1);
    if (packed == nullptr) {
        return HXMGT_OUT_OF_MEMORY;
    }
    const uint32_t length = PackVersion1(block, *packed);
    return Written(WriteLunBlock(values_, packed.get(), length) &&
                   values_.WriteNumber(value::kLunVersion, kLunVersion1));
}

HX_STATUS PortStore::ReadLuns(HX_LUN_DATA& block) const {
    StoredBlock stored;
    if (!stored.Read(values_, value::kLunLength, value::kLunData, sizeof block)) {
        return HXMGT_REGISTRY_INVALID;
    }
    // "LunVersion" is not read: the block's own version word decides.
    if (values_.KeyLayout() == Layout::Subkeys && VersionOf(stored.Bytes()) == kLunVersion1) {
        ExpandVersion1(stored.Bytes(), block);
    } else {
        std::memcpy(&block, stored.Bytes().data(), stored.Bytes().size());
    }
    return HXMGT_SUCCESS;
}

}  // namespace persist
