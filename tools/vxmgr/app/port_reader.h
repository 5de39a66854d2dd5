// Reading one port, on a thread that may be left behind.
#pragma once

#include "vxmgr/app/inventory.h"
#include "vxmgr/app/side_by_side.h"

namespace vxmgr {

struct ReadingOptions {
    std::string tracePath;
    std::string givenTrace;  // as the user wrote it
    bool verbose;
};

// Opens the port and reads it. False when it cannot be opened: it does not answer then, whatever
// the reason.
bool ReadPort(PortTask& task, const ReadingOptions& options, Port& port);

// Parts of that, of an open port: state and speed among others, and whether it is disabled.
HX_STATUS ReadPortProperty(uint32_t handle, Port& port);
HX_STATUS ReadPortDisabled(uint32_t handle, Port& port);

// Whether a port that cannot be opened, and whose driver is not known by its name, answers as the
// drivers of the family do.
bool IsOneOfUs(const Port& port);

}  // namespace vxmgr
