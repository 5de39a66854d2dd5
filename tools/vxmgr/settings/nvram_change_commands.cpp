// nvram set, nvram import.
#include <algorithm>

#include "vxmgr/settings/commands.h"
#include "vxmgr/settings/nvram_change.h"
#include "vxmgr/settings/nvram_file.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;

constexpr Argument kSetArguments[] = {
    {.name = "SETTING",
     .help = "NAME=VALUE: a variable by number, name or start of its name",
     .required = true,
     .repeated = true},
    {.name = "--bank",
     .valueName = "BANK",
     .help = "what to start from: the settings in use, or those of the other bank (in-use)",
     .choices = kBankChoices},
    kActivateArgument,
    kBackupArgument,
};
constexpr Argument kImportArguments[] = {
    {.name = "FILE", .help = "a document or text of `nvram export`", .required = true},
    {"--as-port", ArgumentKind::Flag, "",
     "take the settings of another port's document; names and board IDs stay"},
    kActivateArgument,
    kBackupArgument,
};

ExitCode ExitOf(SettingFault fault) {
    return fault == SettingFault::Usage          ? ExitCode::Usage
           : fault == SettingFault::NotSupported ? ExitCode::NotSupported
                                                 : ExitCode::Refused;
}

void ApplySettings(tools::Invocation& invocation, const NvramMap& map,
                   std::vector<uint8_t>& block) {
    std::vector<const NvramVariable*> met;
    for (const std::string& text : invocation.Given().All("SETTING")) {
        NvramSetting setting;
        std::string error;
        const SettingFault fault = ParseSetting(map, text, &setting, &error);
        if (fault != SettingFault::None) {
            invocation.Fail(ExitOf(fault), error, "`nvram show` lists the variables");
        }
        if (std::find(met.begin(), met.end(), setting.variable) != met.end()) {
            invocation.Fail(ExitCode::Usage, setting.variable->name + " is given twice");
        }
        met.push_back(setting.variable);
        SetValue(block, *setting.variable, setting.value);
    }
}

ExitCode NvramSet(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram before = ReadNvram(invocation, session, WantsOtherBank(invocation));
    std::vector<uint8_t> block = before.block;
    ApplySettings(invocation, before.map, block);
    // A checksum made over a damaged block would hide the damage.
    if (!IsSound(before.map.kind, before.block)) {
        invocation.Fail(ExitCode::Refused,
                        "signature or checksum of the block are wrong: nothing was written",
                        "`nvram import` writes an export again");
    }
    MakeChecksum(before.map.kind, block);
    return ChangeNvram(invocation, session, before, std::move(block), "Change NVRAM settings.");
}

ExitCode NvramImport(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram before = ReadNvram(invocation, session, false);
    std::vector<uint8_t> block = LoadNvramFile(invocation, session, before, FileUse::Write);
    return ChangeNvram(invocation, session, before, std::move(block),
                       "Import NVRAM settings from a file.");
}

}  // namespace

tools::CommandRows NvramChangeCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "nvram set",
            .risk = tools::Risk::Irrecoverable,
            .help = "change settings",
            .schema = "nvram.change",
            .arguments = kSetArguments,
            .run = NvramSet,
            .example = "nvram set execution_throttle=1000 -p scsi:3 --dry-run",
        },
        {
            .path = "nvram import",
            .risk = tools::Risk::Irrecoverable,
            .help = "take the settings from a file",
            .schema = "nvram.change",
            .arguments = kImportArguments,
            .run = NvramImport,
            .example = "nvram import settings.json -p scsi:3 --dry-run",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
