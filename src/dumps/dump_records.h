// Byte layouts of dump requests: a header, then the data. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace dumps {

inline constexpr uint32_t kPieceBytes = 32768;

#pragma pack(push, 1)

// RawFirmwareDump and RawMpiDump; also the head of the caller's buffer.
struct RawHeader {
    uint32_t length;  // asked and delivered; whole size in the answer to the size query
    uint32_t offset;
    uint8_t attributes[40];
    uint8_t reserved48[24];
};
static_assert(sizeof(RawHeader) == 72);
static_assert(offsetof(RawHeader, attributes) == 8);

struct MctpHeader {
    uint32_t length;
    uint32_t offset;
    uint8_t reserved8[6];
};
static_assert(sizeof(MctpHeader) == 14);

struct MiniHeader {
    uint32_t length;
    uint32_t offset;
    uint8_t part;  // 1 or 2
    uint8_t reserved9[6];
};
static_assert(sizeof(MiniHeader) == 15);
static_assert(offsetof(MiniHeader, part) == 8);

// FirmwareDump, the form that is written as text.
struct TextHeader {
    uint32_t offset;
    uint32_t length;  // asked and delivered; whole size in the answer to the size query
    uint32_t externalMemoryWords;
    uint32_t traceWords;  // of the extended trace buffer
    uint32_t fceWords;    // of the FCE trace buffer
    uint8_t formatVersion;
    uint8_t reserved21[3];
    uint32_t queues;  // of each kind
    uint8_t reserved28[4];
};
static_assert(sizeof(TextHeader) == 32);
static_assert(offsetof(TextHeader, externalMemoryWords) == 8);
static_assert(offsetof(TextHeader, traceWords) == 12);
static_assert(offsetof(TextHeader, fceWords) == 16);
static_assert(offsetof(TextHeader, formatVersion) == 20);
static_assert(offsetof(TextHeader, queues) == 24);

inline constexpr uint8_t kOldestTextFormat = 3;

// A request as it travels: the size query has a few bytes of room behind the header, a piece has
// the data.
template <class Header, uint32_t Room>
struct DumpRequest {
    Header header;
    uint8_t data[Room];
};
using RawQuery = DumpRequest<RawHeader, 1>;
using RawPiece = DumpRequest<RawHeader, kPieceBytes>;
using MctpQuery = DumpRequest<MctpHeader, 1>;
using MctpPiece = DumpRequest<MctpHeader, kPieceBytes>;
using MiniQuery = DumpRequest<MiniHeader, 1>;
using MiniPiece = DumpRequest<MiniHeader, kPieceBytes>;
using TextQuery = DumpRequest<TextHeader, 4>;
using TextPiece = DumpRequest<TextHeader, kPieceBytes + 3>;
static_assert(sizeof(RawQuery) == 73 && sizeof(RawPiece) == 32840);
static_assert(sizeof(MctpQuery) == 15 && sizeof(MctpPiece) == 32782);
static_assert(sizeof(MiniQuery) == 16 && sizeof(MiniPiece) == 32783);
static_assert(sizeof(TextQuery) == 36 && sizeof(TextPiece) == 32803);

#pragma pack(pop)

}  // namespace dumps
