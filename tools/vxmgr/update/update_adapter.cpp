#include "vxmgr/update/update_adapter.h"

#include "vxmgr/targets/map_behind.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

std::vector<const Adapter*> SelectAtMost(Invocation& invocation,
                                         const std::vector<Adapter>& adapters, size_t most) {
    const std::vector<const Adapter*> selected = SelectAdapters(invocation, adapters);
    if (selected.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no adapter", "see `adapter list`");
    }
    if (selected.size() > most) {
        invocation.Fail(ExitCode::Usage,
                        "the command works on one adapter, and " + std::to_string(selected.size()) +
                            " are selected",
                        "choose one with -a; `adapter list` shows them");
    }
    return selected;
}

template <size_t size>
std::string NodeText(const Port& port, char (HX_NODE_PROPERTY::*field)[size]) {
    return port.node ? FieldText((*port.node).*field, size) : std::string();
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

const Fields<AdapterSession> kSessionFields = {
    {"serial", "Adapter", kSerial.OrNull(), &AdapterSession::serial},
    {"adapter_serial", "", kSerial.OrNull(), &AdapterSession::serial},
};

AdapterSession OpenSelectedAdapter(Invocation& invocation) {
    const std::vector<Port> ports = ReadPorts(invocation);
    const std::vector<Adapter> adapters = GroupAdapters(ports);
    return OpenAdapter(invocation, *SelectAtMost(invocation, adapters, 1).front());
}

std::vector<const Adapter*> SelectSomeAdapters(Invocation& invocation,
                                               const std::vector<Adapter>& adapters) {
    return SelectAtMost(invocation, adapters, invocation.Given().Has("adapter") ? SIZE_MAX : 1);
}

AdapterSession OpenAdapter(Invocation& invocation, const Adapter& adapter) {
    AdapterSession session;
    HX_STATUS failure = HXMGT_SUCCESS;
    std::string failed;
    std::string query;
    for (const Port* port : adapter.ports) {
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
    session.serial = session.First().Serial();
    if (failure != HXMGT_SUCCESS) {
        WarnAbout(invocation, failed,
                  "the port is left out: " + query + ": " + StatusMessage(failure), failure);
    }
    return session;
}

std::string RunningFirmware(const Port& port) {
    return NodeText(port, &HX_NODE_PROPERTY::firmwareVersion);
}

std::string RunningBootCode(const Port& port) {
    return NodeText(port, &HX_NODE_PROPERTY::optionRomVersion);
}

std::string ModelOf(const Port& port) {
    return NodeText(port, &HX_NODE_PROPERTY::model);
}

std::string ChipTextOf(const AdapterSession& session) {
    const auto& chip = session.First().chip;
    return chip ? Hex(chip->deviceId, 4) : std::string();
}

Question QuestionAbout(const AdapterSession& session, const std::string& action) {
    Question question;
    question.serial = session.serial;
    question.lines = {action,
                      "  adapter serial " + session.serial + ", model " + ModelOf(session.First())};
    for (const Port& port : session.ports) {
        std::string line = "  port " + std::to_string(port.index);
        if (port.port) {
            line += ", " + Wwn::Of(port.port->portName).Colons();
        }
        question.lines.push_back(line + ", firmware " + RunningFirmware(port));
    }
    question.whenAsked = [&session] {
        std::vector<std::string> lines;
        for (const Port& port : session.ports) {
            const auto behind = DescribeVolumes(port);
            lines.insert(lines.end(), behind.begin(), behind.end());
        }
        return lines;
    };
    return question;
}

}  // namespace vxmgr
