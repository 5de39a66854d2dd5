// fw activate
#include "common/status_codes.h"
#include "vxmgr/flash/flash_image_check.h"
#include "vxmgr/flash/flash_regions.h"
#include "vxmgr/update/commands.h"
#include "vxmgr/update/update_activation.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_interrupt.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Severity;
using tools::Value;

constexpr uint32_t kLimitSeconds = 60;

constexpr Argument kActivateArguments[] = {
    {"--settings", ArgumentKind::Flag, "",
     "have the settings (NVRAM) taken over alone, and the firmware started with them"},
    {.name = "--limit",
     .kind = ArgumentKind::Number,
     .valueName = "S",
     .help = "seconds that one port may take; the next ones are left alone then (60; 0: any time)",
     .most = 3600},
    {"--allow-same", ArgumentKind::Flag, "", "also when the stored versions run already"},
};

[[noreturn]] void Refuse(ExitCode exit, const std::string& text, const std::string& hint,
                         const std::string& object) {
    throw tools::CommandError{exit, {Severity::Error, text, hint, object, {}}};
}

// Ends the command when the firmware of these ports cannot be restarted under a running host.
void CheckRestart(tools::Invocation& invocation, const AdapterSession& session, bool online) {
    for (size_t i = 0; i < session.ports.size(); ++i) {
        const Port& port = session.ports[i];
        const UpdateOutlook outlook =
            LookBeforeUpdate(invocation, port, session.devices[i].Handle());
        if (outlook.bootsFromSan.value_or(false)) {
            Refuse(ExitCode::NotSupported,
                   "the host boots through this port: its firmware is not restarted under it",
                   "restart the host: the adapter starts with what is stored", port.Object());
        }
        if (online && !outlook.activatesOnline) {
            Refuse(ExitCode::NotSupported,
                   "this adapter does not start new firmware while the host runs: that takes a "
                   "newer chip, and firmware from 9.1.16.20 on",
                   "restart the host; `fw activate --settings` has settings taken over",
                   port.Object());
        }
    }
}

// The stored firmware, when there is anything to start; ends the command when it would not start.
struct Stored {
    std::string firmware;
    bool pending = false;
};

Stored LookAtStored(tools::Invocation& invocation, const AdapterSession& session) {
    const FlashLayout layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    Stored stored;
    for (const uint32_t code : {uint32_t{HX_REGION_FIRMWARE}, BootRegionOf(layout)}) {
        const FlashRegion* region = layout.Find(code);
        if (region == nullptr) {
            continue;
        }
        invocation.CheckStop();
        const StoredCode found = ReadStored(session.Handle(), layout, *region);
        if (found.status != HXMGT_SUCCESS) {
            invocation.Fail(found.status, RegionName(code) + " cannot be read", session.Object());
        }
        const CodeState state = StateOf(found, RunningVersion(session.First(), code));
        if (state == CodeState::Damaged) {
            Refuse(ExitCode::Refused, "the stored " + RegionName(code) + " is damaged",
                   "`fw show` tells more; write it again with `flash write`", session.Object());
        }
        stored.pending = stored.pending || state == CodeState::Pending;
        if (code == HX_REGION_FIRMWARE) {
            stored.firmware = found.image.version;
        }
    }
    if (stored.firmware.empty()) {
        Refuse(ExitCode::NotSupported, "the adapter has no firmware of its own in its flash", "",
               session.Object());
    }
    return stored;
}

void AddVersions(Record& result, const AdapterSession& session, const std::string& stored) {
    result.Add("serial", "Adapter", Value::Serial(session.Serial()));
    result.Add("ports", "Ports", Value::Number(session.ports.size()));
    result.Add("before", "Firmware before", Value::TextOrNull(RunningFirmware(session.First())));
    result.Add("stored", "Stored firmware", Value::TextOrNull(stored));
}

void AddEnd(Record& result, bool activated, const AdapterSession& session) {
    result.Add("activated", "Activated", Value::Flag(activated));
    result.Add("after", "Firmware now", Value::TextOrNull(RunningFirmware(session.First())));
}

tools::Question Ask(const AdapterSession& session, const std::string& action) {
    tools::Question question = QuestionAbout(session, action);
    question.lines.push_back(
        "The firmware of these ports restarts: their links go down, and I/O through them stops "
        "until they are back.");
    return question;
}

// Runs the step under the lock; Ctrl-C waits for its end.
template <typename Step>
HX_STATUS RunLocked(tools::Invocation& invocation, const AdapterSession& session, bool* interrupted,
                    Step step) {
    const FinishFirst finish(invocation, "the restart");
    const UpdateLock lock(invocation, session.Handle(), session.First());
    invocation.Progress("restarting the firmware of " + std::to_string(session.ports.size()) +
                        " ports");
    const HX_STATUS status = step();
    invocation.Changed();
    *interrupted = finish.Interrupted();
    return status;
}

void StopWhenInterrupted(bool interrupted) {
    if (interrupted) {
        throw tools::Stopped{tools::StopReason::Interrupted};
    }
}

ExitCode ReportStatus(tools::Invocation& invocation, HX_STATUS status, const std::string& object) {
    if (status == HXMGT_ACTIVATION_TIMED_OUT) {
        invocation.Add({Severity::Error,
                        "a port took longer than --limit allows: the ports behind it were left as "
                        "they are",
                        "see `fw show`, then activate again with a longer --limit", object,
                        status});
        return ExitCode::TimedOut;
    }
    if (status == HXMGT_FLASH_UPDATE_NOT_ACTIVATED) {
        invocation.Add({Severity::Error,
                        "nothing was restarted: the firmware's attributes are not what they were a "
                        "moment ago",
                        "somebody else may be updating the adapter: see `flash lock show`", object,
                        status});
        return ExitCode::Failed;
    }
    return invocation.Report(status, "the firmware was not restarted", object);
}

ExitCode ActivateFirmware(tools::Invocation& invocation, AdapterSession& session) {
    CheckRestart(invocation, session, true);
    const Stored stored = LookAtStored(invocation, session);
    Record& result = invocation.Result();
    AddVersions(result, session, stored.firmware);
    const bool needed = stored.pending || invocation.Given().Has("allow-same");
    if (!needed || invocation.DryRun()) {
        AddEnd(result, false, session);
        invocation.Note(needed ? "dry run: firmware " + stored.firmware + " would be started"
                               : "nothing to do: the stored versions run");
        return ExitCode::Done;
    }
    invocation.Confirm(Ask(session, "Start firmware " + stored.firmware + ", now running " +
                                        RunningFirmware(session.First()) + "."));
    invocation.CheckStop();
    const auto limit =
        static_cast<uint32_t>(invocation.Given().Number("limit").value_or(kLimitSeconds));
    bool interrupted = false;
    const HX_STATUS status = RunLocked(invocation, session, &interrupted,
                                       [&] { return ActivateOnline(session, limit); });
    // The library hands on no failure of a single port: what runs now is what counts.
    const bool runs =
        status == HXMGT_SUCCESS && WaitForFirmware(invocation, session, stored.firmware);
    session.Refresh();
    AddEnd(result, runs, session);
    StopWhenInterrupted(interrupted);
    if (status != HXMGT_SUCCESS) {
        return ReportStatus(invocation, status, session.Object());
    }
    if (!runs) {
        invocation.Add({Severity::Error,
                        "the ports were told to start firmware " + stored.firmware +
                            ", but not all of them report it",
                        "see `port show`; a restart of the host starts what is stored",
                        session.Object(),
                        {}});
        return ExitCode::NotProven;
    }
    return ExitCode::Done;
}

ExitCode ActivateSettings(tools::Invocation& invocation, AdapterSession& session) {
    CheckRestart(invocation, session, false);
    Record& result = invocation.Result();
    AddVersions(result, session, {});
    if (invocation.DryRun()) {
        AddEnd(result, false, session);
        invocation.Note("dry run: the settings would be taken over");
        return ExitCode::Done;
    }
    invocation.Confirm(Ask(session, "Take over the stored settings."));
    invocation.CheckStop();
    bool interrupted = false;
    const HX_STATUS status =
        RunLocked(invocation, session, &interrupted, [&] { return ReloadSettings(session); });
    session.Refresh();
    AddEnd(result, status == HXMGT_SUCCESS, session);
    StopWhenInterrupted(interrupted);
    return status == HXMGT_SUCCESS
               ? ExitCode::Done
               : invocation.Report(status, "the settings were not taken over", session.Object());
}

ExitCode FirmwareActivate(tools::Invocation& invocation) {
    AdapterSession session = OpenSelectedAdapter(invocation);
    return invocation.Given().Has("settings") ? ActivateSettings(invocation, session)
                                              : ActivateFirmware(invocation, session);
}

}  // namespace

tools::CommandRows FwActivateCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "fw activate",
            .risk = tools::Risk::InterruptsIo,
            .help = "start the stored firmware while the host runs",
            .schema = "fw.activate",
            .arguments = kActivateArguments,
            .run = FirmwareActivate,
            .example = "fw activate -a serial:EMU7740A0001",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
