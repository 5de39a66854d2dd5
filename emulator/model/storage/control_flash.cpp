// The control requests about flash.
#include <cstring>

#include "model/control_request.h"
#include "model/storage/flash_report.h"

namespace vxemu {
namespace {

// The region that has the place; none when it does not.
PlacedRegion PlaceOf(const Port& port, const FlashSelector& selector) {
    const PlacedRegion placed = port.flash->memory.Regions().WithCode(selector.region);
    return placed && selector.offset < placed.region->size ? placed : PlacedRegion{};
}

}  // namespace

Completion ControlRequest::ShowFlash() {
    PortSelector request;
    const Port* port = TakeFor(request);
    if (port == nullptr || outputLength_ < sizeof(FlashReport)) {
        return refusal_;
    }
    std::memset(buffer_, 0, sizeof(FlashReport));
    auto& reply = *reinterpret_cast<FlashReport*>(buffer_);
    const Flash& flash = *port->flash;
    reply.version = kControlVersion;
    reply.bytes = flash.memory.Bytes();
    reply.withoutPower = flash.withoutPower ? 1 : 0;
    reply.failsSoon = flash.failsSoon ? 1 : 0;
    reply.secondBank = port->secondBank;
    reply.keep = flash.keeping.state;
    reply.bytesUntilFailure = flash.bytesUntilFailure;
    bool described = true;
    flash.memory.Regions().ForEach([&](const PlacedRegion& placed) {
        described = DescribeRegion(*port, placed, reply.regions[reply.count++]) && described;
    });
    if (!described) {
        return Completion::Busy;
    }
    *returned_ = sizeof(FlashReport);
    return Completion::Done;
}

Completion ControlRequest::DumpFlash() {
    FlashSelector request;
    const Port* port = TakeFor(request);
    if (port == nullptr || outputLength_ < sizeof(FlashPiece)) {
        return refusal_;
    }
    const PlacedRegion placed = PlaceOf(*port, request);
    if (!placed) {
        return Completion::NoDevice;
    }
    std::memset(buffer_, 0, sizeof(FlashPiece));
    auto& reply = *reinterpret_cast<FlashPiece*>(buffer_);
    const uint32_t rest = placed.region->size - request.offset;
    reply.length = rest < sizeof reply.bytes ? rest : uint32_t{sizeof reply.bytes};
    port->flash->memory.Read(placed.start + request.offset, reply.bytes, reply.length);
    *returned_ = sizeof(FlashPiece);
    return Completion::Done;
}

// Inverts a byte; what was written there later is sound again.
Completion ControlRequest::CorruptFlash() {
    FlashSelector request;
    const Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    const PlacedRegion placed = PlaceOf(*port, request);
    if (!placed) {
        return Completion::NoDevice;
    }
    const uint32_t at = placed.start + request.offset;
    uint8_t byte;
    port->flash->memory.Read(at, &byte, sizeof byte);
    byte = static_cast<uint8_t>(~byte);
    return StoreBytes(*port, at, &byte, sizeof byte) ? ReplyCount(1) : Completion::Busy;
}

Completion ControlRequest::FailPower() {
    PowerFailRequest request;
    Port* port = TakeFor(request);
    if (port == nullptr) {
        return refusal_;
    }
    port->flash->failsSoon = true;
    port->flash->bytesUntilFailure = request.afterBytes;
    return Completion::Done;
}

// Of the port's adapter, or of all.
Completion ControlRequest::ResetFlash() {
    PortSelector request;
    const Port* const port = TakeFor(request);
    if (port == nullptr && (inputLength_ < sizeof request || request.scsiPort != kAnyPort)) {
        return refusal_;
    }
    bool forgotten = true;
    for (uint32_t at = 0; at < model_.profile_->adapterCount; ++at) {
        Flash& flash = model_.flashes_[at];
        if (port == nullptr || port->flash == &flash) {
            forgotten = ForgetStored(model_.fabric_, flash) && forgotten;
        }
    }
    return forgotten ? Completion::Done : Completion::Busy;
}

}  // namespace vxemu
