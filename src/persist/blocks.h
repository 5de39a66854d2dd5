// Target and LUN data blocks as they are stored and as callers hold them: reading, converting and
// editing. Stored bytes are foreign: their counts are held against the bytes at hand. Free of
// platform headers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

#include "hxmgtapi.h"
#include "hxpersist.h"

namespace persist {

inline constexpr uint16_t kLunVersion1 = 1;
inline constexpr uint16_t kLunVersion2 = 2;
inline constexpr uint32_t kVersion1Luns = 256;
inline constexpr size_t kNameSize = 8;

static_assert(sizeof(HX_TARGET_ENTRY) == 32);
static_assert(offsetof(HX_TARGET_ENTRY, bus) == 2);
static_assert(offsetof(HX_TARGET_ENTRY, target) == 3);
static_assert(offsetof(HX_TARGET_ENTRY, bindingFlags) == 8);
static_assert(offsetof(HX_TARGET_ENTRY, lunBase) == 10);
static_assert(offsetof(HX_TARGET_ENTRY, portId) == 12);
static_assert(offsetof(HX_TARGET_ENTRY, nodeName) == 16);
static_assert(offsetof(HX_TARGET_ENTRY, portName) == 24);
static_assert(sizeof(HX_TARGET_DATA) == 8224);
static_assert(offsetof(HX_TARGET_DATA, count) == 2);
static_assert(offsetof(HX_TARGET_DATA, entries) == 32);
static_assert(sizeof(HX_LUN_RECORD) == 2080);
static_assert(offsetof(HX_LUN_RECORD, luns) == 32);
static_assert(sizeof(HX_LUN_DATA) == 532512);
static_assert(offsetof(HX_LUN_DATA, count) == 2);
static_assert(offsetof(HX_LUN_DATA, records) == 32);
static_assert(sizeof(HX_WWN_LIST) == 2048);

#pragma pack(push, 1)

// Head of every block, stored or not.
struct BlockHead {
    uint16_t version;  // of target data a word that is carried unchanged
    uint16_t count;
    uint8_t reserved4[28];
};
static_assert(sizeof(BlockHead) == 32);

// LUN record of version 1: as stored, and as older drivers give it.
struct LunRecordV1 {
    uint8_t nodeName[8];
    uint8_t portName[8];
    uint8_t reserved16[16];
    uint8_t visible[HX_LUN_MASK_SIZE];  // a mask; what is above LUN 255 has no meaning and is zero
};
static_assert(sizeof(LunRecordV1) == 288);
static_assert(offsetof(LunRecordV1, visible) == 32);

struct LunDataV1 {
    BlockHead head;
    LunRecordV1 records[HX_MAX_TARGETS];
};
static_assert(sizeof(LunDataV1) == 73760);

#pragma pack(pop)

inline bool SameName(const uint8_t* a, const uint8_t* b) {
    return std::memcmp(a, b, kNameSize) == 0;
}

// Entries and records with a first name of zeros are free: every look-up passes over them.
template <class Record>
bool IsFree(const Record& record) {
    constexpr uint8_t kNone[kNameSize] = {};
    return SameName(record.nodeName, kNone);
}

template <class First, class Second>
bool SameNames(const First& a, const Second& b) {
    return SameName(a.nodeName, b.nodeName) && SameName(a.portName, b.portName);
}

// Records that count as many as the head says, at most 256 and no more than the block carries.
// Bytes is uint8_t or const uint8_t; a block without a whole head has none.
template <class Record, class Bytes>
auto RecordsIn(std::span<Bytes> block) {
    using Result = std::conditional_t<std::is_const_v<Bytes>, const Record, Record>;
    BlockHead head{};
    if (block.size() < sizeof head) {
        return std::span<Result>();
    }
    std::memcpy(&head, block.data(), sizeof head);
    const std::span<Bytes> rest = block.subspan(sizeof head);
    const size_t count =
        std::min<size_t>({head.count, size_t{HX_MAX_TARGETS}, rest.size() / sizeof(Record)});
    return std::span<Result>(reinterpret_cast<Result*>(rest.data()), count);
}

// The version word of a block, 0 when it has none.
uint16_t VersionOf(std::span<const uint8_t> block);

// CRC-32 of the reflected polynomial, starting at 0 and without a final inversion: an all-zero
// block has the checksum 0.
uint32_t TargetDataChecksum(const HX_TARGET_DATA& block);

// LUNs 0 to 255 of LUN bytes as a mask, whose other bytes are cleared.
void PackLuns(const uint8_t (&luns)[HX_MAX_LUNS], uint8_t (&mask)[HX_LUN_MASK_SIZE]);

// Hides those of LUNs 0 to 255 that the mask does not show. Bits are only set.
void HideLuns(const uint8_t (&mask)[HX_LUN_MASK_SIZE], uint8_t (&luns)[HX_MAX_LUNS]);

// The whole block in version 1 form; returns its length.
uint32_t PackVersion1(const HX_LUN_DATA& block, LunDataV1& out);

// A stored version 1 block in the form that callers hold.
void ExpandVersion1(std::span<const uint8_t> stored, HX_LUN_DATA& out);

// Length of a block of that many records.
template <class Record>
constexpr uint32_t BlockLength(uint32_t count) {
    return static_cast<uint32_t>(sizeof(BlockHead) + count * sizeof(Record));
}

// Number of records that a caller's count stands for.
constexpr uint16_t CountOf(uint16_t count) {
    return std::min<uint16_t>(count, HX_MAX_TARGETS);
}

// Adds a name that the list does not hold yet to its first free slot. A full list stays as it is.
void AddUniqueName(HX_WWN_LIST& list, const uint8_t* name);

// Adds the keys of a block's records.
template <class Record>
void AddKeys(std::span<const uint8_t> block, HX_WWN_LIST& list) {
    for (const Record& record : RecordsIn<Record>(block)) {
        if (!IsFree(record)) {
            AddUniqueName(list, record.nodeName);
        }
    }
}

// Frees the records of a key and leaves holes: nothing moves up and the count stays. Returns
// whether there was one.
template <class Record>
bool FreeRecordsOf(std::span<uint8_t> block, const uint8_t* key) {
    bool any = false;
    for (Record& record : RecordsIn<Record>(block)) {
        if (!IsFree(record) && SameName(record.nodeName, key)) {
            record = {};
            any = true;
        }
    }
    return any;
}

}  // namespace persist
