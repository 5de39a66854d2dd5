// vxmgr: the command-line manager of the adapters, over the management library's public interface.
#include "commands.h"
#include "common/builtin_commands.h"
#include "library.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::Command;
using tools::Risk;

constexpr Argument kOptions[] = {
    {"-a,--adapter", ArgumentKind::Text, "SEL",
     "adapter: serial:TEXT, wwn:..., index:N, scsi:N, all, a name or a serial number"},
    {"-p,--port", ArgumentKind::Text, "SEL", "port: the same"},
    {"--trace", ArgumentKind::Text, "FILE", "append the library's trace to a file"},
};

constexpr tools::CommandGroup kGroups[] = {
    {"adapter", "adapters: the ports that share a serial number"},
    {"port", "Fibre Channel ports"},
    {"event", "events that adapters report"},
    {"smartsan", "the SmartSAN switch of the driver"},
    {"driver", "drivers and their parameters"},
    {"driver param", "parameters that a driver reads at its start"},
};

const Command kCommands[] = {
    {"adapter list", Risk::Reads, "list the adapters", "vxmgr.adapter.list", {}, AdapterList},
    {"adapter show",
     Risk::Reads,
     "show adapters in detail, with their ports",
     "vxmgr.adapter.show",
     {},
     AdapterShow},
    {"port list", Risk::Reads, "list the ports", "vxmgr.port.list", {}, PortList},
    {"port show", Risk::Reads, "show ports in detail", "vxmgr.port.show", {}, PortShow},
    {"event watch", Risk::Reads, "print events as they come", "vxmgr.event.watch",
     EventWatchArguments(), EventWatch},
    {"event test",
     Risk::Reversible,
     "have an adapter report a test event",
     "vxmgr.event.test",
     {},
     EventTest},
    {"smartsan get", Risk::Reads, "is SmartSAN on?", "vxmgr.smartsan.get", {}, SmartSanGet},
    {"smartsan on",
     Risk::Reversible,
     "switch SmartSAN on from the driver's next start",
     "vxmgr.smartsan.set",
     {},
     SmartSanOn},
    {"smartsan off",
     Risk::Reversible,
     "switch SmartSAN off from the driver's next start",
     "vxmgr.smartsan.set",
     {},
     SmartSanOff},
    {"driver show", Risk::Reads, "show the drivers", "vxmgr.driver.show", {}, DriverShow},
    {"driver param get", Risk::Reads, "print a driver parameter", "vxmgr.driver.param.get",
     ParameterNameArguments(), DriverParameterGet},
    {"driver param set", Risk::InterruptsIo, "set or remove a driver parameter",
     "vxmgr.driver.param.set", ParameterSettingArguments(), DriverParameterSet},
    {"explain", Risk::Reads, "explain a status, or the exit codes", "vxmgr.explain",
     tools::ExplainArguments(), tools::RunExplain},
    {"completion", Risk::Reads, "print a completion script for a shell", "vxmgr.completion",
     tools::CompletionArguments(), tools::RunCompletion},
    {"version",
     Risk::Reads,
     "print the versions of tool and library",
     "vxmgr.version",
     {},
     tools::RunVersion},
};

}  // namespace
}  // namespace vxmgr

int main() {
    const tools::Tool tool{
        "vxmgr",
        "1.0.0",
        "Manages Fibre Channel host bus adapters.",
        vxmgr::kCommands,
        vxmgr::kGroups,
        vxmgr::kOptions,
        vxmgr::LibraryVersion,
        vxmgr::StatusMessage,
    };
    return tools::RunTool(tool);
}
