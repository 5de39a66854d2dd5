// vxmgr: the command-line manager of the adapters, over the management library's public interface.
#include "commands.h"
#include "common/builtin_commands.h"
#include "diag_commands.h"
#include "dump_commands.h"
#include "fc_commands.h"
#include "library.h"
#include "scsi_commands.h"

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
    {"diag", "diagnostics"},
    {"scsi", "SCSI commands to logical units of remote ports"},
    {"fc", "requests to the fabric and to remote ports"},
    {"dump", "firmware dumps"},
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
    {"diag run", Risk::Reads, "run every check that does no harm", "vxmgr.diag.run",
     DiagRunArguments(), DiagRun},
    {"diag loopback", Risk::InterruptsIo, "have the firmware loop data and compare it",
     "vxmgr.diag.loopback", DiagLoopbackArguments(), DiagLoopback},
    {"diag dport",
     Risk::InterruptsIo,
     "run a D-port test and show its results",
     "vxmgr.diag.dport",
     {},
     DiagDport},
    {"diag mailbox", Risk::Irrecoverable, "send a raw firmware mailbox command",
     "vxmgr.diag.mailbox", DiagMailboxArguments(), DiagMailbox},
    {"scsi inquiry", Risk::Reads, "ask a logical unit what it is", "vxmgr.scsi.inquiry",
     ScsiInquiryArguments(), ScsiInquiry},
    {"scsi capacity", Risk::Reads, "ask a logical unit for its capacity", "vxmgr.scsi.capacity",
     ScsiUnitArguments(), ScsiCapacity},
    {"scsi luns", Risk::Reads, "list the logical units of a target", "vxmgr.scsi.luns",
     ScsiTargetArguments(), ScsiLuns},
    {"scsi raw", Risk::InterruptsIo, "send a SCSI command; asks unless it only reads",
     "vxmgr.scsi.raw", ScsiRawArguments(), ScsiRaw},
    {"fc names",
     Risk::Reads,
     "list what the fabric's name server knows",
     "vxmgr.fc.names",
     {},
     FabricNames},
    {"fc rnid", Risk::Reads, "ask a remote port, or the switch, what it is", "vxmgr.fc.rnid",
     FabricNodeArguments(), FabricNode},
    {"fc rls", Risk::Reads, "ask a remote port for its link errors", "vxmgr.fc.rls",
     FabricLinkErrorsArguments(), FabricLinkErrors},
    {"fc echo", Risk::Reads, "send data to a remote port and back", "vxmgr.fc.echo",
     FabricEchoArguments(), FabricEcho},
    {"fc ct", Risk::Reversible, "send a Common Transport request", "vxmgr.fc.ct",
     FabricCtArguments(), FabricCt},
    {"fc els", Risk::Reversible, "send an extended link service request", "vxmgr.fc.els",
     FabricElsArguments(), FabricEls},
    {"dump list", Risk::Reads, "which dumps there are", "vxmgr.dump.list", {}, DumpList},
    {"dump save", Risk::Reads, "fetch a dump into a file", "vxmgr.dump.save", DumpSaveArguments(),
     DumpSave},
    {"dump take",
     Risk::InterruptsIo,
     "have the firmware make a dump now",
     "vxmgr.dump.take",
     {},
     DumpTake},
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
