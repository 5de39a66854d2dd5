// vxemu.exe: starts, stops and disturbs the emulated adapters.
#include "commands.h"
#include "common/builtin_commands.h"
#include "common/command.h"
#include "common/console.h"
#include "hxstatus.h"

namespace vxemu {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::Command;
using tools::CommandGroup;
using tools::Risk;

constexpr const char* kPortHelp = "port of the emulated adapters: scsi:N or N";
constexpr const char* kUpDown[] = {"up", "down"};

constexpr Argument kPort[] = {{"PORT", ArgumentKind::Text, "", kPortHelp, true}};
constexpr Argument kStart[] = {
    {"--profile", ArgumentKind::Text, "P", "built-in profile or JSON file (lab)"}};
constexpr Argument kProfileShow[] = {
    {"PROFILE", ArgumentKind::Text, "", "built-in profile or JSON file; without: what runs"}};
constexpr Argument kProfileFile[] = {{"FILE", ArgumentKind::Text, "", "JSON file", true}};
constexpr Argument kFaultAdd[] = {
    {"PORT", ArgumentKind::Text, "", "scsi:N, N or all", true},
    {"VALUE", ArgumentKind::Text, "",
     "milliseconds, status, detail or bytes of the action; a detail may name its driver status: "
     "11:0x4005"},
    {"--code", ArgumentKind::Text, "C", "command code or name of the request (any)"},
    {"--sub", ArgumentKind::Number, "S", "sub-code (any)", false, false, {}, 0, 0xFFFF},
    {"--after", ArgumentKind::Number, "N", "let N matching requests pass (0)"},
    {"--times", ArgumentKind::Number, "N", "act N times; 0 = always (0)"},
    {"--do", ArgumentKind::Text, "ACTION",
     "busy, hang MS, status S, detail D, short N, long N, lie-length or corrupt", true},
};
constexpr Argument kFaultClear[] = {
    {"ID", ArgumentKind::Number, "", "the rule; without: all rules", false, false, {}, 1}};
constexpr Argument kEvent[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"KIND", ArgumentKind::Text, "",
     "lip, link-up, link-down, lip-reset, rscn, port-update, test or an event code (0x8016)", true},
    {"--data", ArgumentKind::Text, "WORD", "a data word of the event, up to three times", false,
     true},
};
constexpr Argument kLink[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"STATE", ArgumentKind::Text, "", "up or down", true, false, kUpDown},
};
constexpr Argument kSet[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"ASSIGNMENT", ArgumentKind::Text, "", "NAME=VALUE, as in a profile file", true, true},
};

constexpr const char* kOnOff[] = {"on", "off"};
constexpr Argument kSwitch[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"STATE", ArgumentKind::Text, "", "on or off", true, false, kOnOff},
};

constexpr const char* kRegionHelp = "code of a flash region, as `flash show` lists them";
constexpr Argument kFlashDump[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"REGION", ArgumentKind::Number, "", kRegionHelp, true},
    {"FILE", ArgumentKind::Text, "", "file to write", true},
};
constexpr Argument kFlashImage[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"REGION", ArgumentKind::Number, "", "code of a region of firmware or boot code", true},
    {"FILE", ArgumentKind::Text, "", "file to write", true},
    {"--as", ArgumentKind::Text, "VERSION", "version of the image: 9.13.00, or 3.62 of boot code",
     true},
};
constexpr Argument kFlashCorrupt[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"REGION", ArgumentKind::Number, "", kRegionHelp, true},
    {"AT", ArgumentKind::Number, "", "offset of the byte in the region", true},
};
constexpr Argument kFlashPowerFail[] = {
    {"PORT", ArgumentKind::Text, "", kPortHelp, true},
    {"--after-bytes", ArgumentKind::Number, "N", "bytes that are still written (0)"},
};

constexpr const char* kTargetHelp = "port name of a target: 2b:00:02:45:4d:00:01:00";
constexpr const char* kAssignmentHelp = "NAME=VALUE, as in a profile file";
constexpr Argument kTarget[] = {{"TARGET", ArgumentKind::Text, "", kTargetHelp, true}};
constexpr Argument kTargetAdd[] = {
    {"TARGET", ArgumentKind::Text, "", kTargetHelp, true},
    {"ASSIGNMENT", ArgumentKind::Text, "", kAssignmentHelp, false, true},
};
constexpr Argument kTargetSet[] = {
    {"TARGET", ArgumentKind::Text, "", kTargetHelp, true},
    {"ASSIGNMENT", ArgumentKind::Text, "", kAssignmentHelp, true, true},
};
constexpr Argument kLun[] = {
    {"TARGET", ArgumentKind::Text, "", kTargetHelp, true},
    {"LUN", ArgumentKind::Text, "", "number of the LUN", true},
};
constexpr Argument kLunAdd[] = {
    {"TARGET", ArgumentKind::Text, "", kTargetHelp, true},
    {"LUN", ArgumentKind::Text, "", "number of the LUN", true},
    {"ASSIGNMENT", ArgumentKind::Text, "", kAssignmentHelp, false, true},
};
constexpr Argument kLunSet[] = {
    {"TARGET", ArgumentKind::Text, "", kTargetHelp, true},
    {"LUN", ArgumentKind::Text, "", "number of the LUN", true},
    {"ASSIGNMENT", ArgumentKind::Text, "", kAssignmentHelp, true, true},
};

const Command kCommands[] = {
    {"install", Risk::Reversible, "register the driver service", "vxemu.install", {}, RunInstall},
    {"uninstall",
     Risk::Reversible,
     "stop and remove the driver service",
     "vxemu.uninstall",
     {},
     RunUninstall},
    {"start", Risk::Reversible, "start the emulated adapters", "vxemu.start", kStart, RunStart},
    {"stop", Risk::Reversible, "stop the emulated adapters", "vxemu.stop", {}, RunStop},
    {"status",
     Risk::Reads,
     "what runs, and what each port has served",
     "vxemu.status",
     {},
     RunStatus},
    {"reset", Risk::Reversible, "put a port back to its start: power, firmware, link and events",
     "vxemu.reset", kPort, RunReset},
    {"profile list", Risk::Reads, "built-in profiles", "vxemu.profile.list", {}, RunProfileList},
    {"profile show", Risk::Reads, "a profile as JSON", "vxemu.profile.show", kProfileShow,
     RunProfileShow},
    {"profile validate", Risk::Reads, "check a profile file", "vxemu.profile.validate",
     kProfileFile, RunProfileValidate},
    {"fault add", Risk::Reversible, "let matching requests go wrong", "vxemu.fault.add", kFaultAdd,
     RunFaultAdd},
    {"fault list",
     Risk::Reads,
     "fault rules and how often they acted",
     "vxemu.fault.list",
     {},
     RunFaultList},
    {"fault clear", Risk::Reversible, "remove one fault rule or all", "vxemu.fault.clear",
     kFaultClear, RunFaultClear},
    {"event", Risk::Reversible, "raise an adapter event", "vxemu.event", kEvent, RunEvent},
    {"link", Risk::Reversible, "take a port's link up or down", "vxemu.link", kLink, RunLink},
    {"adapter set", Risk::Reversible, "change values of the adapter that has this port",
     "vxemu.adapter.set", kSet, RunAdapterSet},
    {"port set", Risk::Reversible, "change values of a port", "vxemu.port.set", kSet, RunPortSet},
    {"target add", Risk::Reversible, "connect a target", "vxemu.target.add", kTargetAdd,
     RunTargetAdd},
    {"target remove", Risk::Reversible, "take a target and its LUNs away", "vxemu.target.remove",
     kTarget, RunTargetRemove},
    {"target set", Risk::Reversible, "change values of a target", "vxemu.target.set", kTargetSet,
     RunTargetSet},
    {"lun add", Risk::Reversible, "give a target a LUN", "vxemu.lun.add", kLunAdd, RunLunAdd},
    {"lun remove", Risk::Reversible, "take a LUN and what was written to it away",
     "vxemu.lun.remove", kLun, RunLunRemove},
    {"lun set", Risk::Reversible, "change values of a LUN", "vxemu.lun.set", kLunSet, RunLunSet},
    {"flash show", Risk::Reads, "regions of an adapter's flash, and whether they are sound",
     "vxemu.flash.show", kPort, RunFlashShow},
    {"flash dump", Risk::Reads, "write what a region holds to a file", "vxemu.flash.dump",
     kFlashDump, RunFlashDump},
    {"flash image", Risk::Reads, "make an image to update a region with", "vxemu.flash.image",
     kFlashImage, RunFlashImage},
    {"flash corrupt", Risk::Reversible, "invert a byte of a region", "vxemu.flash.corrupt",
     kFlashCorrupt, RunFlashCorrupt},
    {"flash power-fail", Risk::Reversible,
     "let the adapter's power fail during a write; reset one of its ports to end that",
     "vxemu.flash.power_fail", kFlashPowerFail, RunFlashPowerFail},
    {"lockdown", Risk::Reversible, "let the adapter refuse every change of what it stores",
     "vxemu.lockdown", kSwitch, RunLockdown},
    {"bfs", Risk::Reversible, "put the system's boot disk behind a port", "vxemu.bfs", kSwitch,
     RunBootFromSan},
    {"explain", Risk::Reads, "the meaning of a status or exit code", "vxemu.explain",
     tools::ExplainArguments(), tools::RunExplain},
    {"completion", Risk::Reads, "shell completion script", "vxemu.completion",
     tools::CompletionArguments(), tools::RunCompletion},
    {"version", Risk::Reads, "version of this tool", "vxemu.version", {}, tools::RunVersion},
};

constexpr CommandGroup kGroups[] = {
    {"profile", "descriptions of emulated adapters"},
    {"fault", "requests that go wrong"},
    {"adapter", "values of a running adapter"},
    {"port", "values of a running port"},
    {"target", "what the running ports are connected to"},
    {"lun", "disks of a target"},
    {"flash", "flash of the running adapters"},
};

// Texts of the library's statuses, which the drivers of the adapters lead to, and of Windows.
std::string StatusText(uint32_t code) {
    switch (code) {
#define VX_TEXT(name, number, text) \
    case number:                    \
        return text;
        HX_STATUS_TABLE(VX_TEXT)
#undef VX_TEXT
        default:
            return tools::console::SystemErrorText(code);
    }
}

}  // namespace
}  // namespace vxemu

int main() {
    tools::Tool tool = {};
    tool.name = "vxemu";
    tool.version = "1.0.0";
    tool.summary = "Control of the emulated Fibre Channel adapters.";
    tool.commands = vxemu::kCommands;
    tool.groups = vxemu::kGroups;
    tool.statusText = vxemu::StatusText;
    tool.dryRunNote = "dry run: nothing was changed";
    return tools::RunTool(tool);
}
