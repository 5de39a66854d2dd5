// Byte layout of a firmware mailbox command, for all who send one. Free of platform headers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace transport {

inline constexpr uint32_t kMailboxIn = 32;
inline constexpr uint32_t kMailboxOut = 64;

#pragma pack(push, 1)

// Mailbox. The first register in is the command, the first one out its completion.
struct MailboxRequest {
    uint16_t inCount;
    uint16_t outCount;
    uint16_t in[kMailboxIn];
    uint16_t out[kMailboxOut];  // returned
};
static_assert(sizeof(MailboxRequest) == 196);
static_assert(offsetof(MailboxRequest, in) == 4);
static_assert(offsetof(MailboxRequest, out) == 68);

#pragma pack(pop)

}  // namespace transport
