// Two-wire devices of a port, and firmware for its transceiver.
#include <algorithm>
#include <cstring>

#include "flash/flash_records.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "model/storage/flash.h"
#include "model/storage/port_eeprom.h"
#include "model/storage/sfp_firmware.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

// Mailbox codes of a transfer that fails, and what the device says.
constexpr uint32_t kTransferFailed = 0x4002;
constexpr uint32_t kNoTransceiver = 0x4005;  // of a request for both pages
constexpr uint32_t kBadParameter = 0x4006;
constexpr uint16_t kNotAcknowledged = 1;
constexpr uint16_t kProtected = 2;

constexpr uint16_t kOwnDevices = 0x2000;  // option: a device of the adapter, not the transceiver

// SFF-8472 has no module of type 0: a profile has it where the cage is empty.
bool HasTransceiver(const Port& port) {
    return port.profile->transceiverType[0] != 0;
}

// A two-wire device: where its bytes are, and from where on they may be written.
struct DeviceRow {
    uint16_t device;
    bool own;
    size_t offset;  // in the port's memory
    uint32_t bytes;
    uint32_t writable;
};
constexpr DeviceRow kDevices[] = {
    {0xA0, false, offsetof(PortEeprom, identity), sizeof(formats::SfpIdentity),
     offsetof(formats::SfpIdentity, vendorSpecific)},
    {0xA2, false, offsetof(PortEeprom, diagnostics), sizeof(formats::SfpDiagnostics),
     offsetof(formats::SfpDiagnostics, writable)},
    {0xA0, true, offsetof(PortEeprom, versionRecords), kVersionRecordBytes, 0},
    {0xE0, true, offsetof(PortEeprom, control), sizeof(PortEeprom::control), 0},
};

const DeviceRow* FindDevice(const Port& port, const flash::TwoWireRecord& request) {
    for (const DeviceRow& row : kDevices) {
        if (row.device == request.device && row.own == ((request.options & kOwnDevices) != 0)) {
            return row.own || HasTransceiver(port) ? &row : nullptr;
        }
    }
    return nullptr;
}

DriverStatus Refuse(Exchange& exchange, flash::TwoWireRecord& record, uint32_t detail,
                    uint16_t deviceStatus) {
    record.deviceStatus = deviceStatus;
    exchange.Reply(record);
    exchange.SetDetail(detail);
    return DriverStatus::MailboxFailed;
}

// Reads or writes; the record comes back with the data and the device's status.
template <typename Move>
DriverStatus Transfer(Exchange& exchange, Move move) {
    flash::TwoWireRecord record;
    if (!exchange.Read(record)) {
        return DriverStatus::InvalidParameter;
    }
    record.deviceStatus = 0;
    PortEeprom* eeprom = EepromOf(exchange.GetPort());
    if (eeprom == nullptr) {
        return DriverStatus::OutOfMemory;
    }
    const DeviceRow* row = FindDevice(exchange.GetPort(), record);
    if (row == nullptr) {
        return Refuse(exchange, record, kTransferFailed, kNotAcknowledged);
    }
    if (record.length > sizeof record.data || record.offset > row->bytes ||
        record.length > row->bytes - record.offset) {
        return Refuse(exchange, record, kBadParameter, 0);
    }
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(eeprom) + row->offset + record.offset;
    return move(record, *row, bytes);
}

// Values move with the requests that the port has served. The port has its memory.
void MeasureNow(Port& port) {
    Measure(static_cast<uint32_t>(port.requests),
            {port.LinkUp(), port.profile->receivedPower, port.profile->transmitFault != 0},
            port.eeprom->diagnostics);
}

constexpr auto kAccepted = flash::TransceiverResult::Accepted;
constexpr auto kStopped = flash::TransceiverResult{2};

// Takes a piece of an image; pieces come in their order. With the last one the image is installed.
flash::TransceiverResult LoadPiece(Port& port, const flash::TransceiverLoadRecord& record,
                                   const uint8_t* data) {
    Staging& staging = port.flash->staging;
    const bool first = (record.flags & flash::kTransceiverFirst) != 0;
    const bool last = (record.flags & flash::kTransceiverLast) != 0;
    if (first && !StartStaging(port.fabric->host, staging, StagingUse::TransceiverFirmware,
                               record.imageSize)) {
        return kStopped;
    }
    if (staging.use != StagingUse::TransceiverFirmware || record.imageSize != staging.size ||
        record.offset != staging.received || record.length > staging.size - staging.received ||
        last != (record.length == staging.size - staging.received)) {
        return kStopped;
    }
    if (first && !SuitsTransceiver({data, record.length}, *port.profile)) {
        return flash::TransceiverResult::Incompatible;
    }
    std::memcpy(staging.bytes + staging.received, data, record.length);
    staging.received += SpendPower(*port.flash, record.length);
    if (staging.received != staging.size) {
        return kAccepted;
    }
    const std::span<const uint8_t> image(staging.bytes, staging.size);
    PortEeprom* eeprom = EepromOf(port);
    if (eeprom == nullptr || !InstallTransceiverFirmware(image, eeprom->identity)) {
        return kStopped;
    }
    NoteEepromWritten(port);
    return kAccepted;
}

DriverStatus I2cRead(Exchange& exchange) {
    return Transfer(exchange, [&](flash::TwoWireRecord& record, const DeviceRow&, uint8_t* bytes) {
        MeasureNow(exchange.GetPort());
        std::memset(record.data, 0, sizeof record.data);
        std::memcpy(record.data, bytes, record.length);
        exchange.Reply(record);
        return DriverStatus::Success;
    });
}

DriverStatus I2cWrite(Exchange& exchange) {
    Port& port = exchange.GetPort();
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    return Transfer(exchange,
                    [&](flash::TwoWireRecord& record, const DeviceRow& row, uint8_t* bytes) {
                        if (record.offset < row.writable) {
                            return Refuse(exchange, record, kBadParameter, kProtected);
                        }
                        if ((record.options & flash::kTwoWireNoData) == 0) {
                            WriteEeprom(port, bytes, record.data, record.length);
                        }
                        exchange.Reply(record);
                        return DriverStatus::Success;
                    });
}

// Both pages, or the beginning of them.
DriverStatus SfpRead(Exchange& exchange) {
    Port& port = exchange.GetPort();
    if (!HasTransceiver(port)) {
        exchange.SetDetail(kNoTransceiver);
        return DriverStatus::MailboxFailed;
    }
    PortEeprom* eeprom = EepromOf(port);
    if (eeprom == nullptr) {
        return DriverStatus::OutOfMemory;
    }
    MeasureNow(port);
    flash::TransceiverMemory memory;
    std::memcpy(memory.identity, &eeprom->identity, sizeof memory.identity);
    std::memcpy(memory.diagnostics, &eeprom->diagnostics, sizeof memory.diagnostics);
    exchange.StartReply(std::min(exchange.Room(), uint32_t{sizeof memory}));
    exchange.Put(0, &memory, exchange.ReplyLength());
    return DriverStatus::Success;
}

DriverStatus LoadSfpFirmware(Exchange& exchange) {
    constexpr uint32_t kMostBytes = 1024 * 1024;
    flash::TransceiverLoadRecord record;
    if (!exchange.Read(record) || record.imageSize > kMostBytes || record.length == 0 ||
        record.length > exchange.InputLength() - sizeof record) {
        return DriverStatus::InvalidParameter;
    }
    Port& port = exchange.GetPort();
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    const flash::TransceiverResult result =
        LoadPiece(port, record, exchange.Bytes() + sizeof record);
    const bool over = result != kAccepted || (record.flags & flash::kTransceiverLast) != 0;
    if (over && port.flash->staging.use == StagingUse::TransceiverFirmware) {
        DropStaging(port.fabric->host, port.flash->staging);
    }
    flash::TransceiverLoadReply reply = {};
    reply.result = static_cast<uint32_t>(result);
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::SfpRead, .handle = SfpRead, .flags = WithinPort},
    {.command = command::I2cRead, .handle = I2cRead, .flags = WithinPort},
    {.command = command::I2cWrite, .handle = I2cWrite},
    {.command = command::LoadSfpFirmware, .handle = LoadSfpFirmware},
};

}  // namespace

RequestRows SfpRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
