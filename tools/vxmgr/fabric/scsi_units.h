// Capacities and LUN lists (SBC, SPC).
#pragma once

#include "vxmgr/app/bytes.h"

namespace vxmgr {

struct Capacity {
    uint64_t lastBlock = 0;
    uint64_t blockBytes = 0;

    std::optional<uint64_t> Blocks() const;  // nothing when the count needs more than 64 bits
    std::optional<uint64_t> TotalBytes() const;
};

// READ CAPACITY (10) or (16) by the length; nothing when there are fewer bytes than that takes. The
// short form says 0xFFFFFFFF when the unit is too large for it.
std::optional<Capacity> DecodeCapacity10(Bytes data);
std::optional<Capacity> DecodeCapacity16(Bytes data);
bool NeedsLongForm(const Capacity& capacity);

extern const Fields<Capacity> kCapacityFields;

// The bytes that the whole list takes, its header with it.
uint64_t LunListLength(Bytes list);

// The rows of a REPORT LUNS list that are there.
struct LunEntry {
    std::optional<uint64_t> lun;  // nothing for extended addresses
    std::string method;
    std::string address;  // sixteen digits
};
std::vector<LunEntry> DecodeLuns(Bytes list);
extern const Fields<LunEntry> kLunEntryFields;

}  // namespace vxmgr
