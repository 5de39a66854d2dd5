// nvram set, nvram import, nvram activate.
#include <algorithm>

#include "vxmgr/commands.h"
#include "vxmgr/settings/nvram_file.h"
#include "vxmgr/settings/nvram_records.h"
#include "vxmgr/settings/settings_store.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

constexpr size_t kRowsInQuestion = 12;

constexpr Argument kActivateArgument =
    FlagOption("--activate", "have the firmware read it at once: restarts the port");
constexpr Argument kBackupArgument =
    TextOption("--backup", "FILE", "first write an export of the block as it is");
constexpr Argument kSetArguments[] = {
    {.name = "SETTING",
     .help = "NAME=VALUE: a variable by number, name or start of its name",
     .required = true,
     .repeated = true},
    TextOption("--bank", "BANK",
               "what to start from: the settings in use, or those of the other bank (in-use)",
               kBankChoices),
    kActivateArgument,
    kBackupArgument,
};
constexpr Argument kImportArguments[] = {
    {.name = "FILE", .help = "a document or text of `nvram export`", .required = true},
    FlagOption("--as-port",
               "take the settings of another port's document; names and board IDs stay"),
    kActivateArgument,
    kBackupArgument,
};

// What was changed, or would be, and what came of it.
struct NvramChanged {
    const PortNvram* before;
    NvramDifference difference;
    bool stored = false;
    bool active = false;
};

const Fields<NvramChanged> kNvramChangeFields = {
    {kSettingsWrittenFields, &NvramChanged::before},
    {kChangeFields, &NvramChanged::difference},
    {"stored", "Stored", kFlag, &NvramChanged::stored, "written and read back"},
    {"active", "In use", kFlag, &NvramChanged::active, "the firmware uses it"},
};

struct Restart {
    const PortNvram* before;
    const PortNvram* after;
    bool restarted;
};

const Fields<Restart> kRestartFields = {
    {PortKeys(), [](const Restart& one) { return &one.before->ItsPort(); }},
    {"bank_before", "Bank before", kBank, [](const Restart& one) { return one.before->Bank(); },
     "null on chips with one bank"},
    {"bank", "Bank", kBank, [](const Restart& one) { return one.after->Bank(); },
     "null on chips with one bank"},
    {"restarted", "Restarted", kFlag, &Restart::restarted},
};

// What the question says of the change.
std::vector<std::string> LinesOf(const NvramDifference& difference) {
    std::vector<std::string> lines;
    for (size_t i = 0; i < difference.changes.size() && i < kRowsInQuestion; ++i) {
        const NvramChange& change = difference.changes[i];
        lines.push_back("  " + change.variable->name + ": " +
                        ShownValue(*change.variable, change.before) + " -> " +
                        ShownValue(*change.variable, change.after));
    }
    if (difference.changes.size() > kRowsInQuestion) {
        lines.push_back("  and " + std::to_string(difference.changes.size() - kRowsInQuestion) +
                        " more: see them with --dry-run");
    }
    if (difference.otherBytes != 0) {
        lines.push_back("  and " + std::to_string(difference.otherBytes) +
                        " bytes that belong to no variable");
    }
    return lines;
}

// A change that waits in the other bank would be lost without a word. Whether it waits, or is what
// was in use before, cannot be told.
void WarnOfOtherBank(Invocation& invocation, const PortNvram& nvram,
                     const std::vector<uint8_t>& other) {
    if (!nvram.bank || nvram.fromOther || !IsSound(nvram.map.kind, other)) {
        return;
    }
    const NvramDifference difference = DifferenceOf(nvram.map, nvram.bytes, other);
    if (!difference.Equal()) {
        invocation.Warn("the " + std::string(nvram.bank->Name()) + " bank holds other settings (" +
                            std::to_string(difference.changes.size()) +
                            " variables differ): they are replaced, also if they wait for a reset",
                        "--bank other starts from them instead");
    }
}

bool WriteNvram(Invocation& invocation, const PortNvram& before, std::vector<uint8_t> replaced,
                std::vector<uint8_t>& block) {
    const auto write = [](uint32_t handle, std::vector<uint8_t>& image) {
        return HXUpdateNVRam(handle, 0, HX_NVRAM_BLOCK, image.data(),
                             static_cast<uint32_t>(image.size()));
    };
    return WriteSettings(invocation, {"the NVRAM", before, std::move(replaced), write}, block);
}

void SaveBackup(Invocation& invocation, const PortNvram& nvram) {
    const std::string path = invocation.Given().Text("backup");
    if (!path.empty()) {
        SaveNvramDocument(invocation, nvram, path);
        invocation.Note("the block as it is was saved to " + path);
    }
}

// A reset in vain, or one that the port does not come back from.
[[noreturn]] void RefuseDamaged(Invocation& invocation, const char* which) {
    invocation.Fail(ExitCode::Refused,
                    std::string("signature or checksum of the block ") + which +
                        " are wrong: the port was not restarted",
                    "`nvram import` writes an export again");
}

// The block that the firmware will use behind a restart: on chips with two banks the one of the
// other bank if it waits, which only the restart shows.
void CheckBlocks(Invocation& invocation, const PortSession& session, const PortNvram& nvram) {
    if (!nvram.IsWhole()) {
        RefuseDamaged(invocation, "in use");
    }
    std::vector<uint8_t> other;
    if (nvram.bank && ReadBank(session, *nvram.bank, &other) == HXMGT_SUCCESS && !IsBlank(other) &&
        !IsSound(nvram.map.kind, other)) {
        RefuseDamaged(invocation, "in the other bank");
    }
}

// Not while another program writes to the adapter.
HX_STATUS RestartPort(Invocation& invocation, const PortSession& session) {
    const UpdateLock lock(invocation, session);
    invocation.Progress("restarting the port's firmware");
    return HXReloadNvramAndInitFw(session.Handle());
}

// Restarts the port's firmware and looks whether it uses the block. Reports what went wrong.
ExitCode ActivateNvram(Invocation& invocation, const PortSession& session, NvramKind kind,
                       const std::vector<uint8_t>& block) {
    const HX_STATUS status = RestartPort(invocation, session);
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "written, but the firmware did not take it over",
                                 session.port.Object());
    }
    std::vector<uint8_t> now;
    if (const HX_STATUS read = ReadBlock(session.Handle(), kind, &now); read != HXMGT_SUCCESS) {
        invocation.Report(read, "written and activated, but the NVRAM cannot be read",
                          session.port.Object());
        return ExitCode::NotProven;
    }
    if (now != block) {
        Complain(invocation, session.port.Object(),
                 "the firmware restarted, but uses other settings than were written",
                 "compare `nvram show` with `nvram show --bank other`");
        return ExitCode::NotProven;
    }
    return ExitCode::Done;
}

// Shows the difference, asks, writes, proves, and activates where that was asked for. before: the
// block that `block` was made from; when they are equal, there is nothing to do.
ExitCode ChangeNvram(Invocation& invocation, const PortNvram& before, std::vector<uint8_t> block,
                     const std::string& action) {
    const PortSession& session = *before.session;
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    const bool activate = invocation.Given().Has("activate");
    NvramChanged changed{&before, DifferenceOf(before.map, before.bytes, block)};
    // A checksum that is made good is a change as well.
    const bool needed = block != before.bytes;
    ExitCode exit = ExitCode::Done;
    if (needed) {
        std::vector<uint8_t> replaced = ReadReplaced(before);
        WarnOfOtherBank(invocation, before, replaced);
        if (!invocation.DryRun()) {
            ConfirmUpdate(invocation, session, outlook, action,
                          WhereItGoes(before.bank) +
                              (activate ? " The port restarts at once: I/O through it stops for a "
                                          "while."
                                        : " Nothing stops now.") +
                              " Wrong settings can keep the port from working.",
                          LinesOf(changed.difference));
            SaveBackup(invocation, before);
            invocation.CheckStop();
            exit = WriteNvram(invocation, before, std::move(replaced), block)
                       ? ExitCodeOf(invocation.Stop().Reason())
                       : ExitCode::Done;
            changed.stored = true;
            if (activate && exit == ExitCode::Done) {
                exit = ActivateNvram(invocation, session, before.map.kind, block);
                changed.active = exit == ExitCode::Done;
            }
        }
    }
    invocation.Result() = kNvramChangeFields.Make(changed);
    if (!needed) {
        invocation.Note("nothing to do");
    } else if (!changed.stored) {
        invocation.Note("dry run: nothing was written");
    } else if (!changed.active) {
        invocation.AddPending({session.port.Object(), "port_reset",
                               "stored and read back, pending: the firmware uses it from the "
                               "port's next reset on, or from `nvram activate` on"});
    }
    return exit;
}

ExitCode ExitOf(SettingFault fault) {
    return fault == SettingFault::Usage          ? ExitCode::Usage
           : fault == SettingFault::NotSupported ? ExitCode::NotSupported
                                                 : ExitCode::Refused;
}

void ApplySettings(Invocation& invocation, const NvramMap& map, std::vector<uint8_t>& block) {
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

ExitCode NvramSet(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram before = ReadNvram(invocation, session, WantsOtherBank(invocation));
    std::vector<uint8_t> block = before.bytes;
    ApplySettings(invocation, before.map, block);
    // A checksum made over a damaged block would hide the damage.
    if (!before.IsWhole()) {
        invocation.Fail(ExitCode::Refused,
                        "signature or checksum of the block are wrong: nothing was written",
                        "`nvram import` writes an export again");
    }
    MakeChecksum(before.map.kind, block);
    return ChangeNvram(invocation, before, std::move(block), "Change NVRAM settings.");
}

ExitCode NvramImport(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram before = ReadNvram(invocation, session, false);
    std::vector<uint8_t> block = LoadNvramFile(invocation, before, FileUse::Write);
    return ChangeNvram(invocation, before, std::move(block), "Import NVRAM settings from a file.");
}

ExitCode NvramActivate(Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram before = ReadNvram(invocation, session, false);
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    CheckBlocks(invocation, session, before);
    if (invocation.DryRun()) {
        invocation.Result() = kRestartFields.Make({&before, &before, false});
        return invocation.DoneWith("dry run: the port would restart");
    }
    ConfirmUpdate(invocation, session, outlook,
                  "Restart the port, so that its firmware uses the settings that were written.",
                  "I/O through the port stops for a while.");
    invocation.Require(RestartPort(invocation, session), "the port did not restart",
                       session.port.Object());
    invocation.Changed();
    const PortNvram after = ReadNvram(invocation, session, false);
    invocation.Result() = kRestartFields.Make({&before, &after, true});
    if (before.bank && after.bank && before.bank->second == after.bank->second) {
        invocation.Note("no settings waited: the bank in use is the same");
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows NvramChangeCommands() {
    static const Command kCommands[] = {
        {.path = "nvram set",
         .risk = Risk::Irrecoverable,
         .help = "change settings",
         .schema = "nvram.change",
         .arguments = kSetArguments,
         .run = NvramSet,
         .example = "nvram set execution_throttle=1000 -p scsi:3 --dry-run",
         .result = ShapeOf<kNvramChangeFields>},
        {.path = "nvram import",
         .risk = Risk::Irrecoverable,
         .help = "take the settings from a file",
         .schema = "nvram.change",
         .arguments = kImportArguments,
         .run = NvramImport,
         .example = "nvram import settings.json -p scsi:3 --dry-run",
         .result = ShapeOf<kNvramChangeFields>},
    };
    return kCommands;
}

CommandRows NvramActivateCommands() {
    static const Command kCommands[] = {
        {.path = "nvram activate",
         .risk = Risk::InterruptsIo,
         .help = "have the firmware use what was written: restarts the port",
         .run = NvramActivate,
         .example = "nvram activate -p scsi:3",
         .result = ShapeOf<kRestartFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
