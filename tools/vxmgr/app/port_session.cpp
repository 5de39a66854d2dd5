#include "vxmgr/app/port_session.h"

#include "vxmgr/targets/map_behind.h"

namespace vxmgr {

PortSession OpenSelectedPort(Invocation& invocation) {
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
        session.describe += ", " + Wwn::Of(session.port.port->portName).Colons();
    }
    return session;
}

Question QuestionAbout(const PortSession& session, const std::string& action,
                       const std::string& consequence) {
    return {{action, "  " + session.describe, consequence}, session.port.Serial(), [&session] {
                return DescribeVolumes(session.port);
            }};
}

bool LinkIsDown(const PortSession& session) {
    HX_PORT_PROPERTY port{};
    // Older drivers write the state only of a link that is down.
    port.state = HX_PORT_STATE_ONLINE;
    return HXGetHbaDevicePortProperty(session.Handle(), 0, &port) == HXMGT_SUCCESS &&
           port.state == HX_PORT_STATE_LINK_DOWN;
}

CommandError RemoteFailure(const PortSession& session, HX_STATUS status, const std::string& text) {
    const bool unreached = status == HXMGT_DEVICE_NOT_FOUND || status == HXMGT_MS_NO_RESPONSE;
    if (unreached && LinkIsDown(session)) {
        return {
            ExitCodeOf(status),
            {Severity::Error, text + ": the link is down", kLinkHint, session.port.Object(), {}}};
    }
    return {ExitCodeOf(status),
            {Severity::Error, text + ": " + StatusMessage(status), HintOf(status),
             session.port.Object(), status}};
}

std::optional<std::vector<HexRow>> DataRows(Invocation& invocation, Bytes bytes) {
    if (invocation.Names().Enabled()) {
        invocation.Note("with --redact the data is left out");
        return std::nullopt;
    }
    return HexRowsOf(bytes);
}

}  // namespace vxmgr
