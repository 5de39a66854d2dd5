#include "model/health/temperature.h"

#include <algorithm>

#include "model/fabric/fabric.h"
#include "model/health/mailbox_commands.h"
#include "statistics/health_records.h"

namespace vxemu {
namespace {

constexpr int32_t kPerDegree = 256;
constexpr int32_t kSwing = 3 * kPerDegree;
constexpr uint64_t kPeriod = 120'000;  // milliseconds
constexpr int32_t kToShutdown = 10 * kPerDegree;

int32_t InUnits(uint8_t degrees) {
    return degrees * kPerDegree;
}

// Up to the swing in the first quarter of a period, down to its opposite in the next two.
int32_t Triangle(uint64_t milliseconds) {
    constexpr auto kQuarter = static_cast<int32_t>(kPeriod / 4);
    const auto at = static_cast<int32_t>(milliseconds % kPeriod);
    const int32_t height = at < kQuarter       ? at
                           : at < 3 * kQuarter ? 2 * kQuarter - at
                                               : at - 4 * kQuarter;
    return kSwing * (height / 10) / (kQuarter / 10);
}

uint16_t Register(int32_t value) {
    return static_cast<uint16_t>(static_cast<int16_t>(value));
}

// The ports of the adapter share its board.
Board Sample(const Port& port, int32_t now, int32_t warning) {
    const Host& host = port.fabric->host;
    const uint64_t clock = host.Now();
    return host.Together([&] {
        Board& board = *port.board;
        const bool above = warning != 0 && now > warning;
        if (above && board.above) {
            board.millisecondsAbove += clock - std::min(clock, board.askedAt);
        }
        board.above = above;
        board.askedAt = clock;
        board.highest = board.asked ? std::max(board.highest, now) : now;
        board.asked = true;
        return board;
    });
}

MailboxCompletion BoardTemperature(Port& port, transport::MailboxRequest& registers) {
    const AdapterProfile& adapter = *port.adapter;
    const int32_t now = TemperatureOf(port);
    const int32_t warning = InUnits(adapter.temperatureWarning);
    const int32_t critical = InUnits(adapter.temperatureCritical);
    const Board board = Sample(port, now, warning);
    const auto seconds = static_cast<uint32_t>(board.millisecondsAbove / 1000);
    registers.out[1] = Register(now);
    registers.out[2] = Register(warning);
    registers.out[3] = Register(critical);
    registers.out[4] = Register(critical != 0 ? critical + kToShutdown : 0);
    registers.out[5] = Register(board.highest);
    registers.out[6] = static_cast<uint16_t>(seconds);
    registers.out[7] = static_cast<uint16_t>(seconds >> 16);
    return MailboxCompletion::Done;
}

constexpr MailboxRow kTemperatureCommands[] = {
    {static_cast<uint16_t>(statistics::MailboxCommand::BoardTemperature),
     properties::ChipTrait::Newer, BoardTemperature},
};

}  // namespace

int32_t TemperatureOf(const Port& port) {
    return InUnits(port.adapter->temperature) + Triangle(port.fabric->host.Now());
}

std::span<const MailboxRow> TemperatureMailboxCommands() {
    return kTemperatureCommands;
}

}  // namespace vxemu
