#include "persist/stored_masks.h"

namespace persist {
namespace {

bool ShowsLun(std::span<const uint8_t> mask, uint32_t lun) {
    return (mask[lun / 8] & (1u << (lun % 8))) != 0;
}

// The mask of one record, in either form.
void ReadMask(const HX_LUN_RECORD& record, uint16_t base, uint8_t* mask, uint32_t) {
    std::memset(mask, 0, HX_LUN_MASK_SIZE);
    // A base can lead behind the record: what is not there is not visible.
    for (uint32_t lun = 0; base + lun < HX_MAX_LUNS; ++lun) {
        if ((record.luns[base + lun] & HX_LUN_MASKED) == 0) {
            mask[lun / 8] |= static_cast<uint8_t>(1u << (lun % 8));
        }
    }
}

void ReadMask(const LunRecordV1& record, uint16_t, uint8_t* mask, uint32_t maskSize) {
    std::copy_n(record.visible, std::min<size_t>(maskSize, sizeof record.visible), mask);
}

// mask has at most 256 bytes; LUNs that it does not reach stay as they are. The LUN base of the
// target entry is not applied: intended.
void WriteMask(std::span<const uint8_t> mask, HX_LUN_RECORD& record) {
    for (uint32_t lun = 0; lun < mask.size() * 8; ++lun) {
        const uint8_t others = record.luns[lun] & static_cast<uint8_t>(~HX_LUN_MASKED);
        record.luns[lun] =
            ShowsLun(mask, lun) ? others : static_cast<uint8_t>(others | HX_LUN_MASKED);
    }
}

void WriteMask(std::span<const uint8_t> mask, LunRecordV1& record) {
    std::copy(mask.begin(), mask.end(), record.visible);
}

void HideAll(HX_LUN_RECORD& record) {
    std::memset(record.luns, HX_LUN_MASKED, sizeof record.luns);
}

void HideAll(LunRecordV1& record) {
    std::memset(record.visible, 0, sizeof record.visible);
}

template <class Record>
bool Read(std::span<const uint8_t> block, const HX_TARGET_ENTRY& entry, uint8_t* mask,
          uint32_t maskSize) {
    for (const Record& record : RecordsIn<Record>(block)) {
        if (!IsFree(record) && SameName(record.portName, entry.portName)) {
            ReadMask(record, entry.lunBase, mask, maskSize);
            return true;
        }
    }
    return false;
}

template <class Record>
bool IsRecordOf(const MaskedTarget& target, const Record& record) {
    return !IsFree(record) && (target.bySecondName ? SameName(record.portName, target.portName)
                                                   : SameName(record.nodeName, target.nodeName));
}

template <class Record>
uint32_t Write(std::span<uint8_t> room, uint32_t length, const MaskedTarget& target,
               std::span<const uint8_t> mask) {
    const std::span<Record> records = RecordsIn<Record>(room.first(length));
    for (Record& record : records) {
        if (IsRecordOf(target, record)) {
            WriteMask(mask, record);
            return length;
        }
    }
    const uint32_t count = static_cast<uint32_t>(records.size()) + 1;
    if (count > HX_MAX_TARGETS) {
        return 0;
    }
    BlockHead& head = *reinterpret_cast<BlockHead*>(room.data());
    head.count = static_cast<uint16_t>(count);
    Record& added = RecordsIn<Record>(room).back();
    added = {};
    std::memcpy(added.nodeName, target.nodeName, kNameSize);
    std::memcpy(added.portName, target.portName, kNameSize);
    HideAll(added);
    WriteMask(mask, added);
    // Longer by one record than it was, as far as a block may be.
    const size_t grown = std::max<size_t>(BlockLength<Record>(count), length + sizeof(Record));
    return static_cast<uint32_t>(std::min(grown, room.size()));
}

}  // namespace

bool IsLunLength(uint32_t version, uint32_t length) {
    switch (version) {
        case kLunVersion1:
            return length >= BlockLength<LunRecordV1>(1) && length <= sizeof(LunDataV1);
        case kLunVersion2:
            return length >= BlockLength<HX_LUN_RECORD>(1) && length <= sizeof(HX_LUN_DATA);
        default:
            return false;
    }
}

bool ReadStoredMask(uint32_t version, std::span<const uint8_t> block, const HX_TARGET_ENTRY& entry,
                    uint8_t* mask, uint32_t maskSize) {
    return version == kLunVersion1 ? Read<LunRecordV1>(block, entry, mask, maskSize)
                                   : Read<HX_LUN_RECORD>(block, entry, mask, maskSize);
}

uint32_t WriteStoredMask(uint32_t version, std::span<uint8_t> room, uint32_t length,
                         const MaskedTarget& target, std::span<const uint8_t> mask) {
    const std::span<const uint8_t> used =
        mask.first(std::min<size_t>(mask.size(), HX_LUN_MASK_SIZE));
    return version == kLunVersion1 ? Write<LunRecordV1>(room, length, target, used)
                                   : Write<HX_LUN_RECORD>(room, length, target, used);
}

}  // namespace persist
