// The mask of one target in a stored LUN block of either version. Free of platform headers.
#pragma once

#include <cstdint>
#include <span>

#include "persist/blocks.h"

namespace persist {

// Lengths that a stored block of the version may have: room for one record to room for all.
bool IsLunLength(uint32_t version, uint32_t length);

// Mask of the first record with the entry's second name. A block of version 2 gives all 256 bytes
// (mask has that room), LUN 0 being the LUN byte that the entry says; version 1 gives at most
// maskSize. False when there is no such record. version is 1 or 2.
bool ReadStoredMask(uint32_t version, std::span<const uint8_t> block, const HX_TARGET_ENTRY& entry,
                    uint8_t* mask, uint32_t maskSize);

// Names of the target whose mask is set; the record is the one that has the second name, or else
// the first.
struct MaskedTarget {
    uint8_t nodeName[kNameSize];
    uint8_t portName[kNameSize];
    bool bySecondName;
};

// Sets the mask of the target's record in the block, the first length bytes of room; adds a record
// behind the last one when there is none. Returns the block's length afterwards, longer by the
// record that was added, or 0 when none can be. room is as large as a block of the version can be,
// and zero behind the block.
uint32_t WriteStoredMask(uint32_t version, std::span<uint8_t> room, uint32_t length,
                         const MaskedTarget& target, std::span<const uint8_t> mask);

}  // namespace persist
