#include "persist/blocks.h"

#include "formats/crc32.h"

namespace persist {

uint16_t VersionOf(std::span<const uint8_t> block) {
    BlockHead head{};
    if (block.size() >= sizeof head) {
        std::memcpy(&head, block.data(), sizeof head);
    }
    return head.version;
}

uint32_t TargetDataChecksum(const HX_TARGET_DATA& block) {
    // From 0 and not inverted, unlike the usual one: intended.
    return formats::Crc32Remainder(0, formats::BytesOf(block));
}

void PackLuns(const uint8_t (&luns)[HX_MAX_LUNS], uint8_t (&mask)[HX_LUN_MASK_SIZE]) {
    std::memset(mask, 0, sizeof mask);
    for (uint32_t lun = 0; lun < kVersion1Luns; ++lun) {
        if ((luns[lun] & HX_LUN_MASKED) == 0) {
            mask[lun / 8] |= static_cast<uint8_t>(1u << (lun % 8));
        }
    }
}

void HideLuns(const uint8_t (&mask)[HX_LUN_MASK_SIZE], uint8_t (&luns)[HX_MAX_LUNS]) {
    for (uint32_t lun = 0; lun < kVersion1Luns; ++lun) {
        if ((mask[lun / 8] & (1u << (lun % 8))) == 0) {
            luns[lun] |= HX_LUN_MASKED;
        }
    }
}

uint32_t PackVersion1(const HX_LUN_DATA& block, LunDataV1& out) {
    const uint16_t count = CountOf(block.count);
    out = {};
    out.head.version = block.version;
    out.head.count = count;
    for (uint16_t i = 0; i < count; ++i) {
        const HX_LUN_RECORD& from = block.records[i];
        LunRecordV1& to = out.records[i];
        std::memcpy(to.nodeName, from.nodeName, kNameSize);
        std::memcpy(to.portName, from.portName, kNameSize);
        PackLuns(from.luns, to.visible);
    }
    return BlockLength<LunRecordV1>(count);
}

void ExpandVersion1(std::span<const uint8_t> stored, HX_LUN_DATA& out) {
    const std::span<const LunRecordV1> records = RecordsIn<LunRecordV1>(stored);
    std::memset(&out, 0, sizeof out);
    out.version = kLunVersion1;
    out.count = static_cast<uint16_t>(records.size());
    for (size_t i = 0; i < records.size(); ++i) {
        // Free records too: they are stored again as they came.
        std::memcpy(out.records[i].nodeName, records[i].nodeName, kNameSize);
        std::memcpy(out.records[i].portName, records[i].portName, kNameSize);
        HideLuns(records[i].visible, out.records[i].luns);
    }
}

void AddUniqueName(HX_WWN_LIST& list, const uint8_t* name) {
    constexpr uint8_t kFree[kNameSize] = {};
    uint8_t* free = nullptr;
    for (uint8_t(&slot)[kNameSize] : list.names) {
        if (SameName(slot, name)) {
            return;
        }
        if (free == nullptr && SameName(slot, kFree)) {
            free = slot;
        }
    }
    if (free != nullptr) {
        std::memcpy(free, name, kNameSize);
    }
}

}  // namespace persist
