// Loopback, D-port and mailbox.
#include <cstring>

#include "model/handlers.h"
#include "model/health/mailbox_commands.h"
#include "passthru/diagnostic_records.h"
#include "properties/chip_families.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr auto kComplete = static_cast<uint16_t>(MailboxCompletion::Done);
constexpr auto kBadParameter = static_cast<uint16_t>(MailboxCompletion::BadParameter);

// Damages the first bytes of an echo, as many as the port is told to.
uint16_t DamageEcho(const Port& port, uint8_t* echo, uint32_t length) {
    const uint32_t wanted = port.profile->loopbackErrors;
    const uint32_t count = wanted < length ? wanted : length;
    for (uint32_t at = 0; at < count; ++at) {
        echo[at] = static_cast<uint8_t>(~echo[at]);
    }
    return static_cast<uint16_t>(count);
}

// Ports take turns: who asks first starts the test, who asks next gets the results.
bool StartsDport(Port& port) {
    port.dportRunning = port.dportRunning == 0 ? 1 : 0;
    return port.dportRunning != 0;
}

constexpr uint32_t kDportResults = 72;
constexpr uint32_t kDportResultsEx = 1088;

DriverStatus DportTest(Exchange& exchange, uint32_t length) {
    Port& port = exchange.GetPort();
    if (!properties::ChipOf(port.adapter->deviceId).Has(properties::ChipTrait::Newest)) {
        return DriverStatus::UnsupportedSubCode;
    }
    const bool running = StartsDport(port);
    exchange.StartReply(length);
    // Test state, how far it went and number of tests, then a byte per lane and test: 0 is good.
    const uint16_t head[3] = {static_cast<uint16_t>(running ? 1 : 2), 4, 1};
    exchange.Put(0, head, sizeof head);
    if (running) {
        return DriverStatus::TestRunning;
    }
    constexpr uint32_t kLanes = 8;
    const uint32_t wrong = port.profile->loopbackErrors;
    for (uint32_t at = 0; at < wrong && at < kDportResults - kLanes; ++at) {
        constexpr uint8_t kLaneFailed = 1;
        exchange.Put(kLanes + at, &kLaneFailed, sizeof kLaneFailed);
    }
    return DriverStatus::Success;
}

using Registers = passthru::MailboxRequest;

MailboxCompletion DoNothing(Port&, Registers&) {
    return MailboxCompletion::Done;
}

// All input registers but the command come back.
MailboxCompletion EchoRegisters(Port&, Registers& registers) {
    for (uint32_t at = 1; at < passthru::kMailboxIn; ++at) {
        registers.out[at] = registers.in[at];
    }
    return MailboxCompletion::Done;
}

MailboxCompletion AboutFirmware(Port& port, Registers& registers) {
    uint16_t* out = registers.out + 1;
    for (const char* at = port.adapter->firmwareVersion; *at != 0 && out < registers.out + 4;
         ++at) {
        if (*at >= '0' && *at <= '9') {
            *out = static_cast<uint16_t>(*out * 10 + (*at - '0'));
        } else {
            ++out;
        }
    }
    return MailboxCompletion::Done;
}

constexpr MailboxRow kBasicCommands[] = {
    {0x00, properties::ChipTrait::None, DoNothing},
    {0x06, properties::ChipTrait::None, EchoRegisters},
    {0x08, properties::ChipTrait::None, AboutFirmware},
};

constexpr std::span<const MailboxRow> (*kMailboxFiles[])() = {
    BasicMailboxCommands,
    TemperatureMailboxCommands,
    RegisterMailboxCommands,
};

MailboxCompletion RunMailboxCommand(Port& port, Registers& registers) {
    const properties::Chip chip = properties::ChipOf(port.adapter->deviceId);
    for (const auto rows : kMailboxFiles) {
        for (const MailboxRow& row : rows()) {
            if (row.command == registers.in[0] &&
                (row.chips == properties::ChipTrait::None || chip.Has(row.chips))) {
                return row.run(port, registers);
            }
        }
    }
    return MailboxCompletion::InvalidCommand;
}

DriverStatus Loopback(Exchange& exchange) {
    passthru::LoopbackRequest request;
    if (!exchange.Read(request) || exchange.Room() < sizeof request) {
        return DriverStatus::InvalidParameter;
    }
    constexpr uint32_t kHead = sizeof request;
    passthru::LoopbackReply reply = {};
    uint32_t echoed = 0;
    if (request.length > exchange.InputLength() - kHead ||
        request.length > exchange.Room() - kHead || request.iterations == 0) {
        reply.completion = kBadParameter;
    } else {
        reply.completion = kComplete;
        echoed = request.length;
        reply.counter14 = DamageEcho(exchange.GetPort(), exchange.Bytes() + kHead, echoed);
        reply.counter20 = static_cast<uint16_t>(request.iterations);
        reply.counter22 = static_cast<uint16_t>(request.iterations >> 16);
    }
    std::memcpy(exchange.Bytes(), &reply, sizeof reply);
    exchange.KeepReply(kHead + echoed);
    return DriverStatus::Success;
}

bool LegacyLoopback(Exchange& exchange) {
    // Worked on where it lies: too large for a kernel stack.
    auto& request = *reinterpret_cast<passthru::LegacyLoopback*>(exchange.Bytes());
    if (exchange.InputLength() < sizeof request || exchange.Room() < sizeof request) {
        return false;
    }
    uint16_t completion = kBadParameter;
    uint32_t value = 0;
    if (request.sendLength <= sizeof request.sendData && request.iterations != 0 &&
        request.mailboxCommand == passthru::kLoopbackCommand &&
        request.sendLength == request.sendLengthAgain) {
        completion = kComplete;
        const uint32_t echoed =
            request.sendLength < request.receiveLength ? request.sendLength : request.receiveLength;
        std::memcpy(request.receiveData, request.sendData, echoed);
        DamageEcho(exchange.GetPort(), request.receiveData, echoed);
        value = request.iterations;
    }
    std::memset(request.result, 0, sizeof request.result);
    std::memcpy(request.result, &completion, sizeof completion);
    request.value168 = value;
    exchange.KeepReply(sizeof request);
    return true;
}

DriverStatus DportDiagnostic(Exchange& exchange) {
    return DportTest(exchange, kDportResults);
}

DriverStatus DportResults(Exchange& exchange) {
    return DportTest(exchange, kDportResultsEx);
}

DriverStatus Mailbox(Exchange& exchange) {
    Registers registers;
    if (!exchange.Read(registers) || registers.inCount == 0 ||
        registers.inCount > passthru::kMailboxIn || registers.outCount > passthru::kMailboxOut) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    HX_PRIVATE_STATISTICS& counted = port.privateCounts.counted;
    std::memset(registers.out, 0, sizeof registers.out);
    const MailboxCompletion completion = RunMailboxCommand(port, registers);
    registers.out[0] = static_cast<uint16_t>(completion);
    exchange.Reply(registers);
    ++counted.mailboxCommands;
    if (completion != MailboxCompletion::Done) {
        ++counted.mailboxFailures;
        exchange.SetDetail(registers.out[0]);
        return DriverStatus::MailboxFailed;
    }
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::Loopback, .handle = Loopback, .flags = WithinPort},
    {.command = command::DportDiagnostic, .handle = DportDiagnostic, .flags = WithinPort},
    {.command = command::DportResults, .handle = DportResults, .flags = WithinPort},
    {.command = command::Mailbox, .handle = Mailbox, .flags = WithinPort},
};

constexpr PlainRow kPlainRequests[] = {
    // Drivers of both generations take the first form of the loopback.
    {.code = command::LegacyLoopback, .handle = LegacyLoopback, .flags = WithinPort},
    {.code = command::LegacyLoopback,
     .handle = LegacyLoopback,
     .flags = WithinPort,
     .generation = DriverGeneration::Extended},
};

}  // namespace

std::span<const MailboxRow> BasicMailboxCommands() {
    return kBasicCommands;
}

RequestRows DiagnosticRequests() {
    return {.extended = kRequests, .plain = kPlainRequests};
}

}  // namespace vxemu
