// vxemu.exe: starts, stops and disturbs the emulated adapters.
#include "commands.h"
#include "common/console.h"
#include "hxstatus.h"

namespace vxemu {
namespace {

// The order of the help.
constexpr CommandRows (*kFiles[])() = {
    ServiceCommands, StatusCommands, PortCommands,    AdapterCommands, ProfileCommands,
    FaultCommands,   TargetCommands, CounterCommands, TraceCommands,   FlashCommands,
};

constexpr CommandGroup kGroups[] = {
    {"profile", "descriptions of emulated adapters"},
    {"fault", "requests that go wrong"},
    {"adapter", "the running adapters"},
    {"port", "values of a running port"},
    {"target", "what the running ports are connected to"},
    {"lun", "disks of a target"},
    {"stats", "counters of the running ports"},
    {"trace", "what the running ports are asked"},
    {"flash", "flash of the running adapters"},
};

// Texts of the library's statuses, which the drivers of the adapters lead to, and of Windows.
std::string TextOfStatus(uint32_t code) {
    switch (code) {
#define VX_TEXT(name, number, text) \
    case number:                    \
        return text;
        HX_STATUS_TABLE(VX_TEXT)
#undef VX_TEXT
        default:
            return console::SystemErrorText(code);
    }
}

}  // namespace
}  // namespace vxemu

int main() {
    const std::vector<tools::Command> commands = tools::Joined(vxemu::kFiles);
    const tools::Tool tool{
        .name = "vxemu",
        .version = tools::kToolVersion,
        .summary = "Control of the emulated Fibre Channel adapters.",
        .commands = commands,
        .groups = vxemu::kGroups,
        .statusText = vxemu::TextOfStatus,
        .dryRunNote = "dry run: nothing was changed",
    };
    return tools::RunTool(tool);
}
