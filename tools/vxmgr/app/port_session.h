// One selected port, open: what commands about a single port start with.
#pragma once

#include <vector>

#include "vxmgr/app/bytes.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

struct PortSession {
    Port port;
    Device device;

    uint32_t Handle() const { return device.Handle(); }
    std::string describe;  // for questions: "port 0, serial ..., 21:00:..."
};

PortSession OpenSelectedPort(tools::Invocation& invocation);

// What a question says of the port, and what it stops.
tools::Question QuestionAbout(const PortSession& session, const std::string& action,
                              const std::string& consequence);

// Bytes as they came, as rows of the result. With --redact they stay out: names and serial numbers
// in them cannot be told from the rest.
void AddData(tools::Invocation& invocation, const std::string& label, Bytes bytes);

}  // namespace vxmgr
