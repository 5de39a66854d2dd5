// Extended link services (FC-LS): payloads, numbers being big-endian.
#pragma once

#include "formats/bytes.h"

namespace formats {

// Command codes.
inline constexpr uint8_t kElsReject = 0x01;
inline constexpr uint8_t kElsAccept = 0x02;
inline constexpr uint8_t kReadLinkErrors = 0x0F;
inline constexpr uint8_t kEcho = 0x10;
inline constexpr uint8_t kDiscoverAddress = 0x52;
inline constexpr uint8_t kReadPortStatus = 0x56;

inline constexpr uint8_t kTopologyFormat = 0xDF;  // RNID: general topology discovery

#pragma pack(push, 1)

// First word of every payload.
struct ElsHead {
    uint8_t command;
    uint8_t reserved1[3];
};
static_assert(sizeof(ElsHead) == 4);

struct LinkErrorsCall {
    ElsHead head;
    uint8_t reserved4;
    uint8_t portId[3];
};
static_assert(sizeof(LinkErrorsCall) == 8);

struct LinkErrorsAnswer {
    ElsHead head;
    // Link failures, losses of synchronisation, losses of signal, primitive sequence errors,
    // invalid words, CRC errors.
    uint8_t counters[6][4];
};
static_assert(sizeof(LinkErrorsAnswer) == 28);

struct RejectAnswer {
    ElsHead head;
    uint8_t reserved4;
    uint8_t reason;
    uint8_t explanation;
    uint8_t vendor;
};
static_assert(sizeof(RejectAnswer) == 8);
static_assert(offsetof(RejectAnswer, reason) == 5);

struct AddressAnswer {  // to kDiscoverAddress
    ElsHead head;
    uint8_t reserved4;
    uint8_t hardAddress[3];
    uint8_t portName[8];
    uint8_t nodeName[8];
    uint8_t reserved24;
    uint8_t portId[3];
};
static_assert(sizeof(AddressAnswer) == 28);

// RNID: the head, common data, then data of the format.
struct NodeIdHead {
    ElsHead head;
    uint8_t format;
    uint8_t commonLength;
    uint8_t reserved6;
    uint8_t specificLength;
};
static_assert(sizeof(NodeIdHead) == 8);
static_assert(offsetof(NodeIdHead, commonLength) == 5);

struct NodeIdNames {
    uint8_t portName[8];
    uint8_t nodeName[8];
};
static_assert(sizeof(NodeIdNames) == 16);

struct NodeIdTopology {  // of kTopologyFormat
    uint8_t vendorSpecific[16];
    uint8_t unitType[4];
    uint8_t portNumber[4];
    uint8_t attachedNodes[4];
    uint8_t rest[24];
};
static_assert(sizeof(NodeIdTopology) == 52);
static_assert(offsetof(NodeIdTopology, rest) == 28);

#pragma pack(pop)

}  // namespace formats
