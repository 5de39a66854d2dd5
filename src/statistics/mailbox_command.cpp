#include "statistics/mailbox_command.h"

#include <algorithm>

#include "transport/mailbox_request.h"
#include "transport/requests.h"

namespace statistics {
namespace {

constexpr uint16_t kComplete = 0x4000;

struct CompletionRow {
    uint16_t completion;
    HX_STATUS status;
};
constexpr CompletionRow kFailures[] = {
    {0x4001, HXMGT_FEATURE_NOT_SUPPORTED_BY_DRIVER},  // unknown command
    {0x4005, HXMGT_DEVICE_NOT_FOUND},                 // nobody answers
    {0x4006, HXMGT_INVALID_PARAMETER},
};

HX_STATUS FailureOf(uint16_t completion) {
    for (const CompletionRow& row : kFailures) {
        if (row.completion == completion) {
            return row.status;
        }
    }
    return HXMGT_MAILBOX_FAILED;
}

}  // namespace

HX_STATUS SendMailboxCommand(uint32_t handle, MailboxCommand command,
                             std::span<const uint16_t> registers, std::span<uint16_t> answer) {
    transport::MailboxRequest request{};
    request.inCount = static_cast<uint16_t>(1 + registers.size());
    request.outCount = static_cast<uint16_t>(1 + answer.size());
    request.in[0] = static_cast<uint16_t>(command);
    std::copy(registers.begin(), registers.end(), request.in + 1);
    transport::MailboxRequest reply{};
    const HX_STATUS status =
        transport::Exchange(handle, transport::command::Mailbox, request, reply);
    if (status == HXMGT_MAILBOX_FAILED || (status == HXMGT_SUCCESS && reply.out[0] != kComplete)) {
        return FailureOf(reply.out[0]);
    }
    if (status == HXMGT_SUCCESS) {
        std::copy_n(reply.out + 1, answer.size(), answer.begin());
    }
    return status;
}

}  // namespace statistics
