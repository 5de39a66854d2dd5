// Byte layouts of CT, ELS, RNID and SCM requests. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "transport/ext_ioctl.h"

namespace passthru {

#pragma pack(push, 1)

// LegacyCtPassThrough has an envelope of its own; request and response area follow.
struct LegacyCtRequest {
    transport::SrbIoControl srb;
    uint32_t requestSize;
    uint32_t responseSize;
};
static_assert(sizeof(LegacyCtRequest) == 36);
static_assert(offsetof(LegacyCtRequest, requestSize) == 28);

inline constexpr uint32_t kLegacyCtTimeoutSeconds = 5;

// ElsPassThrough; the payload, out and back, follows.
struct ElsRequest {
    uint8_t reserved0[8];
    uint8_t portName[8];
    uint8_t portId[3];
    uint8_t reserved19;
    uint32_t addressFlags;
    uint8_t reserved24[2];
    uint8_t rejected;  // returned: 1 = LS_RJT
    uint8_t reserved27[5];
    uint8_t option;
    uint8_t reserved33[3];
};
static_assert(sizeof(ElsRequest) == 36);
static_assert(offsetof(ElsRequest, portName) == 8);
static_assert(offsetof(ElsRequest, portId) == 16);
static_assert(offsetof(ElsRequest, addressFlags) == 20);
static_assert(offsetof(ElsRequest, rejected) == 26);
static_assert(offsetof(ElsRequest, option) == 32);

inline constexpr uint32_t kElsByPortName = 1u << 0;
inline constexpr uint32_t kElsByPortId = 1u << 2;

// ElsRnid.
struct RnidRequest {
    uint8_t name[8];
    uint16_t destinationType;
    uint8_t reserved10[4];
    uint8_t format;
    uint8_t reserved15;
    uint8_t optionalName[8];
    uint8_t optionalPortId[3];
    uint8_t reserved27[53];
};
static_assert(sizeof(RnidRequest) == 80);
static_assert(offsetof(RnidRequest, destinationType) == 8);
static_assert(offsetof(RnidRequest, format) == 14);
static_assert(offsetof(RnidRequest, optionalName) == 16);
static_assert(offsetof(RnidRequest, optionalPortId) == 24);

inline constexpr uint16_t kRnidToAttachedPort = 4;

// What a caller may put into the response buffer of an RNID before the call.
struct RnidOptions {
    uint8_t name[8];
    uint8_t portIdReversed[3];  // port, area, domain
    uint8_t reserved11;
};
static_assert(sizeof(RnidOptions) == 12);

// ScmManagement.
struct ScmRequest {
    uint8_t flags;
    uint8_t values[23];
};
static_assert(sizeof(ScmRequest) == 24);

inline constexpr uint8_t kScmRead = 1u << 3;
inline constexpr uint32_t kScmValues = 8;  // handed to the caller by a read

#pragma pack(pop)

}  // namespace passthru
