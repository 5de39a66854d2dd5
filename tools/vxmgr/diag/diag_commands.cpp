// The diagnostics that stop I/O.
#include <chrono>

#include "vxmgr/app/bytes.h"
#include "vxmgr/app/code_text.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/commands.h"
#include "vxmgr/diag/dport_results.h"

namespace vxmgr {
namespace {

constexpr uint32_t kLoopbackDriver = 80100;  // older ones report success without a test
constexpr size_t kMostIn = 32;
constexpr uint64_t kMostOut = 64;

constexpr Argument kLoopbackArguments[] = {
    NumberOption("--size", "N", "bytes to send (2048)", 4, 65536),
    NumberOption("--iterations", "N", "how often (1)", 1, 1000000),
    NumberOption("--options", "N", "option word for the firmware (0)", 0, UINT16_MAX),
};
constexpr Argument kMailboxArguments[] = {
    {.name = "REGS",
     .help = "1 to 32 register values, the command first: 0x0006 0x1234 (or decimal)",
     .required = true,
     .repeated = true},
    NumberOption("--registers", "N", "how many registers to read back (8)", 0, kMostOut),
};

constexpr CodeText kCompletions[] = {
    {HX_LOOPBACK_COMPLETE, "complete"},
    {HX_LOOPBACK_BAD_PARAMETER, "bad parameter"},
    {HX_LOOPBACK_COMMAND_ERROR, "command error"},
};

// All byte values, in an order that repeats with no power of two.
std::vector<uint8_t> Pattern(size_t size) {
    std::vector<uint8_t> pattern(size);
    for (size_t i = 0; i < size; ++i) {
        pattern[i] = static_cast<uint8_t>(i * 7 + i / 251);
    }
    return pattern;
}

size_t Differences(Bytes sent, Bytes received) {
    size_t count = 0;
    for (size_t i = 0; i < sent.size(); ++i) {
        count += sent[i] != received[i] ? 1 : 0;
    }
    return count;
}

std::vector<uint16_t> GivenRegisters(Invocation& invocation) {
    std::vector<uint16_t> registers;
    for (const std::string& word : invocation.Given().All("REGS")) {
        const auto value = ParseNumber(word);
        if (!value || *value > UINT16_MAX) {
            invocation.Fail(ExitCode::Usage, "\"" + word + "\" is no register value",
                            "0 to 65535, hexadecimal after 0x");
        }
        registers.push_back(static_cast<uint16_t>(*value));
    }
    if (registers.size() > kMostIn) {
        invocation.Fail(ExitCode::Usage, "more than 32 registers are given");
    }
    return registers;
}

struct LoopbackOutcome {
    HX_LOOPBACK_EX_RESULT reported{};
    uint32_t size = 0;
    size_t wrongBytes = 0;

    bool IsComplete() const { return reported.completion == HX_LOOPBACK_COMPLETE; }
    std::string Completion() const {
        return TextOfCode(kCompletions, reported.completion, "other");
    }
    template <size_t counter>
    uint32_t Counter() const {
        return reported.counters[counter];
    }
    uint32_t Iterations() const { return Counter<3>() << 16 | Counter<4>(); }
};

struct LoopbackResult {
    const Port* port;
    bool tested = false;
    std::optional<LoopbackOutcome> outcome;
};

const Fields<LoopbackOutcome> kLoopbackOutcome = {
    {"completion", "Completion", kText, &LoopbackOutcome::Completion},
    {"size", "Size", Integer("bytes").OrNull(), &LoopbackOutcome::size},
    {"wrong_bytes", "Wrong bytes", kInteger, &LoopbackOutcome::wrongBytes},
    {"crc_errors", "CRC errors", kInteger, &LoopbackOutcome::Counter<0>},
    {"disparity_errors", "Disparity errors", kInteger, &LoopbackOutcome::Counter<1>},
    {"frame_length_errors", "Frame length errors", kInteger, &LoopbackOutcome::Counter<2>},
    {"iterations", "Iterations done", kInteger, &LoopbackOutcome::Iterations},
};
const Fields<LoopbackResult> kLoopbackFields = {
    {PortKeys(), &LoopbackResult::port},
    {"tested", "Tested", kFlag, &LoopbackResult::tested},
    {kLoopbackOutcome, &LoopbackResult::outcome},
};

struct DportResult {
    const Port* port;
    std::optional<DportOutcome> outcome;
    std::optional<std::vector<HexRow>> data;
};

const Fields<DportResult> kDportFields = {
    {PortKeys(), &DportResult::port},
    {kDportOutcomeFields, &DportResult::outcome},
    {"data", "Results", kHexRowFields, &DportResult::data, "no data"},
};

struct MailboxRegister {
    size_t number;
    uint16_t value;
};

struct MailboxResult {
    const Port* port;
    uint16_t command;
    std::optional<std::vector<MailboxRegister>> registers;
};

const Fields<MailboxRegister> kMailboxRegister = {
    {"register", "Register", "REGISTER", kInteger, &MailboxRegister::number},
    {"value", "Value", "VALUE", Hexadecimal(4), &MailboxRegister::value},
};
const Fields<MailboxResult> kMailboxFields = {
    {PortKeys(), &MailboxResult::port},
    {"command", "Command", Hexadecimal(4), &MailboxResult::command},
    {"registers", "Registers", kMailboxRegister, &MailboxResult::registers, "no registers"},
};

ExitCode DiagLoopback(Invocation& invocation) {
    const Options& given = invocation.Given();
    const auto size = static_cast<uint32_t>(given.Number("size").value_or(2048));
    const auto iterations = static_cast<uint32_t>(given.Number("iterations").value_or(1));
    const auto options = static_cast<uint16_t>(given.Number("options").value_or(0));
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<LoopbackResult> result(invocation.Result(), kLoopbackFields,
                                         {&session.port, false, {}});
    if (session.port.driverVersionCode < kLoopbackDriver) {
        invocation.Fail(ExitCode::NotSupported,
                        "not tested: drivers below 8.01.00 report success without a test",
                        "see `driver show`");
    }
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: " + std::to_string(size) + " bytes would be looped");
    }
    invocation.Confirm(QuestionAbout(session, "Run a loopback test.",
                                     "I/O through this port stops until it ends."));
    const std::vector<uint8_t> sent = Pattern(size);
    std::vector<uint8_t> received(size);
    LoopbackOutcome outcome{{}, size, 0};
    const HX_STATUS status =
        HXRunDiagLoopbackEx(session.Handle(), 0, options, sent.data(), size, received.data(), size,
                            iterations, &outcome.reported);
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "loopback", session.port.Object());
    }
    outcome.wrongBytes = Differences(sent, received);
    result.tested = true;
    result.outcome = outcome;
    if (!outcome.IsComplete() || outcome.wrongBytes != 0) {
        invocation.Fail(ExitCode::Failed,
                        outcome.IsComplete()
                            ? std::to_string(outcome.wrongBytes) + " bytes came back wrong"
                            : "the firmware ended the test: " + outcome.Completion());
    }
    return ExitCode::Done;
}

ExitCode DiagDport(Invocation& invocation) {
    constexpr std::chrono::milliseconds kPoll{500};
    constexpr int kLongest = 600;  // polls: five minutes
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<DportResult> result(invocation.Result(), kDportFields, {&session.port, {}, {}});
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: a D-port test would run");
    }
    invocation.Confirm(QuestionAbout(session, "Run a D-port test.",
                                     "The link serves the test alone until it ends."));
    HX_DPORT_RESULT_EX2 answer{};
    HX_STATUS status = HXRunDportDiagEx2(session.Handle(), 0, &answer);
    for (int poll = 0; status == HXMGT_DIAGNOSTIC_TEST_RUNNING && poll < kLongest; ++poll) {
        invocation.Progress("the test runs");
        invocation.Sleep(kPoll);
        status = HXRunDportDiagEx2(session.Handle(), 0, &answer);
    }
    if (status == HXMGT_DIAGNOSTIC_TEST_RUNNING) {
        invocation.Fail(ExitCode::TimedOut, "the test still runs after five minutes",
                        "ask again with `diag dport`");
    }
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "D-port", session.port.Object());
    }
    result.outcome = DecodeDport(answer);
    Bytes bytes = BytesOf(answer);
    while (bytes.size() > 1 && bytes.back() == 0) {
        bytes = bytes.first(bytes.size() - 1);
    }
    result.data = DataRows(invocation, bytes);
    if (const size_t failed = result.outcome->FailedCount(); failed != 0) {
        invocation.Fail(ExitCode::Failed,
                        session.port.Object() + ": the link failed " + std::to_string(failed) +
                            " of the test's results",
                        "look at the cable and the transceivers (`sfp show`) of both ends");
    }
    return ExitCode::Done;
}

ExitCode DiagMailbox(Invocation& invocation) {
    const std::vector<uint16_t> registers = GivenRegisters(invocation);
    const auto wanted = static_cast<size_t>(invocation.Given().Number("registers").value_or(8));
    const PortSession session = OpenSelectedPort(invocation);
    GrowingResult<MailboxResult> result(invocation.Result(), kMailboxFields,
                                        {&session.port, registers[0], {}});
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: the mailbox command would be sent");
    }
    invocation.Confirm(QuestionAbout(
        session, "Send mailbox command " + Hex(registers[0], 4) + " to the firmware.",
        "Nothing is checked: a wrong command can stop the adapter or damage what it stores."));
    std::vector<uint16_t> answer(kMostOut);
    const HX_STATUS status = HXMailboxPassthru(session.Handle(), 0, registers.data(),
                                               static_cast<int16_t>(registers.size()),
                                               answer.data(), static_cast<int16_t>(wanted));
    invocation.Changed();
    result.registers.emplace();
    for (size_t number = 0; number < wanted; ++number) {
        result.registers->push_back({number, answer[number]});
    }
    return status == HXMGT_SUCCESS
               ? ExitCode::Done
               : invocation.Report(status, "the mailbox command", session.port.Object());
}

}  // namespace

CommandRows DiagCommands() {
    static const Command kCommands[] = {
        {.path = "diag loopback",
         .risk = Risk::InterruptsIo,
         .help = "have the firmware loop data and compare it",
         .arguments = kLoopbackArguments,
         .run = DiagLoopback,
         .example = "diag loopback --size 512 --iterations 10 -p scsi:3",
         .result = ShapeOf<kLoopbackFields>},
        {.path = "diag dport",
         .risk = Risk::InterruptsIo,
         .help = "run a D-port test and show its results",
         .run = DiagDport,
         .example = "diag dport -p scsi:3",
         .result = ShapeOf<kDportFields>},
        {.path = "diag mailbox",
         .risk = Risk::Irrecoverable,
         .help = "send a raw firmware mailbox command",
         .arguments = kMailboxArguments,
         .run = DiagMailbox,
         .example = "diag mailbox 0x08 -p scsi:3",
         .result = ShapeOf<kMailboxFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
