#include "vxmgr/update/update_adapter.h"

#include "common/text.h"
#include "vxmgr/targets/map_behind.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

// The one selected adapter; flash and firmware are nobody else's business.
const Adapter& SelectOneAdapter(tools::Invocation& invocation,
                                const std::vector<Adapter>& adapters) {
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no adapter", "see `adapter list`");
    }
    if (selected.size() > 1) {
        invocation.Fail(ExitCode::Usage,
                        "the command works on one adapter, and " + std::to_string(selected.size()) +
                            " are selected",
                        "choose one with -a; `adapter list` shows them");
    }
    return *selected.front();
}

// The properties; empty when the query fails.
template <typename Properties>
std::optional<Properties> Asked(HX_STATUS (*query)(uint32_t, Properties*), uint32_t handle) {
    Properties properties{};
    return query(handle, &properties) == HXMGT_SUCCESS ? std::optional<Properties>(properties)
                                                       : std::nullopt;
}

}  // namespace

void AdapterSession::Refresh() {
    for (size_t i = 0; i < ports.size(); ++i) {
        ports[i].node = Asked(HXGetHbaDeviceNodeProperty, devices[i].Handle());
        ports[i].firmware = Asked(HXGetHbaDeviceFirmwareProperty, devices[i].Handle());
    }
}

AdapterSession OpenSelectedAdapter(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    AdapterSession session;
    HX_STATUS failure = HXMGT_SUCCESS;
    std::string failed;
    std::string query;
    for (const Port* port : SelectOneAdapter(invocation, adapters).ports) {
        Device device;
        const HX_STATUS status = port->Open(TracePath(invocation), &device);
        if (status == HXMGT_SUCCESS) {
            session.ports.push_back(*port);
            session.devices.push_back(std::move(device));
        } else {
            failure = status;
            failed = port->Object();
            query = port->answers ? "open" : port->failedQuery;
        }
    }
    if (session.ports.empty()) {
        invocation.Fail(failure, query, failed);
    }
    if (failure != HXMGT_SUCCESS) {
        invocation.Add({tools::Severity::Warning,
                        "the port is left out: " + query + ": " + StatusMessage(failure),
                        {},
                        failed,
                        failure});
    }
    return session;
}

std::string RunningFirmware(const Port& port) {
    return port.node
               ? tools::FieldText(port.node->firmwareVersion, sizeof port.node->firmwareVersion)
               : std::string();
}

std::string RunningBootCode(const Port& port) {
    return port.node
               ? tools::FieldText(port.node->optionRomVersion, sizeof port.node->optionRomVersion)
               : std::string();
}

tools::Question QuestionAbout(const AdapterSession& session, const std::string& action) {
    const Port& first = session.First();
    const std::string model =
        first.node ? tools::FieldText(first.node->model, sizeof first.node->model) : std::string();
    tools::Question question;
    question.serial = session.Serial();
    question.lines = {action, "  adapter serial " + session.Serial() + ", model " + model};
    for (const Port& port : session.ports) {
        std::string line = "  port " + std::to_string(port.index);
        if (port.port) {
            line += ", " + tools::Wwn::Of(port.port->portName).Colons();
        }
        question.lines.push_back(line + ", firmware " + RunningFirmware(port));
    }
    question.whenAsked = [&session] {
        std::vector<std::string> lines;
        for (size_t i = 0; i < session.ports.size(); ++i) {
            const auto behind = DescribeVolumes(session.ports[i]);
            lines.insert(lines.end(), behind.begin(), behind.end());
        }
        return lines;
    };
    return question;
}

}  // namespace vxmgr
