// Mailbox commands by the file that has them: rows, as requests have.
#pragma once

#include <cstdint>
#include <span>

#include "model/port.h"
#include "properties/chip_families.h"
#include "transport/mailbox_request.h"

namespace vxemu {

// What comes back in the first register.
enum class MailboxCompletion : uint16_t {
    Done = 0x4000,
    InvalidCommand = 0x4001,
    NobodyAnswers = 0x4005,
    BadParameter = 0x4006,
};

struct MailboxRow {
    uint16_t command;
    properties::ChipTrait chips;  // that know it; None = all
    // Registers in and out; the first of each is not the command's.
    MailboxCompletion (*run)(Port& port, transport::MailboxRequest& registers);
};

std::span<const MailboxRow> BasicMailboxCommands();
std::span<const MailboxRow> TemperatureMailboxCommands();
std::span<const MailboxRow> RegisterMailboxCommands();

}  // namespace vxemu
