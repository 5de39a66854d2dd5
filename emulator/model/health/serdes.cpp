#include "model/health/serdes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "hxmgtapi.h"
#include "model/bytes/pattern.h"
#include "model/handlers.h"
#include "model/health/mailbox_commands.h"
#include "model/health/temperature.h"
#include "model/port_settings.h"
#include "statistics/health_records.h"

namespace vxemu {
namespace {

using statistics::MailboxCommand;
using transport::DriverStatus;
using transport::MailboxRequest;
using enum RequestFlags;

// Of a lane. The chip tells the first two; others than those named take any value and hold none.
enum LaneRegister : uint32_t {
    kDeviceId = 0x00,
    kLocked = 0x01,
    kAmplitude = 0x10,
    kPre = 0x11,
    kMain = 0x12,
    kPost = 0x13,
    kCtle = 0x20,
    kDfe = 0x21,  // four
    kLastDfe = 0x24,
};
constexpr uint32_t kFirstWritable = 0x02;

constexpr uint16_t kUsualAmplitude = 800;  // millivolts
struct StartRow {
    LaneRegister at;
    int16_t value;
};
constexpr StartRow kStart[] = {
    {kAmplitude, kUsualAmplitude}, {kPre, -2}, {kMain, 28}, {kPost, -6}, {kCtle, 60},
};

constexpr uint32_t kWidestEye = 120;  // millivolts
constexpr uint32_t kEyeMoves = 4;
constexpr uint16_t kEyeWidth = 412;  // 1/1000 unit interval

// Of the retimer.
constexpr uint32_t kRetimerMark = 0x00;
constexpr uint32_t kRetimerRevision = 0x02;
constexpr uint32_t kRetimerDegrees = 0x08;
constexpr uint32_t kFirstRetimerWritable = 0x10;

uint32_t ReadLane(const Port& port, uint32_t lane, uint32_t address) {
    switch (address) {
        case kDeviceId:
            return port.adapter->deviceId;
        case kLocked:
            return port.LinkUp() ? 1 : 0;
        default:
            return port.signals.lanes[lane][address];
    }
}

MailboxCompletion ReadSerdes(Port& port, MailboxRequest& registers) {
    const uint16_t address = registers.in[1];
    if (address >= kSerdesRegisters) {
        return MailboxCompletion::BadParameter;
    }
    registers.out[1] = static_cast<uint16_t>(ReadLane(port, 0, address));
    return MailboxCompletion::Done;
}

MailboxCompletion WriteLane(Port& port, uint32_t lane, uint32_t address, uint32_t value) {
    if (lane >= kSerdesLanes || address < kFirstWritable || address >= kSerdesRegisters) {
        return MailboxCompletion::BadParameter;
    }
    const bool holds =
        (address >= kAmplitude && address <= kPost) || (address >= kCtle && address <= kLastDfe);
    port.signals.lanes[lane][address] = holds ? value : 0;
    return MailboxCompletion::Done;
}

MailboxCompletion WriteSerdes(Port& port, MailboxRequest& registers) {
    return WriteLane(port, 0, registers.in[1], registers.in[2]);
}

uint32_t Pair(uint16_t low, uint16_t high) {
    return low | uint32_t{high} << 16;
}

MailboxCompletion ReadLaneEx(Port& port, MailboxRequest& registers) {
    const uint32_t lane = registers.in[1];
    const uint32_t address = Pair(registers.in[2], registers.in[3]);
    if (lane >= kSerdesLanes || address >= kSerdesRegisters) {
        return MailboxCompletion::BadParameter;
    }
    const uint32_t value = ReadLane(port, lane, address);
    registers.out[1] = static_cast<uint16_t>(value);
    registers.out[2] = static_cast<uint16_t>(value >> 16);
    return MailboxCompletion::Done;
}

MailboxCompletion WriteLaneEx(Port& port, MailboxRequest& registers) {
    return WriteLane(port, registers.in[1], Pair(registers.in[2], registers.in[3]),
                     Pair(registers.in[4], registers.in[5]));
}

uint8_t ReadRetimer(const Port& port, uint32_t address) {
    switch (address) {
        case kRetimerMark:
            return 0x45;
        case kRetimerRevision:
            return 1;
        case kRetimerDegrees:
            return static_cast<uint8_t>(TemperatureOf(port) / 256);
        default:
            return port.signals.retimer[address];
    }
}

MailboxCompletion ReadI2c(Port& port, MailboxRequest& registers) {
    if (registers.in[1] != HX_RETIMER_DEVICE) {
        return MailboxCompletion::NobodyAnswers;
    }
    if (registers.in[2] >= kRetimerRegisters) {
        return MailboxCompletion::BadParameter;
    }
    registers.out[1] = ReadRetimer(port, registers.in[2]);
    return MailboxCompletion::Done;
}

MailboxCompletion WriteI2c(Port& port, MailboxRequest& registers) {
    const uint16_t address = registers.in[2];
    if (registers.in[1] != HX_RETIMER_DEVICE) {
        return MailboxCompletion::NobodyAnswers;
    }
    if (address < kFirstRetimerWritable || address >= kRetimerRegisters || registers.in[3] > 0xFF) {
        return MailboxCompletion::BadParameter;
    }
    port.signals.retimer[address] = static_cast<uint8_t>(registers.in[3]);
    return MailboxCompletion::Done;
}

HX_SERDES_LANE Describe(const Port& port, uint32_t lane) {
    const auto read = [&](uint32_t address) {
        return static_cast<int16_t>(ReadLane(port, lane, address));
    };
    HX_SERDES_LANE record = {};
    record.lane = static_cast<uint8_t>(lane);
    record.speed = port.LinkUp() ? port.profile->currentSpeed : uint8_t{HX_SPEED_UNKNOWN};
    record.locked = static_cast<uint8_t>(ReadLane(port, lane, kLocked));
    record.modulation = record.speed == HX_SPEED_64GBIT ? HX_MODULATION_PAM4 : HX_MODULATION_NRZ;
    record.txAmplitude = static_cast<uint16_t>(read(kAmplitude));
    record.txPre = static_cast<int8_t>(read(kPre));
    record.txMain = static_cast<int8_t>(read(kMain));
    record.txPost = static_cast<int8_t>(read(kPost));
    record.ctle = read(kCtle);
    for (uint32_t tap = 0; tap < std::size(record.dfe); ++tap) {
        record.dfe[tap] = read(kDfe + tap);
    }
    if (record.locked != 0) {
        const auto lost = static_cast<uint32_t>(std::abs(record.txAmplitude - kUsualAmplitude)) +
                          PatternWord(port.requests, lane) % (kEyeMoves + 1);
        record.eyeHeight = static_cast<uint16_t>(kWidestEye - std::min(lost, kWidestEye));
        record.eyeWidth = kEyeWidth;
    }
    return record;
}

DriverStatus SerdesParameters(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    if (!ChipOf(port).Has(properties::ChipTrait::Newest)) {
        return DriverStatus::UnsupportedSubCode;
    }
    statistics::SerdesReply reply = {};
    reply.version = 1;
    reply.count = kSerdesLanes;
    for (uint32_t lane = 0; lane < kSerdesLanes; ++lane) {
        reply.entries[lane] = Describe(port, lane);
    }
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr MailboxRow Row(MailboxCommand command,
                         MailboxCompletion (*run)(Port& port, MailboxRequest& registers)) {
    return {static_cast<uint16_t>(command), properties::ChipTrait::Newest, run};
}
constexpr MailboxRow kRegisterCommands[] = {
    Row(MailboxCommand::ReadSerdesRegister, ReadSerdes),
    Row(MailboxCommand::WriteSerdesRegister, WriteSerdes),
    Row(MailboxCommand::ReadLaneRegister, ReadLaneEx),
    Row(MailboxCommand::WriteLaneRegister, WriteLaneEx),
    Row(MailboxCommand::ReadI2cRegister, ReadI2c),
    Row(MailboxCommand::WriteI2cRegister, WriteI2c),
};

constexpr ExtendedRow kSerdesRequests[] = {
    {.command = transport::command::SerdesParameters,
     .handle = SerdesParameters,
     .flags = WithinPort},
};

}  // namespace

void StartSignals(Port& port) {
    std::memset(&port.signals, 0, sizeof port.signals);
    for (auto& lane : port.signals.lanes) {
        for (const StartRow& row : kStart) {
            lane[row.at] = static_cast<uint16_t>(row.value);
        }
    }
}

std::span<const MailboxRow> RegisterMailboxCommands() {
    return kRegisterCommands;
}

RequestRows SerdesRequests() {
    return {.extended = kSerdesRequests};
}

}  // namespace vxemu
