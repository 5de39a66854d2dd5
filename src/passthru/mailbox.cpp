#include <algorithm>
#include <cstring>
#include <iterator>

#include "frame/handle_table.h"
#include "passthru/diagnostic_records.h"
#include "passthru/passthru.h"
#include "transport/requests.h"

namespace passthru {
namespace {

// Mailbox commands that only the firmware's own services may send, in ascending order.
constexpr uint16_t kRefusedCommands[] = {
    0x02, 0x07, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x12, 0x1F, 0x27, 0x30,
    0x31, 0x44, 0x45, 0x48, 0x49, 0x4A, 0x50, 0x51, 0x53, 0x54, 0x57, 0x59,
    0x5A, 0x60, 0x61, 0x63, 0x64, 0x6B, 0x6D, 0x6E, 0x75, 0x7A, 0x7C, 0x7D,
};
static_assert(std::is_sorted(std::begin(kRefusedCommands), std::end(kRefusedCommands)));

}  // namespace

HX_STATUS SendMailbox(uint32_t handle, const uint16_t* inRegisters, int16_t inCount,
                      uint16_t* outRegisters, int16_t outCount) {
    if (frame::OpenRecord(handle) == nullptr) {
        return HXMGT_INVALID_HANDLE;
    }
    if (inRegisters == nullptr || inCount < 1 || inCount > static_cast<int16_t>(kMailboxIn) ||
        outCount < 0 || outCount > static_cast<int16_t>(kMailboxOut) ||
        (outRegisters == nullptr && outCount != 0)) {
        return HXMGT_INVALID_PARAMETER;
    }
    if (std::binary_search(std::begin(kRefusedCommands), std::end(kRefusedCommands),
                           inRegisters[0])) {
        return HXMGT_INVALID_REQUEST;
    }
    MailboxRequest request{};
    request.inCount = static_cast<uint16_t>(inCount);
    request.outCount = static_cast<uint16_t>(outCount);
    std::memcpy(request.in, inRegisters, request.inCount * sizeof request.in[0]);
    MailboxRequest reply{};
    const HX_STATUS status =
        transport::Exchange(handle, transport::command::Mailbox, request, reply);
    if (outCount != 0) {
        std::memcpy(outRegisters, reply.out, request.outCount * sizeof reply.out[0]);
    }
    return status;
}

}  // namespace passthru
