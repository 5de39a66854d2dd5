// vxemu.exe: starts, stops and disturbs the emulated adapters.
#include "commands.h"
#include "common/command.h"
#include "common/console.h"
#include "fault_text.h"
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

constexpr Argument kPort[] = {{.name = "PORT", .help = kPortHelp, .required = true}};
constexpr Argument kStart[] = {
    {"--profile", ArgumentKind::Text, "P", "built-in profile or JSON file (lab)"}};
constexpr Argument kProfileShow[] = {
    {"PROFILE", ArgumentKind::Text, "", "built-in profile or JSON file; without: what runs"}};
constexpr Argument kProfileFile[] = {{.name = "FILE", .help = "JSON file", .required = true}};
constexpr Argument kFaultAdd[] = {
    {.name = "PORT", .help = "scsi:N, N or all", .required = true},
    {"VALUE", ArgumentKind::Text, "",
     "milliseconds, status, detail or bytes of the action; a detail may name its driver status: "
     "11:0x4005"},
    {"--code", ArgumentKind::Text, "C", "command code or name of the request (any)"},
    {.name = "--sub",
     .kind = ArgumentKind::Number,
     .valueName = "S",
     .help = "sub-code (any)",
     .most = 0xFFFF},
    {"--after", ArgumentKind::Number, "N", "let N matching requests pass (0)"},
    {"--times", ArgumentKind::Number, "N", "act N times; 0 = always (0)"},
    {.name = "--do",
     .valueName = "ACTION",
     .help = "busy, hang MS, status S, detail D, short N, long N, lie-length or corrupt",
     .required = true},
};
constexpr Argument kFaultClear[] = {{.name = "ID",
                                     .kind = ArgumentKind::Number,
                                     .help = "the rule; without: all rules",
                                     .least = 1}};
constexpr Argument kEvent[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "KIND",
     .help =
         "lip, link-up, link-down, lip-reset, rscn, port-update, test or an event code (0x8016)",
     .required = true},
    {.name = "--data",
     .valueName = "WORD",
     .help = "a data word of the event, up to three times",
     .repeated = true},
};
constexpr Argument kLink[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "STATE", .help = "up or down", .required = true, .choices = kUpDown},
};
constexpr Argument kSet[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "ASSIGNMENT",
     .help = "NAME=VALUE, as in a profile file",
     .required = true,
     .repeated = true},
};

constexpr const char* kOnOff[] = {"on", "off"};
constexpr Argument kSwitch[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "STATE", .help = "on or off", .required = true, .choices = kOnOff},
};

constexpr const char* kRegionHelp = "code of a flash region, as `flash show` lists them";
constexpr Argument kFlashDump[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "REGION", .kind = ArgumentKind::Number, .help = kRegionHelp, .required = true},
    {.name = "FILE", .help = "file to write", .required = true},
};
constexpr Argument kFlashImage[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "REGION",
     .kind = ArgumentKind::Number,
     .help = "code of a region of firmware or boot code",
     .required = true},
    {.name = "FILE", .help = "file to write", .required = true},
    {.name = "--as",
     .valueName = "VERSION",
     .help = "version of the image: 9.13.00, or 3.62 of boot code",
     .required = true},
};
constexpr Argument kFlashCorrupt[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {.name = "REGION", .kind = ArgumentKind::Number, .help = kRegionHelp, .required = true},
    {.name = "AT",
     .kind = ArgumentKind::Number,
     .help = "offset of the byte in the region",
     .required = true},
};
constexpr Argument kFlashPowerFail[] = {
    {.name = "PORT", .help = kPortHelp, .required = true},
    {"--after-bytes", ArgumentKind::Number, "N", "bytes that are still written (0)"},
};

constexpr const char* kTargetHelp = "port name of a target: 2b:00:02:45:4d:00:01:00";
constexpr const char* kAssignmentHelp = "NAME=VALUE, as in a profile file";
constexpr Argument kTarget[] = {{.name = "TARGET", .help = kTargetHelp, .required = true}};
constexpr Argument kTargetAdd[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .repeated = true},
};
constexpr Argument kTargetSet[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .required = true, .repeated = true},
};
constexpr Argument kLun[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "LUN", .help = "number of the LUN", .required = true},
};
constexpr Argument kLunAdd[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "LUN", .help = "number of the LUN", .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .repeated = true},
};
constexpr Argument kLunSet[] = {
    {.name = "TARGET", .help = kTargetHelp, .required = true},
    {.name = "LUN", .help = "number of the LUN", .required = true},
    {.name = "ASSIGNMENT", .help = kAssignmentHelp, .required = true, .repeated = true},
};

const Command kCommands[] = {
    {"install",
     Risk::Reversible,
     "register the driver service",
     "install",
     {},
     RunInstall,
     "install",
     ServiceShape},
    {"uninstall",
     Risk::Reversible,
     "stop and remove the driver service",
     "uninstall",
     {},
     RunUninstall,
     "uninstall",
     ServiceShape},
    {"start", Risk::Reversible, "start the emulated adapters", "start", kStart, RunStart,
     "start --profile lab", StartShape},
    {"stop",
     Risk::Reversible,
     "stop the emulated adapters",
     "stop",
     {},
     RunStop,
     "stop",
     ServiceShape},
    {"status",
     Risk::Reads,
     "what runs, and what each port has served",
     "status",
     {},
     RunStatus,
     "status --json",
     StatusShape},
    {"reset", Risk::Reversible, "put a port back to its start: power, firmware, link and events",
     "reset", kPort, RunReset, "reset scsi:3", PortShape},
    {"profile list",
     Risk::Reads,
     "built-in profiles",
     "profile.list",
     {},
     RunProfileList,
     "profile list",
     ProfileListShape},
    {"profile show", Risk::Reads, "a profile as JSON", "profile.show", kProfileShow, RunProfileShow,
     "profile show lab --out my.json", ProfileShape},
    {"profile validate", Risk::Reads, "check a profile file", "profile.validate", kProfileFile,
     RunProfileValidate, "profile validate my.json", ProfileValidShape},
    {"fault add", Risk::Reversible, "let matching requests go wrong", "fault.add", kFaultAdd,
     RunFaultAdd, "fault add scsi:3 --code NodeProperties --do busy --times 2", FaultShape,
     FaultRequestNames},
    {"fault list",
     Risk::Reads,
     "fault rules and how often they acted",
     "fault.list",
     {},
     RunFaultList,
     "fault list",
     FaultListShape},
    {"fault clear", Risk::Reversible, "remove one fault rule or all", "fault.clear", kFaultClear,
     RunFaultClear, "fault clear 2", FaultClearShape},
    {"event", Risk::Reversible, "raise an adapter event", "event", kEvent, RunEvent,
     "event scsi:3 rscn --data 0x010203", EventShape},
    {"link", Risk::Reversible, "take a port's link up or down", "link", kLink, RunLink,
     "link scsi:3 down", LinkShape},
    {"adapter set", Risk::Reversible, "change values of the adapter that has this port",
     "adapter.set", kSet, RunAdapterSet, "adapter set scsi:3 firmware_version=8.1.1",
     AdapterSetShape},
    {"port set", Risk::Reversible, "change values of a port", "port.set", kSet, RunPortSet,
     "port set scsi:3 topology=public-loop", PortSetShape},
    {"target add", Risk::Reversible, "connect a target", "target.add", kTargetAdd, RunTargetAdd,
     "target add 2b:00:02:45:4d:00:aa:00 bus=1", TargetSetShape},
    {"target remove", Risk::Reversible, "take a target and its LUNs away", "target.remove", kTarget,
     RunTargetRemove, "target remove 2b:00:02:45:4d:00:aa:00", TargetShape},
    {"target set", Risk::Reversible, "change values of a target", "target.set", kTargetSet,
     RunTargetSet, "target set 2b:00:02:45:4d:00:aa:00 present=no", TargetSetShape},
    {"lun add", Risk::Reversible, "give a target a LUN", "lun.add", kLunAdd, RunLunAdd,
     "lun add 2b:00:02:45:4d:00:aa:00 7 blocks=4096", LunSetShape},
    {"lun remove", Risk::Reversible, "take a LUN and what was written to it away", "lun.remove",
     kLun, RunLunRemove, "lun remove 2b:00:02:45:4d:00:aa:00 7", LunShape},
    {"lun set", Risk::Reversible, "change values of a LUN", "lun.set", kLunSet, RunLunSet,
     "lun set 2b:00:02:45:4d:00:aa:00 7 blocks=8192", LunSetShape},
    {"flash show", Risk::Reads, "regions of an adapter's flash, and whether they are sound",
     "flash.show", kPort, RunFlashShow, "flash show scsi:3", FlashShowShape},
    {"flash dump", Risk::Reads, "write what a region holds to a file", "flash.dump", kFlashDump,
     RunFlashDump, "flash dump scsi:3 1 old.bin", FlashSavedShape},
    {"flash image", Risk::Reads, "make an image to update a region with", "flash.image",
     kFlashImage, RunFlashImage, "flash image scsi:3 1 new.bin --as 9.13.00", FlashSavedShape},
    {"flash corrupt", Risk::Reversible, "invert a byte of a region", "flash.corrupt", kFlashCorrupt,
     RunFlashCorrupt, "flash corrupt scsi:3 1 0x1000", FlashCorruptShape},
    {"flash power-fail", Risk::Reversible,
     "let the adapter's power fail during a write; reset one of its ports to end that",
     "flash.power_fail", kFlashPowerFail, RunFlashPowerFail,
     "flash power-fail scsi:3 --after-bytes 70000", PowerFailShape},
    {"lockdown", Risk::Reversible, "let the adapter refuse every change of what it stores",
     "lockdown", kSwitch, RunLockdown, "lockdown scsi:3 on", LockdownShape},
    {"bfs", Risk::Reversible, "put the system's boot disk behind a port", "bfs", kSwitch,
     RunBootFromSan, "bfs scsi:3 on", BootFromSanShape},
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
