// Common Transport (FC-GS): its header, and the name server's records. Numbers are big-endian.
#pragma once

#include "formats/bytes.h"

namespace formats {

inline constexpr uint8_t kDirectoryService = 0xFC;
inline constexpr uint8_t kNameServer = 0x02;  // of the directory service
inline constexpr uint16_t kCtReject = 0x8001;
inline constexpr uint16_t kCtAccept = 0x8002;

// The name server's commands.
inline constexpr uint16_t kGetAllNext = 0x0100;
inline constexpr uint16_t kGetPortName = 0x0112;
inline constexpr uint16_t kGetNodeName = 0x0113;
inline constexpr uint16_t kGetFc4Types = 0x0117;
inline constexpr uint16_t kGetSymbolicPortName = 0x0118;
inline constexpr uint16_t kGetPortType = 0x011A;
inline constexpr uint16_t kGetIdOfPortName = 0x0121;
inline constexpr uint16_t kGetIdsOfFc4Type = 0x0171;
inline constexpr uint16_t kGetIdsOfPortType = 0x01A1;

#pragma pack(push, 1)

struct CtHeader {
    uint8_t revision;
    uint8_t inId[3];
    uint8_t gsType;
    uint8_t gsSubtype;
    uint8_t options;
    uint8_t reserved7;
    uint8_t command[2];   // or the response code
    uint8_t residual[2];  // words: the most to receive, or those left over
    uint8_t reserved12;
    uint8_t reason;
    uint8_t explanation;
    uint8_t vendor;
};
static_assert(sizeof(CtHeader) == 16);
static_assert(offsetof(CtHeader, gsType) == 4);
static_assert(offsetof(CtHeader, command) == 8);
static_assert(offsetof(CtHeader, reason) == 13);

// What a response repeats of its request.
inline constexpr size_t kCtPreamble = offsetof(CtHeader, command);

struct SymbolicName {
    uint8_t length;
    char text[255];
};

inline constexpr size_t kFc4Types = 256;
using Fc4Types = uint8_t[kFc4Types / 32][4];  // type t: bit t mod 32 of word t div 32

struct AllNext {
    uint8_t type;
    uint8_t portId[3];
    uint8_t portName[8];
    SymbolicName port;
    uint8_t nodeName[8];
    SymbolicName node;
    uint8_t processAssociator[8];
    uint8_t nodeAddress[16];
    uint8_t serviceClasses[4];
    Fc4Types fc4Types;
    uint8_t portAddress[16];
    uint8_t fabricPortName[8];
    uint8_t reserved616;
    uint8_t hardAddress[3];
};
static_assert(sizeof(AllNext) == 620);
static_assert(offsetof(AllNext, nodeName) == 268);
static_assert(offsetof(AllNext, serviceClasses) == 556);
static_assert(offsetof(AllNext, fc4Types) == 560);

struct PortIdAnswer {
    uint8_t flags;  // of lists: kLastPortId
    uint8_t portId[3];
};
static_assert(sizeof(PortIdAnswer) == 4);
inline constexpr uint8_t kLastPortId = 0x80;

#pragma pack(pop)

}  // namespace formats
