// Dumps. Each is fetched by a header with length and offset; length 0 asks for the whole size.
#include <cstring>

#include "dumps/dump_records.h"
#include "model/bytes/pattern.h"
#include "model/dump_record.h"
#include "model/handlers.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

bool HasDump(const Port& port) {
    return port.dumpsForced != 0 || port.adapter->dumpPresent != 0;
}

// The kind of a dump goes into what it holds.
enum class DumpKind : uint32_t { Raw = 1, Mpi, Mctp, Mini1, Mini2 };

template <typename Header>
void Describe(const Port&, Header&) {}

void Describe(const Port& port, dumps::RawHeader& header) {
    const uint32_t attributes[] = {DumpSeed(port), port.adapter->deviceId, port.profile->scsiPort};
    static_assert(sizeof attributes <= sizeof header.attributes);
    std::memcpy(header.attributes, attributes, sizeof attributes);
}

void Describe(const Port& port, dumps::TextHeader& header) {
    const dumps::Extents extents = DumpRecord(port).Extents();
    header.externalMemoryWords = extents.externalMemoryWords;
    header.traceWords = extents.traceWords;
    header.fceWords = extents.fceWords;
    header.queues = extents.queues;
    header.formatVersion = dumps::kOldestTextFormat;
}

// Answers the size query, or the piece of a dump of size bytes that put(offset, bytes, length)
// makes.
template <typename Header, typename PutPiece>
DriverStatus Fetch(Exchange& exchange, uint64_t size, PutPiece put) {
    Header header;
    if (!exchange.Read(header) || exchange.Room() < sizeof header) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    if (!HasDump(port) || size == 0) {
        return DriverStatus::NoDump;
    }
    if (header.offset > size) {
        return DriverStatus::InvalidParameter;
    }
    const bool query = header.length == 0;
    uint64_t piece = query ? 0 : size - header.offset;
    piece = piece < header.length ? piece : header.length;
    const uint32_t room = exchange.Room() - static_cast<uint32_t>(sizeof header);
    const auto delivered = static_cast<uint32_t>(piece < room ? piece : room);
    header.length = query ? static_cast<uint32_t>(size) : delivered;
    Describe(port, header);
    exchange.StartReply(static_cast<uint32_t>(sizeof header) + delivered);
    exchange.Put(0, &header, sizeof header);
    put(header.offset, exchange.Bytes() + sizeof header, delivered);
    return DriverStatus::Success;
}

template <typename Header>
DriverStatus FetchPattern(Exchange& exchange, uint32_t size, DumpKind kind) {
    const uint32_t seed = DumpSeed(exchange.GetPort()) + (static_cast<uint32_t>(kind) << 24);
    return Fetch<Header>(exchange, size, [seed](uint64_t offset, uint8_t* bytes, uint32_t length) {
        FillPattern(seed, offset, bytes, length);
    });
}

DriverStatus ForceDump(Exchange& exchange) {
    ++exchange.GetPort().dumpsForced;
    return DriverStatus::Success;
}

DriverStatus RawFirmwareDump(Exchange& exchange) {
    const uint32_t size = exchange.GetPort().adapter->rawDumpBytes;
    return FetchPattern<dumps::RawHeader>(exchange, size, DumpKind::Raw);
}

DriverStatus RawMpiDump(Exchange& exchange) {
    const uint32_t size = exchange.GetPort().adapter->mpiDumpBytes;
    return FetchPattern<dumps::RawHeader>(exchange, size, DumpKind::Mpi);
}

DriverStatus MctpDump(Exchange& exchange) {
    const uint32_t size = exchange.GetPort().adapter->mctpDumpBytes;
    return FetchPattern<dumps::MctpHeader>(exchange, size, DumpKind::Mctp);
}

DriverStatus MiniDump(Exchange& exchange) {
    dumps::MiniHeader header;
    if (!exchange.Read(header) || header.part < 1 || header.part > 2) {
        return DriverStatus::InvalidParameter;
    }
    const uint32_t size = exchange.GetPort().adapter->miniDumpBytes[header.part - 1];
    return FetchPattern<dumps::MiniHeader>(exchange, size,
                                           header.part == 1 ? DumpKind::Mini1 : DumpKind::Mini2);
}

DriverStatus FirmwareDump(Exchange& exchange) {
    const DumpRecord record(exchange.GetPort());
    if (!record.Exists()) {
        return DriverStatus::InvalidRequest;
    }
    return Fetch<dumps::TextHeader>(exchange, record.Bytes(),
                                    [&record](uint64_t offset, uint8_t* bytes, uint32_t length) {
                                        record.Put(offset, bytes, length);
                                    });
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::ForceDump, .handle = ForceDump},
    {.command = command::RawFirmwareDump, .handle = RawFirmwareDump, .flags = WithinPort},
    {.command = command::RawMpiDump, .handle = RawMpiDump, .flags = WithinPort},
    {.command = command::MctpDump, .handle = MctpDump, .flags = WithinPort},
    {.command = command::MiniDump, .handle = MiniDump, .flags = WithinPort},
    {.command = command::FirmwareDump, .handle = FirmwareDump, .flags = WithinPort},
};

}  // namespace

RequestRows DumpRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
