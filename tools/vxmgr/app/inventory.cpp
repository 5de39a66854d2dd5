#include "vxmgr/app/inventory.h"

#include "common/console.h"
#include "common/status_codes.h"
#include "common/text.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

bool SaysUnsupported(HX_STATUS status) {
    return tools::ExitCodeOf(status) == ExitCode::NotSupported;
}

// Reads one port's records through its handle and keeps the first failure that is more than a
// query the driver does not know.
class PortReader {
  public:
    PortReader(tools::Invocation& invocation, Port& port, uint32_t handle)
        : invocation_(invocation), port_(port), handle_(handle) {}

    void ReadAll() {
        port_.node = Query("node properties", HXGetHbaDeviceNodeProperty);
        ReadPortProperty();
        port_.chip = Query("chip properties", HXGetHbaDeviceChipProperty);
        port_.driver = Query("driver properties", HXGetHbaDeviceDriverProperty);
        port_.firmware = Query("firmware properties", HXGetHbaDeviceFirmwareProperty);
        ReadSwitches();
    }

  private:
    bool Succeeded(HX_STATUS status, const char* query) {
        if (status != HXMGT_SUCCESS) {
            invocation_.Detail(std::string(query) + ": " + StatusMessage(status) + " (" +
                                   tools::StatusText(status) + ")",
                               port_.Object());
        }
        if (status != HXMGT_SUCCESS && !SaysUnsupported(status) && port_.failure == HXMGT_SUCCESS) {
            port_.failure = status;
            port_.failedQuery = query;
        }
        return status == HXMGT_SUCCESS;
    }

    template <typename Properties>
    std::optional<Properties> Query(const char* query,
                                    HX_STATUS (*function)(uint32_t, Properties*)) {
        Properties properties{};
        if (!Succeeded(function(handle_, &properties), query)) {
            return std::nullopt;
        }
        return properties;
    }

    void ReadPortProperty() {
        HX_PORT_PROPERTY properties{};
        properties.state = HX_PORT_STATE_ONLINE;  // older drivers report only a link that is down
        HX_STATUS status = HXGetHbaDevicePortPropertyV2(handle_, 0, &properties);
        port_.hasSecondVersion = status == HXMGT_SUCCESS && port_.IsCurrentGeneration();
        if (status == HXMGT_INVALID_SUBCODE) {
            status = HXGetHbaDevicePortPropertyV1(handle_, 0, &properties);
        }
        if (Succeeded(status, "port properties")) {
            port_.port = properties;
        }
    }

    void ReadSwitches() {
        const HX_STATUS status = HXGetHbaPortDisableInfo(handle_);
        if (status == HXMGT_PORT_DISABLED || Succeeded(status, "port disable state")) {
            port_.disabled = status == HXMGT_PORT_DISABLED;
        }
        uint8_t enabled = 0;
        if (Succeeded(HXGetSmartSANStatusFC(handle_, &enabled), "SmartSAN switch")) {
            port_.smartSan = enabled != 0;
        }
    }

    tools::Invocation& invocation_;
    Port& port_;
    const uint32_t handle_;
};

// The SCSI port of an adapter that could not be opened: counted as the library counts.
std::optional<uint32_t> ScsiPortOf(uint32_t index) {
    uint32_t count = 0;
    for (uint32_t scsiPort = 0; scsiPort < HX_MAX_SCSI_PORTS; ++scsiPort) {
        if (IsKorvexAdapter(scsiPort, 1) != nullptr && count++ == index) {
            return scsiPort;
        }
    }
    return std::nullopt;
}

void WarnWhenNothingIsVisible(tools::Invocation& invocation, const std::vector<Port>& ports) {
    if (ports.empty() && !tools::console::IsElevated()) {
        invocation.Warn("no adapter is visible to this user",
                        "run the command from an elevated prompt");
    }
}

}  // namespace

std::string Port::Serial() const {
    if (!node || node->serialPresent == 0) {
        return {};
    }
    return tools::FieldText(node->serialNumber, sizeof node->serialNumber);
}

std::string Port::Object() const {
    return "index:" + std::to_string(index);
}

tools::Identity Port::Identity() const {
    tools::Identity identity;
    identity.index = index;
    identity.serial = Serial();
    if (scsiPort) {
        identity.scsiPorts.push_back(*scsiPort);
    }
    if (port) {
        identity.names.push_back(tools::Wwn::Of(port->portName));
    }
    if (node) {
        identity.names.push_back(tools::Wwn::Of(node->nodeName));
    }
    return identity;
}

tools::Identity Adapter::Identity() const {
    tools::Identity identity;
    identity.index = index;
    identity.serial = First().Serial();
    for (const Port* port : ports) {
        const tools::Identity own = port->Identity();
        identity.scsiPorts.insert(identity.scsiPorts.end(), own.scsiPorts.begin(),
                                  own.scsiPorts.end());
        identity.names.insert(identity.names.end(), own.names.begin(), own.names.end());
    }
    return identity;
}

std::string TracePath(tools::Invocation& invocation) {
    return tools::console::ToSystemCodePage(invocation.Given().Text("trace"));
}

std::vector<Port> ReadPorts(tools::Invocation& invocation) {
    std::vector<Port> ports;
    const std::string trace = TracePath(invocation);
    for (uint32_t index = 0; index < HX_MAX_SCSI_PORTS; ++index) {
        invocation.CheckStop();
        Device device;
        const HX_STATUS status = device.Open(index, trace);
        if (status == HXMGT_DEVICE_NOT_FOUND) {
            break;
        }
        if (status != HXMGT_SUCCESS && device.IsOpen()) {
            invocation.Fail(status, "--trace " + invocation.Given().Text("trace"));
        }
        Port& port = ports.emplace_back();
        port.index = index;
        if (status == HXMGT_SUCCESS) {
            port.scsiPort = device.Info().dwScsiPort;
            port.driverVersionCode = device.Info().dwDriverVersion;
            PortReader(invocation, port, device.Handle()).ReadAll();
        } else {
            // Whatever the reason: a port that cannot be opened has failed.
            port.failure = status;
            port.failedQuery = "open";
            port.scsiPort = ScsiPortOf(index);
        }
        const char* service = port.scsiPort ? IsKorvexAdapter(*port.scsiPort, 1) : nullptr;
        port.driverService = service == nullptr ? "" : service;
    }
    WarnWhenNothingIsVisible(invocation, ports);
    return ports;
}

std::vector<Adapter> GroupAdapters(const std::vector<Port>& ports) {
    std::vector<Adapter> adapters;
    for (const Port& port : ports) {
        const std::string serial = port.Serial();
        Adapter* owner = nullptr;
        for (Adapter& adapter : adapters) {
            if (!serial.empty() && adapter.First().Serial() == serial) {
                owner = &adapter;
            }
        }
        if (owner == nullptr) {
            owner = &adapters.emplace_back();
            owner->index = static_cast<uint32_t>(adapters.size() - 1);
        }
        owner->ports.push_back(&port);
    }
    return adapters;
}

ExitCode ReportFailures(tools::Invocation& invocation, const std::vector<const Port*>& ports) {
    size_t failures = 0;
    ExitCode first = ExitCode::Done;
    for (const Port* port : ports) {
        if (port->failure != HXMGT_SUCCESS) {
            const ExitCode exit =
                invocation.Report(port->failure, port->failedQuery, port->Object());
            first = failures++ == 0 ? exit : first;
        }
    }
    return failures != 0 && failures < ports.size() ? ExitCode::Partial : first;
}

}  // namespace vxmgr
