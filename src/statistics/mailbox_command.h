// Firmware mailbox commands of the library's own.
#pragma once

#include <cstdint>
#include <span>

#include "hxtypes.h"
#include "statistics/health_records.h"

namespace statistics {

// Sends a command with the registers behind it, and after success takes those behind the
// completion. The completion decides how a command failed.
HX_STATUS SendMailboxCommand(uint32_t handle, MailboxCommand command,
                             std::span<const uint16_t> registers, std::span<uint16_t> answer);

}  // namespace statistics
