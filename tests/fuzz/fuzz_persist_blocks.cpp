// Stored target and LUN blocks: whatever the bytes are, no record beyond them is touched, version 1
// survives a round trip, what is deleted is gone, and a mask that is set is read again.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "persist/blocks.h"
#include "persist/store_names.h"
#include "persist/stored_masks.h"
#include "require.h"

namespace {

using persist::LunDataV1;
using persist::LunRecordV1;

template <class Record>
void Delete(std::vector<uint8_t> block, const uint8_t* key) {
    const std::vector<uint8_t> before = block;
    const bool any = persist::FreeRecordsOf<Record>(std::span(block), key);
    Require(any == (before != block));
    for (const Record& record : persist::RecordsIn<Record>(std::span<const uint8_t>(block))) {
        Require(persist::IsFree(record) || !persist::SameName(record.nodeName, key));
    }
    HX_WWN_LIST list = {};
    persist::AddKeys<Record>(std::span<const uint8_t>(block), list);
    for (const auto& name : list.names) {
        constexpr uint8_t kNone[8] = {};
        Require(persist::SameName(name, kNone) || !persist::SameName(name, key));
    }
}

void RoundTripVersion1(const std::vector<uint8_t>& stored) {
    const auto block = std::make_unique<HX_LUN_DATA>();
    persist::ExpandVersion1(stored, *block);
    const auto packed = std::make_unique<LunDataV1>();
    Require(persist::PackVersion1(*block, *packed) <= sizeof *packed);
    const auto again = std::make_unique<HX_LUN_DATA>();
    persist::ExpandVersion1({reinterpret_cast<const uint8_t*>(packed.get()), sizeof *packed},
                            *again);
    Require(std::memcmp(block.get(), again.get(), sizeof *block) == 0);
}

void SetAndReadMask(uint32_t version, const std::vector<uint8_t>& stored, const uint8_t* names) {
    if (!persist::IsLunLength(version, static_cast<uint32_t>(stored.size()))) {
        return;
    }
    std::vector<uint8_t> room(version == 1 ? sizeof(LunDataV1) : sizeof(HX_LUN_DATA));
    std::copy(stored.begin(), stored.end(), room.begin());
    persist::MaskedTarget target = {};
    std::memcpy(target.nodeName, names, 8);
    std::memcpy(target.portName, names + 8, 8);
    target.bySecondName = true;
    std::vector<uint8_t> mask(HX_LUN_MASK_SIZE);
    for (size_t i = 0; i < mask.size(); ++i) {
        mask[i] = static_cast<uint8_t>(names[i % 16] + i);
    }
    const uint32_t length =
        persist::WriteStoredMask(version, room, static_cast<uint32_t>(stored.size()), target, mask);
    if (length == 0 || persist::IsFree(target)) {
        return;
    }
    Require(length <= room.size());
    HX_TARGET_ENTRY entry = {};
    std::memcpy(entry.portName, names + 8, 8);
    std::vector<uint8_t> seen(HX_LUN_MASK_SIZE);
    Require(persist::ReadStoredMask(version, std::span(room).first(length), entry, seen.data(),
                                    HX_LUN_MASK_SIZE));
    Require(seen == mask);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 16) {
        return 0;
    }
    const std::vector<uint8_t> block(data + 16, data + size);
    Delete<HX_TARGET_ENTRY>(block, data);
    Delete<LunRecordV1>(block, data);
    Delete<HX_LUN_RECORD>(block, data);
    RoundTripVersion1(block);
    SetAndReadMask(1, block, data);
    SetAndReadMask(2, block, data);

    const std::string name(reinterpret_cast<const char*>(data), size);
    Require(!persist::ParseWwn(name.c_str()).has_value() || persist::HasWwnForm(name));
    return 0;
}
