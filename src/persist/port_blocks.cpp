#include "persist/port_blocks.h"

namespace persist {
namespace {

bool IsStored(const PortValues& port, const char* length, const char* data) {
    return !port.IsAbsent(length) || !port.IsAbsent(data);
}

// In the value-name layout a block's own version word is not looked at.
bool HasVersion1Records(const PortValues& port, std::span<const uint8_t> block) {
    return port.KeyLayout() == Layout::Subkeys && VersionOf(block) == kLunVersion1;
}

bool FreeTargetEntries(const PortValues& port, const uint8_t* key) {
    if (!IsStored(port, value::kLength, value::kData)) {
        return true;
    }
    // Only a block of full length is written back as one.
    StoredBlock block;
    if (!block.Read(port, value::kLength, value::kData, sizeof(HX_TARGET_DATA)) ||
        block.Bytes().size() != sizeof(HX_TARGET_DATA)) {
        return false;
    }
    if (!FreeRecordsOf<HX_TARGET_ENTRY>(block.Bytes(), key)) {
        return true;
    }
    const HX_TARGET_DATA& data = *reinterpret_cast<const HX_TARGET_DATA*>(block.Bytes().data());
    return port.WriteBytes(value::kData, block.Bytes()) &&
           (port.KeyLayout() == Layout::ValueNames ||
            port.WriteNumber(value::kChecksum, TargetDataChecksum(data)));
}

bool FreeLunRecords(const PortValues& port, const uint8_t* key) {
    if (!IsStored(port, value::kLunLength, value::kLunData)) {
        return true;
    }
    StoredBlock block;
    if (!block.Read(port, value::kLunLength, value::kLunData, sizeof(HX_LUN_DATA))) {
        return false;
    }
    const bool any = HasVersion1Records(port, block.Bytes())
                         ? FreeRecordsOf<LunRecordV1>(block.Bytes(), key)
                         : FreeRecordsOf<HX_LUN_RECORD>(block.Bytes(), key);
    return !any || port.WriteBytes(value::kLunData, block.Bytes());
}

}  // namespace

bool StoredBlock::Read(const PortValues& port, const char* length, const char* data,
                       uint32_t longest) {
    const uint32_t size = port.ReadNumber(length);
    if (size == 0 || size > longest) {
        return false;
    }
    bytes_ = frame::ZeroedBytes(size);
    size_ = bytes_ != nullptr ? size : 0;
    return bytes_ != nullptr && port.ReadBytes(data, Bytes());
}

bool AddTargets(const PortValues& port, HX_WWN_LIST& list) {
    if (IsStored(port, value::kLength, value::kData)) {
        StoredBlock block;
        if (!block.Read(port, value::kLength, value::kData, sizeof(HX_TARGET_DATA))) {
            return false;
        }
        AddKeys<HX_TARGET_ENTRY>(block.Bytes(), list);
    }
    if (IsStored(port, value::kLunLength, value::kLunData)) {
        StoredBlock block;
        if (!block.Read(port, value::kLunLength, value::kLunData, sizeof(HX_LUN_DATA))) {
            return false;
        }
        if (HasVersion1Records(port, block.Bytes())) {
            AddKeys<LunRecordV1>(block.Bytes(), list);
        } else {
            AddKeys<HX_LUN_RECORD>(block.Bytes(), list);
        }
    }
    return true;
}

bool DeleteTarget(const PortValues& port, const uint8_t* key) {
    const bool entries = FreeTargetEntries(port, key);
    const bool records = FreeLunRecords(port, key);
    return entries && records;
}

bool DeleteValues(const PortValues& port) {
    constexpr const char* kPairs[][2] = {{value::kLength, value::kData},
                                         {value::kLunLength, value::kLunData}};
    bool deleted = true;
    for (const auto& [length, data] : kPairs) {
        if (IsStored(port, length, data)) {
            const bool first = port.Delete(length);
            const bool second = port.Delete(data);
            deleted = deleted && first && second;
        }
    }
    return deleted;
}

}  // namespace persist
