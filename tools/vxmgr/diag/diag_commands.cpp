// The diagnostics that stop I/O.
#include "vxmgr/diag/commands.h"

#include <chrono>

#include "common/text.h"
#include "vxmgr/app/bytes.h"
#include "vxmgr/app/code_text.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/app/values.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Value;

constexpr uint32_t kLoopbackDriver = 80100;  // older ones report success without a test
constexpr size_t kMostIn = 32;
constexpr uint64_t kMostOut = 64;

constexpr Argument kLoopbackArguments[] = {
    {.name = "--size",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "bytes to send (2048)",
     .least = 4,
     .most = 65536},
    {.name = "--iterations",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "how often (1)",
     .least = 1,
     .most = 1000000},
    {.name = "--options",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "option word for the firmware (0)",
     .most = UINT16_MAX},
};
constexpr Argument kMailboxArguments[] = {
    {.name = "REGS",
     .help = "1 to 32 register values, the command first: 0x0006 0x1234 (or decimal)",
     .required = true,
     .repeated = true},
    {.name = "--registers",
     .kind = ArgumentKind::Number,
     .valueName = "N",
     .help = "how many registers to read back (8)",
     .most = kMostOut},
};

constexpr CodeText kCompletions[] = {
    {HX_LOOPBACK_COMPLETE, "complete"},
    {HX_LOOPBACK_BAD_PARAMETER, "bad parameter"},
    {HX_LOOPBACK_COMMAND_ERROR, "command error"},
};

std::string CompletionText(uint16_t code) {
    return TextOfCode(kCompletions, code, "other");
}

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

std::vector<uint16_t> GivenRegisters(tools::Invocation& invocation) {
    std::vector<uint16_t> registers;
    for (const std::string& word : invocation.Given().All("REGS")) {
        const auto value = tools::ParseNumber(word);
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

Record RegisterRow(size_t number, uint16_t value) {
    Record row;
    row.Add("register", "Register", Value::Number(number), "REGISTER");
    row.Add("value", "Value", Value::Text(tools::Hex(value, 4)), "VALUE");
    return row;
}

ExitCode DiagLoopback(tools::Invocation& invocation) {
    const tools::Options& given = invocation.Given();
    const auto size = static_cast<uint32_t>(given.Number("size").value_or(2048));
    const auto iterations = static_cast<uint32_t>(given.Number("iterations").value_or(1));
    const auto options = static_cast<uint16_t>(given.Number("options").value_or(0));
    const PortSession session = OpenSelectedPort(invocation);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    if (session.port.driverVersionCode < kLoopbackDriver) {
        result.Add("tested", "Tested", Value::Flag(false));
        invocation.Fail(ExitCode::NotSupported,
                        "not tested: drivers below 8.01.00 report success without a test",
                        "see `driver show`");
    }
    if (invocation.DryRun()) {
        result.Add("tested", "Tested", Value::Flag(false));
        invocation.Note("dry run: " + std::to_string(size) + " bytes would be looped");
        return ExitCode::Done;
    }
    invocation.Confirm(QuestionAbout(session, "Run a loopback test.",
                                     "I/O through this port stops until it ends."));
    const std::vector<uint8_t> sent = Pattern(size);
    std::vector<uint8_t> received(size);
    HX_LOOPBACK_EX_RESULT answer{};
    const HX_STATUS status = HXRunDiagLoopbackEx(session.Handle(), 0, options, sent.data(), size,
                                                 received.data(), size, iterations, &answer);
    result.Add("tested", "Tested", Value::Flag(status == HXMGT_SUCCESS));
    if (status != HXMGT_SUCCESS) {
        return invocation.Report(status, "loopback", session.port.Object());
    }
    const size_t differences = Differences(sent, received);
    const bool complete = answer.completion == HX_LOOPBACK_COMPLETE;
    const uint32_t done = uint32_t{answer.counters[3]} << 16 | answer.counters[4];
    result.Add("completion", "Completion", Value::Text(CompletionText(answer.completion)));
    result.Add("size", "Size", Value::Number(size, "bytes"));
    result.Add("wrong_bytes", "Wrong bytes", Value::Number(differences));
    result.Add("crc_errors", "CRC errors", Value::Number(answer.counters[0]));
    result.Add("disparity_errors", "Disparity errors", Value::Number(answer.counters[1]));
    result.Add("frame_length_errors", "Frame length errors", Value::Number(answer.counters[2]));
    result.Add("iterations", "Iterations done", Value::Number(done));
    if (!complete || differences != 0) {
        invocation.Fail(ExitCode::Failed,
                        complete
                            ? std::to_string(differences) + " bytes came back wrong"
                            : "the firmware ended the test: " + CompletionText(answer.completion));
    }
    return ExitCode::Done;
}

ExitCode DiagDport(tools::Invocation& invocation) {
    constexpr std::chrono::milliseconds kPoll{500};
    constexpr int kLongest = 600;  // polls: five minutes
    const PortSession session = OpenSelectedPort(invocation);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    if (invocation.DryRun()) {
        invocation.Note("dry run: a D-port test would run");
        return ExitCode::Done;
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
    Bytes bytes = BytesOf(answer);
    while (bytes.size() > 1 && bytes.back() == 0) {
        bytes = bytes.first(bytes.size() - 1);
    }
    AddData(invocation, "Results", bytes);
    return ExitCode::Done;
}

ExitCode DiagMailbox(tools::Invocation& invocation) {
    const std::vector<uint16_t> registers = GivenRegisters(invocation);
    const auto wanted = static_cast<size_t>(invocation.Given().Number("registers").value_or(8));
    const PortSession session = OpenSelectedPort(invocation);
    Record& result = invocation.Result();
    result.Add("port", "Port", Value::Number(session.port.index));
    result.Add("command", "Command", Value::Text(tools::Hex(registers[0], 4)));
    if (invocation.DryRun()) {
        invocation.Note("dry run: the mailbox command would be sent");
        return ExitCode::Done;
    }
    invocation.Confirm(QuestionAbout(
        session, "Send mailbox command " + tools::Hex(registers[0], 4) + " to the firmware.",
        "Nothing is checked: a wrong command can stop the adapter or damage what it stores."));
    std::vector<uint16_t> answer(kMostOut);
    const HX_STATUS status = HXMailboxPassthru(session.Handle(), 0, registers.data(),
                                               static_cast<int16_t>(registers.size()),
                                               answer.data(), static_cast<int16_t>(wanted));
    invocation.Changed();
    std::vector<Record> rows;
    for (size_t number = 0; number < wanted; ++number) {
        rows.push_back(RegisterRow(number, answer[number]));
    }
    result.AddList("registers", "Registers", tools::ListLayout::Table, RegisterRow(0, 0),
                   "no registers", std::move(rows));
    return status == HXMGT_SUCCESS
               ? ExitCode::Done
               : invocation.Report(status, "the mailbox command", session.port.Object());
}

}  // namespace

tools::CommandRows DiagCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "diag loopback",
            .risk = tools::Risk::InterruptsIo,
            .help = "have the firmware loop data and compare it",
            .schema = "diag.loopback",
            .arguments = kLoopbackArguments,
            .run = DiagLoopback,
            .example = "diag loopback --size 512 --iterations 10 -p scsi:3",
        },
        {
            .path = "diag dport",
            .risk = tools::Risk::InterruptsIo,
            .help = "run a D-port test and show its results",
            .schema = "diag.dport",
            .run = DiagDport,
            .example = "diag dport -p scsi:3",
        },
        {
            .path = "diag mailbox",
            .risk = tools::Risk::Irrecoverable,
            .help = "send a raw firmware mailbox command",
            .schema = "diag.mailbox",
            .arguments = kMailboxArguments,
            .run = DiagMailbox,
            .example = "diag mailbox 0x08 -p scsi:3",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
