// Vital product data as PCI Local Bus 2.2 has it: resource tags, and keywords within them.
#pragma once

#include <optional>

#include "formats/bytes.h"

namespace formats {

#pragma pack(push, 1)
// A large tag has its length in the two bytes behind it, a small one in its low three bits.
struct LargeTag {
    uint8_t tag;
    uint8_t length[2];  // low byte first
};
static_assert(sizeof(LargeTag) == 3);
static_assert(offsetof(LargeTag, length) == 1);

struct KeywordHead {
    char name[2];
    uint8_t length;
};
static_assert(sizeof(KeywordHead) == 3);
static_assert(offsetof(KeywordHead, length) == 2);
#pragma pack(pop)

inline constexpr uint8_t kLargeTag = 0x80;
inline constexpr uint8_t kIdentifierTag = 0x82;
inline constexpr uint8_t kReadOnlyTag = 0x90;
inline constexpr uint8_t kWritableTag = 0x91;
inline constexpr uint8_t kEndTag = 0x78;
inline constexpr uint8_t kSmallLength = 0x07;
inline constexpr char kChecksumKeyword[] = "RV";  // of the read-only section

// Contents of a tag or keyword.
struct VpdPart {
    size_t data;
    size_t length;

    size_t End() const { return data + length; }
};

// The tag at an offset within the bytes; nothing when it is longer than they are.
std::optional<VpdPart> TagAt(Bytes bytes, size_t at);

// The keyword at an offset, in a section that ends at end; nothing when it is longer than that.
std::optional<VpdPart> KeywordAt(Bytes bytes, size_t at, size_t end);

// Whether a checksum keyword holds: all bytes up to the first one of its data add up to 0.
bool ChecksumHolds(Bytes bytes, const VpdPart& checksum);

}  // namespace formats
