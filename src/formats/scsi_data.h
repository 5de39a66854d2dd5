// What SCSI devices return (SPC, SBC). Numbers are big-endian.
#pragma once

#include "formats/bytes.h"

namespace formats {

// Operation codes.
inline constexpr uint8_t kInquiry = 0x12;
inline constexpr uint8_t kReadCapacity10 = 0x25;
inline constexpr uint8_t kServiceActionIn16 = 0x9E;
inline constexpr uint8_t kReadCapacity16 = 0x10;  // the service action
inline constexpr uint8_t kReportLuns = 0xA0;

inline constexpr uint8_t kNoDevice = 0x7F;  // peripheral: qualifier 3 and type 1Fh, no LUN here

// Pages of vital product data.
inline constexpr uint8_t kSupportedPages = 0x00;
inline constexpr uint8_t kSerialPage = 0x80;
inline constexpr uint8_t kIdentificationPage = 0x83;

#pragma pack(push, 1)

struct FixedSense {
    uint8_t response;  // kCurrentSense; bit 7: the information is valid
    uint8_t segment;
    uint8_t key;  // low four bits
    uint8_t information[4];
    uint8_t additionalLength;  // of what follows
    uint8_t commandSpecific[4];
    uint8_t code;
    uint8_t qualifier;
};
static_assert(sizeof(FixedSense) == 14);
static_assert(offsetof(FixedSense, additionalLength) == 7);
static_assert(offsetof(FixedSense, code) == 12);
inline constexpr uint8_t kCurrentSense = 0x70;

struct DescriptorSense {
    uint8_t response;
    uint8_t key;
    uint8_t code;
    uint8_t qualifier;
    uint8_t reserved4[3];
    uint8_t additionalLength;
};
static_assert(sizeof(DescriptorSense) == 8);

struct DescriptorHead {
    uint8_t type;
    uint8_t length;  // of what follows
};
struct InformationDescriptor {
    DescriptorHead head;
    uint8_t valid;  // bit 7
    uint8_t reserved;
    uint8_t information[8];
};
static_assert(sizeof(InformationDescriptor) == 12);

struct InquiryData {
    uint8_t peripheral;  // qualifier in the high three bits, device type below
    uint8_t removable;   // bit 7
    uint8_t version;
    uint8_t responseFormat;
    uint8_t additionalLength;  // of what follows
    uint8_t flags5;
    uint8_t flags6;
    uint8_t flags7;
    char vendor[8];
    char product[16];
    char revision[4];
};
static_assert(sizeof(InquiryData) == 36);
static_assert(offsetof(InquiryData, vendor) == 8);

struct VpdPageHead {
    uint8_t peripheral;
    uint8_t page;
    uint8_t length[2];  // of what follows
};
static_assert(sizeof(VpdPageHead) == 4);

struct DesignatorHead {
    uint8_t codeSet;      // low four bits; protocol above
    uint8_t association;  // bit 7: the protocol is valid; association, type
    uint8_t reserved;
    uint8_t length;  // of what follows
};
static_assert(sizeof(DesignatorHead) == 4);
inline constexpr uint8_t kBinary = 1;  // code sets
inline constexpr uint8_t kAscii = 2;
inline constexpr uint8_t kT10Vendor = 1;  // types
inline constexpr uint8_t kNaa = 3;

struct Capacity10 {
    uint8_t lastBlock[4];  // all ones: ask for the long form
    uint8_t blockBytes[4];
};
static_assert(sizeof(Capacity10) == 8);

struct Capacity16 {
    uint8_t lastBlock[8];
    uint8_t blockBytes[4];
};
static_assert(sizeof(Capacity16) == 12);

struct LunListHead {
    uint8_t length[4];  // of what follows
    uint8_t reserved[4];
};
static_assert(sizeof(LunListHead) == 8);

struct LunAddress {
    uint8_t first[2];  // addressing method in the two highest bits
    uint8_t rest[6];
};
static_assert(sizeof(LunAddress) == 8);

#pragma pack(pop)

}  // namespace formats
