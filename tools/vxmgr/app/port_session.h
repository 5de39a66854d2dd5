// One selected port, open: what commands about a single port start with.
#pragma once

#include "vxmgr/app/bytes.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

struct PortSession {
    Port port;
    Device device;

    uint32_t Handle() const { return device.Handle(); }
    std::string describe;  // for questions: "port 0, serial ..., 21:00:..."
};

PortSession OpenSelectedPort(Invocation& invocation);

// What a question says of the port, what it stops, and which volumes are behind it. The session has
// to live until the question is asked.
Question QuestionAbout(const PortSession& session, const std::string& action,
                       const std::string& consequence);

inline constexpr char kLinkHint[] = "`port show` tells more: is the cable in, the switch port on?";

// Whether the port says now that it has no link: then it reaches nobody, whatever the status says.
bool LinkIsDown(const PortSession& session);

// A request to a remote port that failed, as the error that ends the command.
CommandError RemoteFailure(const PortSession& session, HX_STATUS status, const std::string& text);

// Bytes as they came, as rows of the result. With --redact they stay out: names and serial numbers
// in them cannot be told from the rest.
std::optional<std::vector<HexRow>> DataRows(Invocation& invocation, Bytes bytes);

}  // namespace vxmgr
