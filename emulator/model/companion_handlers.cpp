// The companion chip of the newer adapters: reset, version, firmware in segments, information.
#include <algorithm>
#include <cstring>

#include "flash/flash_records.h"
#include "hxflash.h"
#include "model/bytes/pattern.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/storage/flash.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint32_t kDeliveredVersion = 0x00010400;  // 1.4.0
constexpr uint32_t kExchangeAddress = 0x00E40000;
constexpr uint32_t kInformationBytes = 40'000;
constexpr uint32_t kMostImageBytes = 16 * 1024 * 1024;

// The stored firmware runs from now on.
DriverStatus Reset(Exchange& exchange) {
    uint32_t flags;
    if (!exchange.Read(flags)) {
        return DriverStatus::InvalidParameter;
    }
    StartCompanion(exchange.GetPort().flash->companion);
    exchange.Reply(flags);
    return DriverStatus::Success;
}

DriverStatus Version(Exchange& exchange) {
    const uint32_t running = exchange.GetPort().flash->companion.running;
    exchange.Reply(running != 0 ? running : kDeliveredVersion);
    return DriverStatus::Success;
}

// Segments come in their order, each naming the exchange that the first one opened.
DriverStatus Update(Exchange& exchange) {
    flash::CompanionSegmentRecord segment;
    Port& port = exchange.GetPort();
    if (!exchange.Read(segment) || segment.segmentSize > flash::kCompanionSegment ||
        segment.segmentSize > exchange.InputLength() - sizeof segment ||
        segment.totalSize > kMostImageBytes || segment.segmentCount != 1) {
        return DriverStatus::InvalidParameter;
    }
    if (const WriteResult result = CheckWrite(port); result.status != DriverStatus::Success) {
        return result.status;
    }
    Companion& companion = port.flash->companion;
    const bool first = segment.offset == 0;
    if (first) {
        companion.received = 0;
        companion.total = segment.totalSize;
    }
    const bool last = (segment.flags & flash::kCompanionLastSegment) != 0;
    const uint32_t end = companion.received + segment.segmentSize;
    if (segment.offset != companion.received || segment.totalSize != companion.total ||
        segment.exchangeAddress != (first ? 0 : kExchangeAddress) || end > companion.total ||
        last != (end == companion.total)) {
        companion.total = 0;
        companion.received = 0;
        return DriverStatus::InvalidParameter;
    }
    companion.received = end;
    if (SpendPower(*port.flash, segment.segmentSize) == segment.segmentSize && last) {
        companion.stored = segment.firmwareVersion;
        NoteStored(port);
    }
    segment.exchangeAddress = kExchangeAddress;
    std::memcpy(exchange.Bytes(), &segment, std::min(exchange.Room(), uint32_t{sizeof segment}));
    exchange.KeepReply(sizeof segment + segment.segmentSize);
    return DriverStatus::Success;
}

DriverStatus Information(Exchange& exchange) {
    flash::CompanionInformationRecord record;
    if (!exchange.Read(record) || exchange.Room() < sizeof record ||
        record.offset > kInformationBytes) {
        return DriverStatus::InvalidParameter;
    }
    record.returned = std::min({record.piece, kInformationBytes - record.offset,
                                exchange.Room() - uint32_t{sizeof record}});
    record.total = kInformationBytes;
    exchange.StartReply(sizeof record + record.returned);
    exchange.Put(0, &record, sizeof record);
    FillPattern(exchange.GetPort().adapter->deviceId, record.offset,
                exchange.Bytes() + sizeof record, record.returned);
    return DriverStatus::Success;
}

struct OperationRow {
    HX_COMPANION_OPERATION operation;
    DriverStatus (*run)(Exchange& exchange);
};
constexpr OperationRow kOperations[] = {
    {HX_COMPANION_RESET, Reset},
    {HX_COMPANION_VERSION, Version},
    {HX_COMPANION_UPDATE, Update},
    {HX_COMPANION_INFORMATION, Information},
};

DriverStatus AuxiliaryFirmware(Exchange& exchange) {
    if (!ChipOf(exchange.GetPort()).Has(properties::ChipTrait::SecureFlash)) {
        return DriverStatus::InvalidRequest;
    }
    for (const OperationRow& row : kOperations) {
        if (row.operation == exchange.Ext().subCode) {
            return row.run(exchange);
        }
    }
    return DriverStatus::UnsupportedSubCode;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::AuxiliaryFirmware, .handle = AuxiliaryFirmware, .flags = AnySubCode},
};

}  // namespace

RequestRows CompanionRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
