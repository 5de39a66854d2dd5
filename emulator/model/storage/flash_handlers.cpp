// Layout of the flash, and reading and writing it: whole, by region and by byte offset.
#include <algorithm>
#include <optional>

#include "flash/flash_records.h"
#include "flash/region_rules.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/storage/flash_staging.h"

namespace vxemu {
namespace {

using properties::ChipTrait;
using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

constexpr uint16_t kWhole = 0;
constexpr uint32_t kWholeBytes = 128 * 1024;  // what the requests without a region move at most
constexpr uint32_t kKib = 1024;
constexpr uint32_t kAlignment = 256;

// The range of a flash request: inside bytes of the flash from start on; a last piece is filled up
// to length.
struct Range {
    uint32_t start;
    uint32_t length;
    uint32_t inside;
};

// A piece of something of size bytes, as the request names it; all of it when it names none.
std::optional<Range> PieceOf(const Exchange& exchange, uint32_t size) {
    const uint32_t parameter = exchange.Ext().parameter;
    const uint32_t kib = parameter >> 16;
    const uint64_t start = uint64_t{parameter & 0xFFFF} * flash::kChunkBytes;
    if (kib == 0) {
        return start == 0 ? std::optional<Range>({0, size, size}) : std::nullopt;
    }
    const uint32_t length = kib * kKib;
    if (length > flash::kChunkBytes || start >= size) {
        return std::nullopt;
    }
    const auto begin = static_cast<uint32_t>(start);
    const uint32_t inside = std::min(length, size - begin);
    return length - inside < kKib ? std::optional<Range>({begin, length, inside}) : std::nullopt;
}

std::optional<Range> ByOffset(const Exchange& exchange) {
    const Port& port = exchange.GetPort();
    const uint32_t offset = exchange.Ext().parameter;
    const uint32_t length = exchange.Ext().requestLen;
    const uint32_t bytes = port.flash->memory.Bytes();
    if (offset > bytes || length > bytes - offset ||
        (ChipOf(port).Has(ChipTrait::OffsetAligned) && offset % kAlignment != 0)) {
        return std::nullopt;
    }
    return Range{offset, length, length};
}

// Nothing for a range that the flash does not have.
std::optional<Range> RangeOf(const Exchange& exchange) {
    const Port& port = exchange.GetPort();
    const FlashMemory& memory = port.flash->memory;
    const uint16_t subCode = exchange.Ext().subCode;
    if (subCode == flash::kByOffset) {
        return ByOffset(exchange);
    }
    const PlacedRegion placed = memory.Regions().WithCode(subCode);
    std::optional<Range> range = placed ? PieceOf(exchange, placed.region->size) : std::nullopt;
    if (range) {
        range->start += placed.start;
    }
    return range;
}

DriverStatus Read(Exchange& exchange, const Range& range) {
    const FlashMemory& memory = exchange.GetPort().flash->memory;
    exchange.StartReply(range.length);
    memory.Read(range.start, exchange.Bytes(), std::min(range.inside, exchange.Room()));
    return DriverStatus::Success;
}

DriverStatus StatusOf(Exchange& exchange, const WriteResult& result) {
    exchange.SetDetail(result.detail);
    return result.status;
}

// The data may be shorter than a range that stands for all of a region.
DriverStatus Write(Exchange& exchange, Range range) {
    const uint32_t sent = std::min(exchange.Ext().requestLen, exchange.InputLength());
    const bool piece = exchange.Ext().parameter != 0;
    if (piece ? sent < range.length : sent > range.length) {
        return DriverStatus::InvalidParameter;
    }
    range.inside = std::min(range.inside, sent);
    exchange.KeepReply(0);
    return StatusOf(exchange,
                    WriteFlash(exchange.GetPort(), range.start, exchange.Bytes(), range.inside));
}

// Chips with regions for everything are not read or written as a whole.
std::optional<Range> WholeOf(const Port& port) {
    const uint32_t bytes = std::min(kWholeBytes, port.flash->memory.Bytes());
    return ChipOf(port).Has(ChipTrait::RegionLayout) ? std::nullopt
                                                     : std::optional<Range>({0, bytes, bytes});
}

DriverStatus FlashLayout(Exchange& exchange) {
    flash::LayoutHead head;
    if (!exchange.Read(head)) {
        return DriverStatus::InvalidParameter;
    }
    const FlashRegions& regions = exchange.GetPort().flash->memory.Regions();
    const auto length =
        static_cast<uint32_t>(sizeof head + regions.count * sizeof(flash::DriverRegion));
    exchange.StartReply(length);
    head = {length, regions.count};
    exchange.Put(0, &head, sizeof head);
    uint32_t at = sizeof head;
    regions.ForEach([&](const PlacedRegion& placed) {
        const FlashRegion& region = *placed.region;
        const flash::DriverRegion entry = {region.code, region.flags, 0,
                                           region.size, placed.start, placed.End() - 1};
        exchange.Put(at, &entry, sizeof entry);
        at += sizeof entry;
    });
    return DriverStatus::Success;
}

DriverStatus OptionRomReadOld(Exchange& exchange) {
    const std::optional<Range> range = WholeOf(exchange.GetPort());
    return range ? Read(exchange, *range) : DriverStatus::InvalidRequest;
}

DriverStatus OptionRomWriteOld(Exchange& exchange) {
    const std::optional<Range> range = WholeOf(exchange.GetPort());
    return range ? Write(exchange, *range) : DriverStatus::InvalidRequest;
}

DriverStatus FlashRead(Exchange& exchange) {
    if (exchange.Ext().subCode == kWhole) {
        return OptionRomReadOld(exchange);
    }
    const std::optional<Range> range = RangeOf(exchange);
    if (!range) {
        return DriverStatus::InvalidParameter;
    }
    const PlacedRegion placed =
        exchange.GetPort().flash->memory.Regions().WithCode(exchange.Ext().subCode);
    exchange.SetPlace(range->start - placed.start);
    return Read(exchange, *range);
}

DriverStatus FlashWrite(Exchange& exchange) {
    const Port& port = exchange.GetPort();
    if (exchange.Ext().subCode == kWhole) {
        return OptionRomWriteOld(exchange);
    }
    const std::optional<Range> range = RangeOf(exchange);
    if (!range) {
        return DriverStatus::InvalidParameter;
    }
    if (exchange.Ext().subCode == flash::kByOffset) {
        if (exchange.InputLength() < range->length) {
            return DriverStatus::InvalidParameter;
        }
        exchange.KeepReply(0);
        return StatusOf(exchange, WriteFlash(exchange.GetPort(), range->start, exchange.Bytes(),
                                             range->length));
    }
    const Staging& staging = port.flash->staging;
    if (staging.use == StagingUse::SecureUpdate && staging.stage == SecureStage::Announced &&
        staging.region == exchange.Ext().subCode) {
        const PlacedRegion placed = port.flash->memory.Regions().WithCode(staging.region);
        return StagePiece(exchange, range->start - placed.start, range->length, range->inside);
    }
    return Write(exchange, *range);
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::FlashLayout, .handle = FlashLayout, .flags = WithinPort},
    {.command = command::FlashLayoutEx, .handle = FlashLayout, .flags = WithinPort},
    {.command = command::FlashRead, .handle = FlashRead, .flags = AnySubCode | WithinPort},
    {.command = command::FlashWrite, .handle = FlashWrite, .flags = AnySubCode},
    {.command = command::OptionRomReadOld, .handle = OptionRomReadOld},
    {.command = command::OptionRomWriteOld, .handle = OptionRomWriteOld},
};

}  // namespace

RequestRows FlashRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
