// Also nvram activate.
#include "vxmgr/settings/nvram_activate.h"

#include "vxmgr/settings/commands.h"
#include "vxmgr/settings/nvram_port.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_lock.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Record;
using tools::Severity;
using tools::Value;

// A reset in vain, or one that the port does not come back from.
[[noreturn]] void RefuseDamaged(tools::Invocation& invocation, const char* which) {
    invocation.Fail(ExitCode::Refused,
                    std::string("signature or checksum of the block ") + which +
                        " are wrong: the port was not restarted",
                    "`nvram import` writes an export again");
}

// The block that the firmware will use behind a restart: on chips with two banks the one of the
// other bank if it waits, which only the restart shows.
void CheckBlocks(tools::Invocation& invocation, const PortSession& session,
                 const PortNvram& nvram) {
    if (!IsSound(nvram.map.kind, nvram.block)) {
        RefuseDamaged(invocation, "in use");
    }
    std::vector<uint8_t> other;
    if (nvram.bank && ReadBank(session, *nvram.bank, &other) == HXMGT_SUCCESS && !IsBlank(other) &&
        !IsSound(nvram.map.kind, other)) {
        RefuseDamaged(invocation, "in the other bank");
    }
}

// Not while another program writes to the adapter.
HX_STATUS RestartPort(tools::Invocation& invocation, const PortSession& session) {
    const UpdateLock lock(invocation, session);
    invocation.Progress("restarting the port's firmware");
    return HXReloadNvramAndInitFw(session.Handle());
}

}  // namespace

ExitCode ActivateNvram(tools::Invocation& invocation, const PortSession& session, NvramKind kind,
                       const std::vector<uint8_t>& block) {
    const HX_STATUS status = RestartPort(invocation, session);
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "written, but the firmware did not take it over",
                                 session.port.Object());
    }
    std::vector<uint8_t> now;
    if (const HX_STATUS read = ReadBlock(session, kind, &now); read != HXMGT_SUCCESS) {
        invocation.Report(read, "written and activated, but the NVRAM cannot be read",
                          session.port.Object());
        return ExitCode::NotProven;
    }
    if (now != block) {
        invocation.Add({Severity::Error,
                        "the firmware restarted, but uses other settings than were written",
                        "compare `nvram show` with `nvram show --bank other`",
                        session.port.Object(),
                        {}});
        return ExitCode::NotProven;
    }
    return ExitCode::Done;
}

namespace {

ExitCode NvramActivate(tools::Invocation& invocation) {
    const PortSession session = OpenSelectedPort(invocation);
    const PortNvram before = ReadNvram(invocation, session, false);
    const UpdateOutlook outlook = LookBeforeUpdate(invocation, session);
    CheckBlocks(invocation, session, before);
    const auto report = [&](const PortNvram& now, bool restarted) {
        Record& result = invocation.Result();
        result.Add("port", "Port", Value::Number(session.port.index));
        result.Add("bank_before", "Bank before", BankValue(before));
        result.Add("bank", "Bank", BankValue(now));
        result.Add("restarted", "Restarted", Value::Flag(restarted));
    };
    if (invocation.DryRun()) {
        report(before, false);
        invocation.Note("dry run: the port would restart");
        return ExitCode::Done;
    }
    tools::Question question = QuestionAbout(
        session, "Restart the port, so that its firmware uses the settings that were written.",
        "I/O through the port stops for a while.");
    question.lines.insert(question.lines.end(), outlook.warnings.begin(), outlook.warnings.end());
    invocation.Confirm(question);
    if (const HX_STATUS status = RestartPort(invocation, session); status != HXMGT_SUCCESS) {
        invocation.Fail(status, "the port did not restart", session.port.Object());
    }
    invocation.Changed();
    const PortNvram after = ReadNvram(invocation, session, false);
    report(after, true);
    if (before.bank && after.bank && before.bank->second == after.bank->second) {
        invocation.Note("no settings waited: the bank in use is the same");
    }
    return ExitCode::Done;
}

}  // namespace

tools::CommandRows NvramActivateCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "nvram activate",
            .risk = tools::Risk::InterruptsIo,
            .help = "have the firmware use what was written: restarts the port",
            .schema = "nvram.activate",
            .run = NvramActivate,
            .example = "nvram activate -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
