// fw activate
#include <functional>

#include "vxmgr/commands.h"
#include "vxmgr/update/update_activation.h"
#include "vxmgr/update/update_checks.h"
#include "vxmgr/update/update_messages.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

constexpr Argument kActivateArguments[] = {
    FlagOption("--settings",
               "have the settings (NVRAM) taken over alone, and the firmware started with them"),
    NumberOption(
        "--limit", "S",
        "seconds that one port may take; the next ones are left alone then (60; 0: any time)", 0,
        3600),
    FlagOption("--allow-same", "also when the stored versions run already"),
};

// Ends the command when the firmware of these ports cannot be restarted under a running host.
void CheckRestart(Invocation& invocation, const AdapterSession& session, bool online) {
    for (size_t i = 0; i < session.ports.size(); ++i) {
        const Port& port = session.ports[i];
        const UpdateOutlook outlook =
            LookBeforeUpdate(invocation, port, session.devices[i].Handle());
        if (outlook.bootsFromSan.value_or(false)) {
            FailAt(port.Object(), ExitCode::NotSupported,
                   "the host boots through this port: its firmware is not restarted under it",
                   "restart the host: the adapter starts with what is stored");
        }
        if (online && !outlook.activatesOnline) {
            FailAt(port.Object(), ExitCode::NotSupported,
                   "this adapter does not start new firmware while the host runs: that takes a "
                   "newer chip, and firmware from 9.1.16.20 on",
                   "restart the host; `fw activate --settings` has settings taken over");
        }
    }
}

// The stored firmware, when there is anything to start; ends the command when it would not start.
struct StoredFirmware {
    std::string version;
    bool pending = false;
};

StoredFirmware LookAtStored(Invocation& invocation, const AdapterSession& session) {
    const FlashLayout layout = ReadFlashLayout(invocation, session.First(), session.Handle());
    StoredFirmware stored;
    for (const uint32_t code : {uint32_t{HX_REGION_FIRMWARE}, BootRegionOf(layout)}) {
        const FlashRegion* region = layout.Find(code);
        if (region == nullptr) {
            continue;
        }
        invocation.CheckStop();
        const StoredCode found = ReadStored(session.Handle(), layout, *region);
        invocation.Require(found.status, region->Name() + " cannot be read", session.Object());
        const CodeState state = StateOf(found, RunningVersion(session.First(), code));
        if (state == CodeState::Damaged) {
            FailAt(session.Object(), ExitCode::Refused,
                   "the stored " + region->Name() + " is damaged",
                   "`fw show` tells more; write it again with `flash write`");
        }
        stored.pending = stored.pending || state == CodeState::Pending;
        if (code == HX_REGION_FIRMWARE) {
            stored.version = found.image.version;
        }
    }
    if (stored.version.empty()) {
        FailAt(session.Object(), ExitCode::NotSupported,
               "the adapter has no firmware of its own in its flash", "");
    }
    return stored;
}

// What came of it, known only at the end.
struct ActivationEnd {
    bool activated;
    std::string after;
};

struct Activation {
    const AdapterSession* session;
    std::string stored{};
    std::string before = RunningFirmware(session->First());
    std::optional<ActivationEnd> end{};

    void End(bool activated) { end = {activated, RunningFirmware(session->First())}; }
};

const Fields<ActivationEnd> kActivationEndFields = {
    {"activated", "Activated", kFlag, &ActivationEnd::activated},
    {"after", "Firmware now", kText.OrNull(), &ActivationEnd::after},
};

const Fields<Activation> kActivationFields = {
    {kSessionFields, &Activation::session},
    {"ports", "Ports", kInteger, [](const Activation& one) { return one.session->ports.size(); },
     "ports whose firmware was restarted, or would be"},
    {"before", "Firmware before", kText.OrNull(), &Activation::before},
    {"stored", "Stored firmware", kText.OrNull(), &Activation::stored, "null with --settings"},
    {kActivationEndFields, &Activation::end},
};

// Has every open port read its settings anew; the first failure ends it.
HX_STATUS ReloadSettings(const AdapterSession& session) {
    for (const Device& device : session.devices) {
        if (const HX_STATUS status = HXReloadNvramAndInitFw(device.Handle());
            status != HXMGT_SUCCESS) {
            return status;
        }
    }
    return HXMGT_SUCCESS;
}

// One of the two ways to start the firmware anew.
struct RestartWay {
    std::string question;
    std::string outlook;  // what a dry run says
    std::string version;  // that has to run afterwards; empty: any
    std::function<HX_STATUS()> start;
};

ExitCode ReportStatus(Invocation& invocation, HX_STATUS status, const RestartWay& way,
                      const std::string& object) {
    if (way.version.empty()) {
        return invocation.Report(status, "the settings were not taken over", object);
    }
    if (status == HXMGT_ACTIVATION_TIMED_OUT) {
        Complain(
            invocation, object,
            "a port took longer than --limit allows: the ports behind it were left as they are",
            "see `fw show`, then activate again with a longer --limit", status);
        return ExitCode::TimedOut;
    }
    if (status == HXMGT_FLASH_UPDATE_NOT_ACTIVATED) {
        Complain(invocation, object,
                 "nothing was restarted: the firmware's attributes are not what they were a moment "
                 "ago",
                 "somebody else may be updating the adapter: see `flash lock show`", status);
        return ExitCode::Failed;
    }
    return invocation.Report(status, "the firmware was not restarted", object);
}

// Asks, restarts under the lock and looks at what runs then; Ctrl-C waits for the end.
ExitCode RestartPorts(Invocation& invocation, AdapterSession& session, Activation& result,
                      const RestartWay& way) {
    if (invocation.DryRun()) {
        result.End(false);
        return invocation.DoneWith("dry run: " + way.outlook);
    }
    Question question = QuestionAbout(session, way.question);
    question.lines.push_back(
        "The firmware of these ports restarts: their links go down, and I/O through them stops "
        "until they are back.");
    invocation.Confirm(question);
    invocation.CheckStop();
    const auto [status, runs] = RestartUnderLock(invocation, session, way.version, way.start);
    result.End(runs);
    invocation.CheckStop();
    if (status != HXMGT_SUCCESS) {
        return ReportStatus(invocation, status, way, session.Object());
    }
    if (!runs) {
        Complain(invocation, session.Object(),
                 "the ports were told to start firmware " + way.version +
                     ", but not all of them report it",
                 "see `port show`; a restart of the host starts what is stored");
    }
    return runs ? ExitCode::Done : ExitCode::NotProven;
}

ExitCode ActivateFirmware(Invocation& invocation, AdapterSession& session) {
    CheckRestart(invocation, session, true);
    const StoredFirmware stored = LookAtStored(invocation, session);
    const std::string& version = stored.version;
    GrowingResult result(invocation.Result(), kActivationFields, {&session, version});
    if (!stored.pending && !invocation.Given().Has("allow-same")) {
        result.End(false);
        return invocation.DoneWith("nothing to do: the stored versions run");
    }
    const auto limit =
        static_cast<uint32_t>(invocation.Given().Number("limit").value_or(kActivationSeconds));
    return RestartPorts(
        invocation, session, result,
        {"Start firmware " + version + ", now running " + RunningFirmware(session.First()) + ".",
         "firmware " + version + " would be started", version,
         [&session, limit] { return NoteAndActivate(session, limit); }});
}

ExitCode ActivateSettings(Invocation& invocation, AdapterSession& session) {
    CheckRestart(invocation, session, false);
    GrowingResult result(invocation.Result(), kActivationFields, {&session});
    return RestartPorts(invocation, session, result,
                        {"Take over the stored settings.", "the settings would be taken over", "",
                         [&session] { return ReloadSettings(session); }});
}

ExitCode FirmwareActivate(Invocation& invocation) {
    AdapterSession session = OpenSelectedAdapter(invocation);
    return invocation.Given().Has("settings") ? ActivateSettings(invocation, session)
                                              : ActivateFirmware(invocation, session);
}

}  // namespace

CommandRows FwActivateCommands() {
    static const Command kCommands[] = {
        {.path = "fw activate",
         .risk = Risk::InterruptsIo,
         .help = "start the stored firmware while the host runs",
         .arguments = kActivateArguments,
         .run = FirmwareActivate,
         .example = "fw activate -a serial:EMU7740A0001",
         .result = ShapeOf<kActivationFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
