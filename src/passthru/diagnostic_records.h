// Byte layouts of loopback and mailbox requests. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "transport/mailbox_request.h"

namespace passthru {

#pragma pack(push, 1)

inline constexpr uint32_t kLegacyLoopbackRoom = 2048;
inline constexpr uint32_t kLoopbackConstant = 0x00140016;
inline constexpr uint16_t kLoopbackCommand = 0x45;  // mailbox command

// LegacyLoopback.
struct LegacyLoopback {
    uint8_t reserved0[28];
    uint16_t sendLength;
    uint8_t reserved30[2];
    uint16_t receiveLength;
    uint8_t reserved34[54];
    uint32_t constant;
    uint16_t mailboxCommand;
    uint16_t options;
    uint8_t reserved96[16];
    uint32_t sendLengthAgain;
    uint8_t reserved116[12];
    uint16_t iterations;
    uint8_t reserved130[6];
    uint8_t result[32];  // returned; its first word is the completion code
    uint32_t value168;   // returned
    uint8_t reserved172[4];
    uint8_t value176[4];  // returned, 8 bytes: the second half shares the send data's first bytes
    uint8_t sendData[kLegacyLoopbackRoom];
    uint8_t receiveData[kLegacyLoopbackRoom];
};
static_assert(sizeof(LegacyLoopback) == 4276);
static_assert(offsetof(LegacyLoopback, sendLength) == 28);
static_assert(offsetof(LegacyLoopback, receiveLength) == 32);
static_assert(offsetof(LegacyLoopback, constant) == 88);
static_assert(offsetof(LegacyLoopback, mailboxCommand) == 92);
static_assert(offsetof(LegacyLoopback, options) == 94);
static_assert(offsetof(LegacyLoopback, sendLengthAgain) == 112);
static_assert(offsetof(LegacyLoopback, iterations) == 128);
static_assert(offsetof(LegacyLoopback, result) == 136);
static_assert(offsetof(LegacyLoopback, value168) == 168);
static_assert(offsetof(LegacyLoopback, value176) == 176);
static_assert(offsetof(LegacyLoopback, sendData) == 180);
static_assert(offsetof(LegacyLoopback, receiveData) == 2228);

// Loopback; the data, out and back, follows. The driver returns its results over the request:
// LoopbackReply.
struct LoopbackRequest {
    uint16_t options;
    uint32_t length;
    uint32_t iterations;
    uint8_t reserved10[8];
    uint32_t lengthAt18;
    uint8_t reserved22[6];
    uint32_t lengthAt28;
    uint32_t lengthAt32;
    uint8_t reserved36[4];
};
static_assert(sizeof(LoopbackRequest) == 40);
static_assert(offsetof(LoopbackRequest, iterations) == 6);
static_assert(offsetof(LoopbackRequest, lengthAt18) == 18);
static_assert(offsetof(LoopbackRequest, lengthAt28) == 28);
static_assert(offsetof(LoopbackRequest, lengthAt32) == 32);

struct LoopbackReply {
    uint8_t reserved0[12];
    uint16_t completion;  // low half of a 32-bit code; the high half is the first counter
    uint16_t counter14;
    uint16_t counter16;
    uint16_t counter18;
    uint16_t counter20;
    uint16_t counter22;
    uint8_t reserved24[16];
};
static_assert(sizeof(LoopbackReply) == sizeof(LoopbackRequest));
static_assert(offsetof(LoopbackReply, completion) == 12);
static_assert(offsetof(LoopbackReply, counter22) == 22);

#pragma pack(pop)

using transport::kMailboxIn;
using transport::kMailboxOut;
using transport::MailboxRequest;

}  // namespace passthru
