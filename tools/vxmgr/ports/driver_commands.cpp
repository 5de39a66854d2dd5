// driver show, driver param get|set. Parameters belong to a driver service, which all its adapters
// share.
#include <algorithm>
#include <optional>

#include "vxmgr/app/inventory.h"
#include "vxmgr/app/values.h"
#include "vxmgr/ports/commands.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::ListLayout;
using tools::Record;
using tools::Value;

constexpr tools::Argument kNameArguments[] = {
    {.name = "NAME", .help = "the parameter's name", .required = true},
};
constexpr tools::Argument kSettingArguments[] = {
    {.name = "SETTING", .help = "NAME=VALUE, or NAME= to remove the parameter", .required = true},
};

// A driver service and the selected ports that it drives.
struct Service {
    std::string name;
    std::string version;
    std::vector<const Port*> ports;
};

std::string VersionOf(const Port& port) {
    return port.driver ? FieldValue(port.driver->version, sizeof port.driver->version).Shown()
                       : std::string();
}

std::vector<Service> ServicesOf(const std::vector<const Port*>& ports) {
    std::vector<Service> services;
    for (const Port* port : ports) {
        const std::string version = VersionOf(*port);
        const auto known = std::find_if(services.begin(), services.end(), [&](const Service& one) {
            return one.name == port->driverService && one.version == version;
        });
        Service& service = known != services.end() ? *known : services.emplace_back();
        service.name = port->driverService;
        service.version = version;
        service.ports.push_back(port);
    }
    return services;
}

// Drivers of different versions still share the parameters of one service.
std::vector<Service> ParameterServices(const std::vector<const Port*>& ports) {
    std::vector<Service> services;
    for (Service& service : ServicesOf(ports)) {
        const auto known = std::find_if(services.begin(), services.end(), [&](const Service& one) {
            return one.name == service.name;
        });
        if (known == services.end()) {
            services.push_back(std::move(service));
        } else {
            known->ports.insert(known->ports.end(), service.ports.begin(), service.ports.end());
        }
    }
    return services;
}

Record DriverRow(const Service& service) {
    static const Port kNone;
    const Port& port = service.ports.empty() ? kNone : *service.ports.front();
    const HX_DRIVER_PROPERTY driver = port.driver.value_or(HX_DRIVER_PROPERTY{});
    const auto number = [&](uint64_t value, std::string_view unit = {}) {
        return port.driver ? Value::Number(value, unit) : Value();
    };
    const bool current = port.driver && port.IsCurrentGeneration();
    std::string scsiPorts;
    for (const Port* one : service.ports) {
        if (one->scsiPort) {
            scsiPorts += (scsiPorts.empty() ? "" : " ") + std::to_string(*one->scsiPort);
        }
    }
    Record row;
    row.title = "Driver " + (service.name.empty() ? std::string("without a name") : service.name);
    row.Add("service", "Service", Value::TextOrNull(service.name), "SERVICE");
    row.Add("version", "Version", Value::TextOrNull(service.version), "VERSION");
    row.Add("scsi_ports", "SCSI ports", Value::TextOrNull(scsiPorts), "SCSI PORTS");
    row.Add("current_generation", "Current generation", Value::Flag(port.IsCurrentGeneration()),
            "CURRENT");
    row.Add("model", "Miniport model", port.driver ? HexValue(driver.driverModel, 4) : Value());
    row.Add("model_revision", "Model revision", number(driver.driverModelRevision));
    row.Add("interrupt_mode", "Interrupt mode",
            current ? InterruptModeValue(driver.interruptMode) : Value(), "INTERRUPTS");
    row.Add("max_scatter_gather", "Scatter/gather elements", number(driver.maxScatterGather));
    row.Add("max_transfer_length", "Largest transfer", number(driver.maxTransferLength, "bytes"));
    row.Add("max_queue_depth", "Queue depth", current ? number(driver.maxQueueDepth) : Value(),
            "QUEUE");
    row.Add("number_of_ports", "Ports", number(driver.numberOfPorts), "PORTS");
    row.Add("build", "Build",
            current ? FieldValue(reinterpret_cast<const char*>(driver.buildText),
                                 sizeof driver.buildText)
                    : Value(),
            "BUILD");
    row.Add("build_number", "Build number", current ? number(driver.buildNumber) : Value());
    return row;
}

Device OpenPortOf(tools::Invocation& invocation, const Service& service) {
    Device device;
    const Port& port = *service.ports.front();
    const HX_STATUS status = port.Open(TracePath(invocation), &device);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "open", port.Object());
    }
    return device;
}

// The parameter's value; nothing when it is absent.
std::optional<std::string> ReadParameter(tools::Invocation& invocation, const Device& device,
                                         const std::string& name) {
    char value[512] = {};
    const HX_STATUS status =
        HXGetDriverParameter(device.Handle(), name.c_str(), value, sizeof value);
    if (status == HXMGT_DEVICE_NOT_FOUND) {
        return std::nullopt;
    }
    if (status == HXMGT_INVALID_PARAMETER) {
        invocation.Fail(ExitCode::Usage, "\"" + name + "\" is no parameter name",
                        "a name has no blank, no ';' and no '='");
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the parameter cannot be read");
    }
    return FieldValue(value, sizeof value).Shown();
}

Value ValueOrNull(const std::optional<std::string>& value) {
    return value ? Value::Text(*value) : Value();
}

Record ParameterRow(const std::string& service, const std::string& name,
                    const std::optional<std::string>& value) {
    Record row;
    row.Add("driver_service", "Driver service", Value::TextOrNull(service), "SERVICE");
    row.Add("name", "Parameter", Value::TextOrNull(name), "PARAMETER");
    row.Add("value", "Value", ValueOrNull(value), "VALUE");
    return row;
}

std::vector<const Port*> OpenablePorts(tools::Invocation& invocation,
                                       const std::vector<Port>& ports) {
    std::vector<const Port*> openable;
    for (const Port* port : SelectPorts(invocation, ports)) {
        if (port->node) {
            openable.push_back(port);
        }
    }
    if (openable.empty()) {
        invocation.Fail(ExitCode::NotFound, "there is no port that can be opened",
                        "see `port list`");
    }
    return openable;
}

struct Setting {
    std::string name;
    std::optional<std::string> value;  // none: remove
};

Setting ParseSetting(tools::Invocation& invocation) {
    const std::string text = invocation.Given().Text("SETTING");
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not NAME=VALUE",
                        "NAME= removes the parameter");
    }
    Setting setting{text.substr(0, equals), std::nullopt};
    if (equals + 1 < text.size()) {
        setting.value = text.substr(equals + 1);
    }
    return setting;
}

const Service& OnlyService(tools::Invocation& invocation, const std::vector<Service>& services) {
    if (services.size() > 1) {
        std::string names;
        for (const Service& service : services) {
            names += (names.empty() ? "" : ", ") + service.name;
        }
        invocation.Fail(ExitCode::Usage, "several drivers are selected: " + names,
                        "choose a port of the driver meant with -p");
    }
    return services.front();
}

std::string Shown(const std::optional<std::string>& value) {
    return value ? "\"" + *value + "\"" : "absent";
}

tools::Question QuestionAbout(const Service& service, const Setting& setting,
                              const std::optional<std::string>& before) {
    tools::Question question;
    question.lines.push_back("Driver " + service.name + " " + service.version + ", parameter " +
                             setting.name + ": " + Shown(before) + " -> " + Shown(setting.value));
    for (const Port* port : service.ports) {
        std::string line = "  port " + std::to_string(port->index) + ", serial " + port->Serial();
        if (port->port) {
            line += ", " + tools::Wwn::Of(port->port->portName).Colons();
        }
        question.lines.push_back(line);
    }
    question.lines.push_back(
        "Nothing stops now. A wrong value can keep these ports from working after the driver's "
        "next start.");
    question.serial = service.ports.front()->Serial();
    return question;
}

void WriteParameter(tools::Invocation& invocation, const Device& device, const Setting& setting) {
    const HX_STATUS status = HXSetDriverParameter(device.Handle(), setting.name.c_str(),
                                                  setting.value ? setting.value->c_str() : nullptr);
    if (status == HXMGT_INVALID_PARAMETER) {
        invocation.Fail(ExitCode::Usage, "the driver's parameters cannot hold this name or value",
                        "neither may have a blank or ';'");
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the parameter cannot be written");
    }
}

ExitCode DriverShow(tools::Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<const Port*> selected = SelectPorts(invocation, ports);
    std::vector<Record> rows;
    for (const Service& service : ServicesOf(selected)) {
        rows.push_back(DriverRow(service));
    }
    invocation.Result().AddList("drivers", "Drivers", ListLayout::Sections, DriverRow(Service()),
                                "No drivers.", std::move(rows));
    return ReportFailures(invocation, selected);
}

ExitCode DriverParameterGet(tools::Invocation& invocation) {
    const std::string name = invocation.Given().Text("NAME");
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<Record> rows;
    bool found = false;
    for (const Service& service : ParameterServices(OpenablePorts(invocation, ports))) {
        const Device device = OpenPortOf(invocation, service);
        const auto value = ReadParameter(invocation, device, name);
        rows.push_back(ParameterRow(service.name, name, value));
        found = found || value.has_value();
    }
    invocation.Result().AddList("parameters", "Parameters", ListLayout::Table,
                                ParameterRow("", "", {}), "", std::move(rows));
    if (!found) {
        invocation.Fail(ExitCode::NotFound, "no driver has a parameter \"" + name + "\"");
    }
    return ExitCode::Done;
}

ExitCode DriverParameterSet(tools::Invocation& invocation) {
    const Setting setting = ParseSetting(invocation);
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Service> services = ParameterServices(OpenablePorts(invocation, ports));
    const Service& service = OnlyService(invocation, services);
    const Device device = OpenPortOf(invocation, service);
    const auto before = ReadParameter(invocation, device, setting.name);
    const bool needed = before != setting.value;
    if (needed && !invocation.DryRun()) {
        invocation.Confirm(QuestionAbout(service, setting, before));
        WriteParameter(invocation, device, setting);
        invocation.Changed();
        invocation.AddPending({"driver:" + service.name, "driver_restart",
                               "the parameter takes effect at the driver's next start"});
    }
    const auto after = ReadParameter(invocation, device, setting.name);
    Record& result = invocation.Result();
    result.Add("driver_service", "Driver service", Value::TextOrNull(service.name));
    result.Add("name", "Parameter", Value::Text(setting.name));
    result.Add("previous", "Before", ValueOrNull(before));
    result.Add("value", "Value", ValueOrNull(after));
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: " + setting.name + " would become " + Shown(setting.value));
    } else if (after != setting.value) {
        invocation.Fail(ExitCode::NotProven, "the parameter was written, but does not read back");
    }
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows DriverCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "driver show",
            .risk = tools::Risk::Reads,
            .help = "show the drivers",
            .schema = "driver.show",
            .run = DriverShow,
            .example = "driver show",
        },
        {
            .path = "driver param get",
            .risk = tools::Risk::Reads,
            .help = "print a driver parameter",
            .schema = "driver.param.get",
            .arguments = kNameArguments,
            .run = DriverParameterGet,
            .example = "driver param get qdepth -p scsi:3",
        },
        {
            .path = "driver param set",
            .risk = tools::Risk::InterruptsIo,
            .help = "set or remove a driver parameter",
            .schema = "driver.param.set",
            .arguments = kSettingArguments,
            .run = DriverParameterSet,
            .example = "driver param set qdepth=32 -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
