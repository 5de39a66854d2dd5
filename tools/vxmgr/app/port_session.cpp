#include "vxmgr/app/port_session.h"

namespace vxmgr {

PortSession OpenSelectedPort(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    PortSession session;
    session.port = SelectOnePort(invocation, ports);
    const HX_STATUS status = session.port.Open(TracePath(invocation), &session.device);
    if (status != HXMGT_SUCCESS) {
        const bool silent = !session.port.answers;
        invocation.Fail(status, silent ? session.port.failedQuery : "open", session.port.Object());
    }
    session.describe =
        "port " + std::to_string(session.port.index) + ", serial " + session.port.Serial();
    if (session.port.port) {
        session.describe += ", " + tools::Wwn::Of(session.port.port->portName).Colons();
    }
    return session;
}

tools::Question QuestionAbout(const PortSession& session, const std::string& action,
                              const std::string& consequence) {
    return {{action, "  " + session.describe, consequence}, session.port.Serial()};
}

void AddData(tools::Invocation& invocation, const std::string& label, Bytes bytes) {
    if (invocation.Names().Enabled()) {
        invocation.Note("with --redact the data is left out");
    } else {
        AddHexRows(invocation.Result(), "data", label, bytes);
    }
}

}  // namespace vxmgr
