// driver show, driver param list|get|set. Parameters belong to a driver service, which all its
// adapters share.
#include <algorithm>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"

namespace vxmgr {
namespace {

using Driver = HX_DRIVER_PROPERTY;

constexpr Argument kNameArguments[] = {
    {.name = "NAME", .help = "the parameter's name", .required = true},
};
constexpr Argument kSettingArguments[] = {
    {.name = "SETTING", .help = "NAME=VALUE, or NAME= to remove the parameter", .required = true},
};

// A driver service and the selected ports that it drives.
struct Service {
    std::string name;
    std::string version;
    std::vector<const Port*> ports;
};

// Drivers of different versions still share the parameters of one service.
std::vector<Service> ServicesOf(const std::vector<const Port*>& ports, bool byVersion) {
    std::vector<Service> services;
    for (const Port* port : ports) {
        const std::string version = Of(&Port::driver, TextOf<&Driver::version>)(*port).value_or("");
        const auto known = std::ranges::find_if(services, [&](const Service& one) {
            return one.name == port->driverService && (!byVersion || one.version == version);
        });
        if (known != services.end()) {
            known->ports.push_back(port);
        } else {
            services.push_back({port->driverService, version, {port}});
        }
    }
    return services;
}

std::string ScsiPortsOf(const Service& service) {
    std::string text;
    for (const Port* port : service.ports) {
        if (port->scsiPort) {
            text += (text.empty() ? "" : " ") + std::to_string(*port->scsiPort);
        }
    }
    return text;
}

bool IsCurrent(const Service& service) {
    return service.ports.front()->IsCurrentGeneration();
}

const std::optional<Driver>& DriverOf(const Service& service) {
    return service.ports.front()->driver;
}
// Older drivers give fixed values there, or none.
const Driver* CurrentDriverOf(const Service& service) {
    return DriverOf(service) && IsCurrent(service) ? &*DriverOf(service) : nullptr;
}

std::string ServiceTitle(const Service& service) {
    return "Driver " + (service.name.empty() ? std::string("without a name") : service.name);
}

const Fields<Service> kServiceFields = {
    ServiceTitle,
    {
        {"service", "Service", "SERVICE", kText.OrNull(), &Service::name},
        {"version", "Version", "VERSION", kText.OrNull(), &Service::version},
        {"scsi_ports", "SCSI ports", "SCSI PORTS", kText.OrNull(), ScsiPortsOf},
        {"current_generation", "Current generation", "CURRENT", kFlag, IsCurrent},
        {"model", "Miniport model", Hexadecimal(4).OrNull(),
         Of(DriverOf, Packed<&Driver::driverModel>)},
        {"model_revision", "Model revision", kInteger.OrNull(),
         Of(DriverOf, Packed<&Driver::driverModelRevision>)},
        {"interrupt_mode", "Interrupt mode", "INTERRUPTS", Choice(kInterruptModes).OrNull(),
         Of(CurrentDriverOf,
            [](const Driver& driver) { return InterruptModeValue(driver.interruptMode); })},
        {"max_scatter_gather", "Scatter/gather elements", kInteger.OrNull(),
         Of(DriverOf, Packed<&Driver::maxScatterGather>)},
        {"max_transfer_length", "Largest transfer", Integer("bytes").OrNull(),
         Of(DriverOf, Packed<&Driver::maxTransferLength>)},
        {"max_queue_depth", "Queue depth", "QUEUE", kInteger.OrNull(),
         Of(CurrentDriverOf, Packed<&Driver::maxQueueDepth>)},
        {"number_of_ports", "Ports", "PORTS", kInteger.OrNull(),
         Of(DriverOf, Packed<&Driver::numberOfPorts>)},
        {"build", "Build", "BUILD", kText.OrNull(),
         Of(CurrentDriverOf, TextOf<&Driver::buildText>)},
        {"build_number", "Build number", kInteger.OrNull(),
         Of(CurrentDriverOf, Packed<&Driver::buildNumber>)},
    }};

const auto kServiceList =
    ListOf("drivers", "Drivers", kServiceFields, ListLayout::Sections, "No drivers.");

// A parameter of a driver service; no value: it has none of that name.
struct Parameter {
    std::string service;
    std::string name;
    std::optional<std::string> value;
    std::optional<std::string> previous;
};

// A value that is empty is one, other than none.
template <auto member>
Value ValueOrNull(const Parameter& parameter) {
    return parameter.*member ? Value::Text(*(parameter.*member)) : Value();
}

const Fields<Parameter> kParameterFields = {
    {"driver_service", "Driver service", "SERVICE", kText.OrNull(), &Parameter::service},
    {"name", "Parameter", "PARAMETER", kText.OrNull(), &Parameter::name},
    {"value", "Value", "VALUE", kText.OrNull(), ValueOrNull<&Parameter::value>,
     "null: the driver has no such parameter"},
};

const auto kParameterList = ListOf("parameters", "Parameters", kParameterFields);

const Fields<Parameter> kParameterChangeFields = {
    {"driver_service", "Driver service", kText.OrNull(), &Parameter::service},
    {"name", "Parameter", kText, &Parameter::name},
    {"previous", "Before", kText.OrNull(), ValueOrNull<&Parameter::previous>},
    {"value", "Value", kText.OrNull(), ValueOrNull<&Parameter::value>},
};

Device OpenPortOf(Invocation& invocation, const Service& service) {
    Device device;
    const Port& port = *service.ports.front();
    invocation.Require(port.Open(TracePath(invocation), &device), "open", port.Object());
    return device;
}

// The parameter's value; nothing when it is absent.
std::optional<std::string> ReadParameter(Invocation& invocation, const Device& device,
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
    invocation.Require(status, "the parameter cannot be read");
    return FieldText(value, sizeof value);
}

std::vector<const Port*> OpenablePorts(Invocation& invocation, const std::vector<Port>& ports) {
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

Setting ParseSetting(Invocation& invocation) {
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

const Service& OnlyService(Invocation& invocation, const std::vector<Service>& services) {
    if (services.size() > 1) {
        invocation.Fail(
            ExitCode::Usage,
            "several drivers are selected: " + TextsJoined(services, ", ", &Service::name),
            "choose a port of the driver meant with -p");
    }
    return services.front();
}

std::string Shown(const std::optional<std::string>& value) {
    return value ? "\"" + *value + "\"" : "absent";
}

Question QuestionAbout(const Service& service, const Setting& setting,
                       const std::optional<std::string>& before) {
    Question question;
    question.lines.push_back("Driver " + service.name + " " + service.version + ", parameter " +
                             setting.name + ": " + Shown(before) + " -> " + Shown(setting.value));
    for (const Port* port : service.ports) {
        std::string line = "  port " + std::to_string(port->index) + ", serial " + port->Serial();
        if (port->port) {
            line += ", " + Wwn::Of(port->port->portName).Colons();
        }
        question.lines.push_back(line);
    }
    question.lines.push_back(
        "Nothing stops now. A wrong value can keep these ports from working after the driver's "
        "next start.");
    question.serial = service.ports.front()->Serial();
    return question;
}

void WriteParameter(Invocation& invocation, const Device& device, const Setting& setting) {
    const HX_STATUS status = HXSetDriverParameter(device.Handle(), setting.name.c_str(),
                                                  setting.value ? setting.value->c_str() : nullptr);
    if (status == HXMGT_INVALID_PARAMETER) {
        invocation.Fail(ExitCode::Usage, "the driver's parameters cannot hold this name or value",
                        "neither may have a blank or ';'");
    }
    invocation.Require(status, "the parameter cannot be written");
}

ExitCode DriverShow(Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<const Port*> selected = SelectPorts(invocation, ports);
    invocation.Result() = kServiceList.Make(ServicesOf(selected, true));
    return ReportFailures(invocation, selected);
}

// The parameters whose meaning is known; a driver may have others.
struct KnownParameter {
    const char* name;
    const char* usual;  // what holds when there is none
    const char* meaning;
};
constexpr KnownParameter kKnownParameters[] = {
    {"bind", "1", "1: stored bindings are used"},
    {"configrequired", "0", "1: only targets with stored data are presented"},
    {"smartsanhp", "0", "1: SmartSAN is on"},
};

struct KnownParameterRow {
    Parameter parameter;
    const KnownParameter* known;
};

const Fields<KnownParameterRow> kKnownParameterRow = {
    {kParameterFields, &KnownParameterRow::parameter},
    {"default", "Default", "DEFAULT", kText,
     [](const KnownParameterRow& row) { return row.known->usual; }, "what holds without a value"},
    {"meaning", "Meaning", "MEANING", kText,
     [](const KnownParameterRow& row) { return row.known->meaning; }},
};
const auto kKnownParameterList =
    ListOf("parameters", "Parameters", kKnownParameterRow, "",
           "those whose meaning is known; `driver param get` reads any");

ExitCode DriverParameterList(Invocation& invocation) {
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<KnownParameterRow> rows;
    for (const Service& service : ServicesOf(OpenablePorts(invocation, ports), false)) {
        const Device device = OpenPortOf(invocation, service);
        for (const KnownParameter& known : kKnownParameters) {
            rows.push_back(
                {{service.name, known.name, ReadParameter(invocation, device, known.name), {}},
                 &known});
        }
    }
    invocation.Result() = kKnownParameterList.Make(rows);
    return ExitCode::Done;
}

ExitCode DriverParameterGet(Invocation& invocation) {
    const std::string name = invocation.Given().Text("NAME");
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<Parameter> parameters;
    bool found = false;
    for (const Service& service : ServicesOf(OpenablePorts(invocation, ports), false)) {
        const Device device = OpenPortOf(invocation, service);
        parameters.push_back({service.name, name, ReadParameter(invocation, device, name), {}});
        found = found || parameters.back().value.has_value();
    }
    invocation.Result() = kParameterList.Make(parameters);
    if (!found) {
        invocation.Fail(ExitCode::NotFound, "no driver has a parameter \"" + name + "\"");
    }
    return ExitCode::Done;
}

ExitCode DriverParameterSet(Invocation& invocation) {
    const Setting setting = ParseSetting(invocation);
    const std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<Service> services = ServicesOf(OpenablePorts(invocation, ports), false);
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
    invocation.Result() = kParameterChangeFields.Make({service.name, setting.name, after, before});
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

CommandRows DriverCommands() {
    static const Command kCommands[] = {
        {.path = "driver show",
         .help = "show the drivers",
         .run = DriverShow,
         .example = "driver show",
         .result = ShapeOf<kServiceList>},
        {.path = "driver param list",
         .help = "list the driver parameters whose meaning is known",
         .run = DriverParameterList,
         .example = "driver param list",
         .result = ShapeOf<kKnownParameterList>},
        {.path = "driver param get",
         .help = "print a driver parameter",
         .arguments = kNameArguments,
         .run = DriverParameterGet,
         .example = "driver param get qdepth -p scsi:3",
         .result = ShapeOf<kParameterList>},
        {.path = "driver param set",
         .risk = Risk::InterruptsIo,
         .help = "set or remove a driver parameter",
         .arguments = kSettingArguments,
         .run = DriverParameterSet,
         .example = "driver param set qdepth=32 -p scsi:3",
         .result = ShapeOf<kParameterChangeFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
