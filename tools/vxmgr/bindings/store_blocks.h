// Looking into the stored blocks of a port, and editing them: the targets that are bound, and the
// LUN mask of each. Rows with a first name of zeros are free.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

inline std::span<HX_TARGET_ENTRY, HX_MAX_TARGETS> SlotsOf(HX_TARGET_DATA& block) {
    return block.entries;
}
inline std::span<const HX_TARGET_ENTRY, HX_MAX_TARGETS> SlotsOf(const HX_TARGET_DATA& block) {
    return block.entries;
}
inline std::span<HX_LUN_RECORD, HX_MAX_TARGETS> SlotsOf(HX_LUN_DATA& block) {
    return block.records;
}
inline std::span<const HX_LUN_RECORD, HX_MAX_TARGETS> SlotsOf(const HX_LUN_DATA& block) {
    return block.records;
}

// The rows that the block counts, free ones among them.
template <class Block>
auto RowsOf(Block& block) {
    return std::span(SlotsOf(block)).first(std::min<size_t>(block.count, HX_MAX_TARGETS));
}

template <class Row>
bool IsFree(const Row& row) {
    return Wwn::Of(row.nodeName).IsZero();
}

template <class Row>
bool IsNothing(const Row& row) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&row);
    return std::all_of(bytes, bytes + sizeof row, [](uint8_t byte) { return byte == 0; });
}

// The target's row, null when it has none.
template <class Block>
auto* FindRow(Block& block, const Wwn& portName) {
    const auto rows = RowsOf(block);
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) {
        return !IsFree(row) && Wwn::Of(row.portName) == portName;
    });
    return found == rows.end() ? nullptr : &*found;
}

// A row of zeros that the block counts from now on: the first free one, else one more; null when
// the block is full.
template <class Block>
auto* NewRow(Block& block) {
    const auto rows = RowsOf(block);
    auto* row = SlotsOf(block).data();
    row += std::find_if(rows.begin(), rows.end(), [](const auto& one) { return IsFree(one); }) -
           rows.begin();
    const bool full = row == SlotsOf(block).data() + HX_MAX_TARGETS;
    if (!full) {
        *row = {};
        const auto used = static_cast<uint16_t>(row - SlotsOf(block).data() + 1);
        block.count = std::max(block.count, used);
    }
    return full ? nullptr : row;
}

template <class Row>
void SetNames(Row& row, const Wwn& nodeName, const Wwn& portName) {
    std::memcpy(row.nodeName, nodeName.bytes.data(), sizeof row.nodeName);
    std::memcpy(row.portName, portName.bytes.data(), sizeof row.portName);
}

// What is left of a block when it is stored: rows that it does not count are not written.
std::unique_ptr<HX_LUN_DATA> AsStored(const HX_LUN_DATA& block);
inline std::unique_ptr<HX_TARGET_DATA> AsStored(const HX_TARGET_DATA& block) {
    return std::make_unique<HX_TARGET_DATA>(block);
}

// The stored form of drivers below 7.05.03 has names and the masks of LUNs 0 to 255, no more.
std::unique_ptr<HX_LUN_DATA> AsVersion1(const HX_LUN_DATA& block);

template <class Block>
bool SameBytes(const Block& a, const Block& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace vxmgr
