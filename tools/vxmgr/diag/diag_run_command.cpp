// diag run: every check that does no harm.
#include <map>

#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_walk.h"
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/diag/dump_kinds.h"
#include "vxmgr/fabric/fc_els.h"
#include "vxmgr/fabric/fc_services.h"
#include "vxmgr/fabric/scsi_unit.h"
#include "vxmgr/ports/stats_counters.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

constexpr Argument kRunArguments[] = {
    TextOption("-t,--target", "TARGET",
               "also send an echo to this remote port: wwn:NAME or id:0xDDAAPP"),
};

// The fabric and remote ports get their time as well, and whole regions are read.
constexpr std::chrono::seconds kCheckTime{60};

enum class CheckOutcome : uint8_t { Passed, Warning, Failed, Skipped };

struct Finding {
    CheckOutcome outcome = CheckOutcome::Passed;
    std::string detail;
};

struct Subject {
    PortTask& task;
    const Port& port;
    uint32_t handle;
    const HX_SCSI_ADDRESS* target;    // null: none given
    std::optional<uint32_t> sibling;  // the port whose check of the adapter's flash counts

    bool IsOnline() const { return port.port && port.port->state == HX_PORT_STATE_ONLINE; }
};

Finding OfStatus(HX_STATUS status) {
    if (status == HXMGT_SUCCESS) {
        return {};
    }
    const bool cannot = ExitCodeOf(status) == ExitCode::NotSupported;
    return {cannot ? CheckOutcome::Skipped : CheckOutcome::Failed,
            StatusMessage(status) + " (" + StatusText(status) + ")"};
}

Finding DriverFailed(HX_STATUS status, const std::string& query) {
    Finding finding = OfStatus(status);
    finding.detail = query + ": " + finding.detail;
    return finding;
}

Finding CheckDriver(const Subject& subject) {
    return subject.port.failure == HXMGT_SUCCESS
               ? Finding{}
               : DriverFailed(subject.port.failure, subject.port.failedQuery);
}

Finding CheckFirmware(const Subject& subject) {
    if (!subject.port.firmware) {
        return {CheckOutcome::Skipped, "the driver does not report the firmware"};
    }
    const auto& version = subject.port.firmware->version;
    const std::string text = FieldText(version, sizeof version);
    return text.empty() ? Finding{CheckOutcome::Failed, "no version is reported"}
                        : Finding{CheckOutcome::Passed, "version " + text};
}

Finding CheckStoredCode(const Subject& subject) {
    if (subject.sibling) {
        return {CheckOutcome::Skipped, "as of port " + std::to_string(*subject.sibling)};
    }
    std::vector<StoredCode> stored;
    const HX_STATUS status = ReadStoredCode(
        subject.port, subject.handle, [&subject] { subject.task.Answered(kCheckTime); }, &stored);
    if (status != HXMGT_SUCCESS) {
        return OfStatus(status);
    }
    Finding finding;
    for (const StoredCode& code : stored) {
        const std::string running = RunningVersion(subject.port, code.region.code);
        const std::string damage = DamageOf(code, running);
        if (code.status != HXMGT_SUCCESS) {
            return OfStatus(code.status);
        }
        if (!damage.empty()) {
            finding.outcome = CheckOutcome::Failed;
            finding.detail += (finding.detail.empty() ? "" : "; ") + damage;
        }
    }
    return finding;
}

Finding CheckLink(const Subject& subject) {
    if (!subject.port.port) {
        return {CheckOutcome::Failed, "the port's properties cannot be read"};
    }
    const Value state = StateValue(subject.port);
    const std::string* text = std::get_if<std::string>(&state.Content());
    const std::string shown = !state.Shown().empty() ? state.Shown()
                              : text != nullptr      ? *text
                                                     : "unknown state";
    // Somebody wanted a disabled port to be down.
    if (subject.port.disabled.value_or(false)) {
        return {CheckOutcome::Warning, shown};
    }
    return {subject.IsOnline() ? CheckOutcome::Passed : CheckOutcome::Failed, shown};
}

Finding CheckLinkErrors(const Subject& subject) {
    HX_STATISTICS statistics{};
    const HX_STATUS status = HXGetStatistics(subject.handle, 0, &statistics);
    if (status != HXMGT_SUCCESS) {
        return OfStatus(status);
    }
    const std::string errors = LinkErrorsText(Widened(statistics));
    const std::string since = " in " + std::to_string(statistics.secondsSinceReset) + " s";
    return errors.empty() ? Finding{CheckOutcome::Passed, "none" + since}
                          : Finding{CheckOutcome::Warning,
                                    errors + since + "; `port stats clear` begins anew"};
}

Finding CheckDiagnosticMode(const Subject& subject) {
    if (!subject.port.hasSecondVersion || !subject.port.port) {
        return {CheckOutcome::Skipped, "the driver does not report it"};
    }
    const uint8_t state = subject.port.port->diagnosticState;
    return state == 0 ? Finding{}
                      : Finding{CheckOutcome::Warning,
                                "a diagnostic state is on: " + std::to_string(state)};
}

Finding CheckNameServer(const Subject& subject) {
    if (!subject.IsOnline()) {
        return {CheckOutcome::Skipped, "the port is not online"};
    }
    const auto request = NameServerRequest(kGetAllNext, std::vector<uint8_t>(4), kGetAllNextLength);
    std::vector<uint8_t> response(sizeof(CtHeader) + kGetAllNextLength);
    const HX_STATUS status = SendCt(subject.handle, request, &response);
    if (status != HXMGT_SUCCESS) {
        return OfStatus(status);
    }
    const CtResponse answer = DecodeCtResponse(response).value_or(CtResponse{});
    return answer.accepted ? Finding{} : Finding{CheckOutcome::Warning, CtRejectText(answer)};
}

Finding CheckDumps(const Subject& subject) {
    uint32_t size = 0;
    const HX_STATUS status = DumpKinds().front().size(subject.handle, &size);
    if (status == HXMGT_SUCCESS && size != 0) {
        return {CheckOutcome::Warning, "the firmware made a dump: `dump save fc FILE`"};
    }
    return status == HXMGT_NO_FIRMWARE_DUMP ? Finding{} : OfStatus(status);
}

Finding CheckEcho(const Subject& subject) {
    constexpr size_t kBytes = 128;
    if (subject.target == nullptr) {
        return {CheckOutcome::Skipped, "no target given: -t"};
    }
    const auto request = EchoRequest(kBytes, 1);
    std::vector<uint8_t> answer;
    const HX_STATUS status = SendLinkService(subject.handle, *subject.target, request, &answer);
    if (status != HXMGT_SUCCESS) {
        return OfStatus(status);
    }
    return IsEchoOf(request, answer) ? Finding{}
                                     : Finding{CheckOutcome::Failed, "other data came back"};
}

struct Check {
    const char* name;
    Finding (*run)(const Subject& subject);
    const char* advice = "";  // when it fails
};
constexpr Check kChecks[] = {
    {"driver", CheckDriver, "`port show` tells what can be read"},
    {"firmware", CheckFirmware},
    {"stored code", CheckStoredCode,
     "write it again with `flash write` before the adapter is restarted"},
    {"link", CheckLink, "look at the cable, the transceiver (`sfp show`) and the switch"},
    {"link errors", CheckLinkErrors},
    {"diagnostic mode", CheckDiagnosticMode},
    {"name server", CheckNameServer},
    {"firmware dump", CheckDumps},
    {"echo", CheckEcho},
};

struct CheckRow : Finding {
    const Port* port;
    const char* check;

    std::string Serial() const { return port->Serial(); }
};

// In the order of CheckOutcome.
constexpr const char* kCheckOutcomes[] = {"passed", "warning", "failed", "skipped"};

Value CheckOutcomeValue(const CheckRow& row) {
    constexpr Tone kTones[] = {Tone::Good, Tone::Warning, Tone::Bad, Tone::Plain};
    const auto place = static_cast<size_t>(row.outcome);
    return Value::Text(kCheckOutcomes[place]).In(kTones[place]);
}

const Fields<CheckRow> kCheckFields = {
    {PortKeys(), &CheckRow::port},
    {"serial", "Adapter", "ADAPTER", kSerial.OrNull(), &CheckRow::Serial},
    {"check", "Check", "CHECK", kText, &CheckRow::check},
    {"outcome", "Outcome", "OUTCOME", Choice(kCheckOutcomes), CheckOutcomeValue},
    {"detail", "Detail", "DETAIL", kText.OrNull(), &CheckRow::detail},
};
const auto kDiagRunFields = ListOf("checks", "Checks", kCheckFields, "no ports");

// Ports that share an adapter with an earlier one, which looks at its flash for them: by index.
std::map<uint32_t, uint32_t> SiblingsOf(const std::vector<Port*>& ports) {
    std::map<std::string, uint32_t> first;
    std::map<uint32_t, uint32_t> siblings;
    for (const Port* port : ports) {
        const std::string serial = port->Serial();
        // A port that does not answer looks at nothing.
        if (serial.empty() || !port->answers) {
            continue;
        }
        const auto [known, isFirst] = first.try_emplace(serial, port->index);
        if (!isFirst) {
            siblings.emplace(port->index, known->second);
        }
    }
    return siblings;
}

ExitCode DiagRun(Invocation& invocation) {
    HX_SCSI_ADDRESS target{};
    const bool hasTarget = invocation.Given().Has("target");
    if (hasTarget) {
        target = GivenTarget(invocation);
    }
    std::vector<Port> ports = ReadSelectedPorts(invocation);
    std::vector<CheckRow> rows;
    size_t failed = 0;
    const auto add = [&](const Port& port, const Check& check, const Finding& finding) {
        rows.push_back({finding, &port, check.name});
        if (finding.outcome == CheckOutcome::Failed) {
            ++failed;
            const std::string& detail = finding.detail;
            invocation.Add({Severity::Error,
                            std::string(check.name) + ": " + (detail.empty() ? "failed" : detail),
                            check.advice,
                            port.Object(),
                            {}});
        }
    };
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    const AskPort<std::vector<Finding>> ask = [hasTarget, target, siblings = SiblingsOf(selected)](
                                                  PortVisit& visit,
                                                  std::vector<Finding>* findings) {
        const auto sibling = siblings.find(visit.port.index);
        for (const Check& check : kChecks) {
            findings->push_back(check.run(
                {visit.task, visit.port, visit.Handle(), hasTarget ? &target : nullptr,
                 sibling != siblings.end() ? std::optional(sibling->second) : std::nullopt}));
            visit.task.Answered(kCheckTime);
        }
        return HX_STATUS{HXMGT_SUCCESS};
    };
    for (const auto& one : ForEachPort(invocation, selected, ask)) {
        if (one.status != HXMGT_SUCCESS) {
            add(*one.port, kChecks[0], DriverFailed(one.status, one.query));
            continue;
        }
        for (size_t i = 0; i < one.answer.size(); ++i) {
            add(*one.port, kChecks[i], one.answer[i]);
        }
    }
    invocation.Result() = kDiagRunFields.Make(rows);
    if (failed != 0) {
        invocation.Fail(ExitCode::Failed,
                        failed == 1 ? "1 check failed" : std::to_string(failed) + " checks failed");
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows DiagRunCommands() {
    static const Command kCommands[] = {
        {.path = "diag run",
         .help = "run every check that does no harm",
         .arguments = kRunArguments,
         .run = DiagRun,
         .example = "diag run -p scsi:3",
         .result = ShapeOf<kDiagRunFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
