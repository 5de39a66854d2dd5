// metrics
#include <chrono>
#include <map>

#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/health/health_ports.h"
#include "vxmgr/health/metrics_table.h"

namespace vxmgr {
namespace {

constexpr Argument kMetricsArguments[] = {
    TextOption("--format", "FORMAT", "the form of the text (prometheus)", kMetricsFormats),
    FlagOption("--skip-code", "leave out what takes the longest: the code in the flash"),
};

const Fields<std::string> kMetricsFields = {
    FieldRow<std::string>::Raw("metrics", kText, [](const std::string& text) { return text; }),
};

template <auto member>
std::string NodeTextOf(const Port& port) {
    return port.node ? TextOf<member>(*port.node) : std::string();
}

std::string PortIdText(const Port& port) {
    const Value id = PortIdValue(port);
    const std::string* const text = std::get_if<std::string>(&id.Content());
    return text != nullptr ? *text : std::string();
}

std::vector<MetricLabel> IdentityOf(const Port& port) {
    return {
        {"node_wwn", port.node ? Wwn::Of(port.node->nodeName).Digits() : std::string(),
         Secret::Wwn},
        {"port_id", PortIdText(port)},
        {"model", NodeTextOf<&HX_NODE_PROPERTY::model>(port)},
        {"description", NodeTextOf<&HX_NODE_PROPERTY::modelDescription>(port)},
        {"firmware", NodeTextOf<&HX_NODE_PROPERTY::firmwareVersion>(port)},
        {"driver", NodeTextOf<&HX_NODE_PROPERTY::driverVersion>(port)},
        {"driver_service", port.driverService},
    };
}

using Clock = std::chrono::system_clock;

double SecondsIn(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

ExitCode ShowMetrics(Invocation& invocation) {
    const auto begin = Clock::now();
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    const std::vector<PortHealth> health =
        ReadHealth(invocation, ports, {.code = !invocation.Given().Has("skip-code")});
    std::map<std::string, const AdapterReading*> adapters;
    for (const PortHealth& one : health) {
        if (one.reading.adapter) {
            adapters.try_emplace(one.port->Serial(), &*one.reading.adapter);
        }
    }
    MetricsSource source;
    for (const PortHealth& one : health) {
        MetricPort& port = source.ports.emplace_back();
        port.scsiPort = one.port->scsiPort;
        port.serial = one.port->Serial();
        port.portName = PortNameOf(*one.port);
        port.identity = IdentityOf(*one.port);
        port.reading = &one.reading;
        port.findings = one.findings;
        const auto shared = adapters.find(port.serial);
        port.adapter = one.reading.adapter                               ? &*one.reading.adapter
                       : port.serial.empty() || shared == adapters.end() ? nullptr
                                                                         : shared->second;
    }
    source.versions = {{"version", kToolVersion}, {"library", LibraryVersion()}};
    source.begin = SecondsIn(begin.time_since_epoch());
    source.duration = SecondsIn(Clock::now() - begin);
    const bool open = invocation.Given().Text("format") == kMetricsFormats[1];
    invocation.Result() = kMetricsFields.Make(MakeMetrics(
        source, open ? MetricsFormat::OpenMetrics : MetricsFormat::Prometheus, invocation.Names()));
    return ExitCode::Done;
}

std::string MetricsNotes() {
    return "The file of --out is replaced when all is there, so that nobody reads half of it: name "
           "one with the ending .prom in the folder of a textfile collector. A port that does not "
           "answer has fibrechannel_up 0; the exit code is 0 then, too.";
}

}  // namespace

CommandRows MetricsCommands() {
    static const Command kCommands[] = {
        {.path = "metrics",
         .help = "print counters, states and versions of the ports for Prometheus",
         .arguments = kMetricsArguments,
         .run = ShowMetrics,
         .example = "metrics --out fibrechannel.prom",
         .result = ShapeOf<kMetricsFields>,
         .notes = MetricsNotes,
         .wholeFile = true},
    };
    return kCommands;
}

}  // namespace vxmgr
