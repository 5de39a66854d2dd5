// What each driver status means to the library. Free of platform headers.
#pragma once

#include <cstdint>

#include "hxstatus.h"
#include "transport/ext_ioctl.h"

namespace transport {

struct StatusRule {
    uint32_t status;   // library status
    bool copiesReply;  // the reply data goes to the caller
};

// The rule of a driver status with its detail status.
StatusRule RuleOf(DriverStatus status, uint32_t detail);

}  // namespace transport
