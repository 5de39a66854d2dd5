// Requests about adapter events.
#include "model/event_codes.h"
#include "model/handlers.h"
#include "properties/driver_replies.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
namespace command = transport::command;
using enum RequestFlags;

DriverStatus EventDelivery(Exchange& exchange) {
    properties::EventDeliveryRequest request;
    if (!exchange.Read(request) || (request.mask != 0 && request.mask != properties::kAllEvents)) {
        return DriverStatus::InvalidParameter;
    }
    exchange.GetPort().events.SetDelivery(request.mask != 0);
    return DriverStatus::Success;
}

DriverStatus FetchEvents(Exchange& exchange) {
    EventQueue& events = exchange.GetPort().events;
    constexpr uint32_t kSize = sizeof(properties::DriverEvent);
    const uint32_t room = exchange.Room() / kSize;
    const uint32_t count = events.Count() < room ? events.Count() : room;
    exchange.StartReply(count * kSize);
    for (uint32_t at = 0; at < count; ++at) {
        properties::DriverEvent event;
        events.Take(event);
        exchange.Put(at * kSize, &event, kSize);
    }
    return DriverStatus::Success;
}

DriverStatus ForceEvent(Exchange& exchange) {
    uint8_t request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    exchange.GetPort().events.Add({event_code::kTest, {}});
    exchange.Reply(request);
    return DriverStatus::Success;
}

constexpr ExtendedRow kRequests[] = {
    {.command = command::EventDelivery, .handle = EventDelivery, .flags = WithinPort},
    {.command = command::FetchEvents, .handle = FetchEvents, .flags = WithinPort},
    {.command = command::ForceEvent, .handle = ForceEvent, .flags = WithinPort},
};

}  // namespace

RequestRows EventRequests() {
    return {.extended = kRequests};
}

}  // namespace vxemu
