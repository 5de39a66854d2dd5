// Who is where on an arbitrated loop (FC-AL), for drivers of both generations.
#include "model/fabric/loop_map.h"

#include "formats/loop_address.h"
#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "statistics/fabric_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
using enum RequestFlags;

constexpr uint32_t kAddresses = sizeof formats::kLoopAddresses;
constexpr uint8_t kOwnAddress = 0x01;

bool IsAt(const Port& port, uint32_t loopId) {
    const Profile& profile = *port.fabric->profile;
    for (uint32_t at = 0; at < profile.targetCount; ++at) {
        const TargetProfile& device = profile.targets[at];
        if (Reaches(port, device) && AttachmentOf(port, device).loopId / 2u == loopId) {
            return true;
        }
    }
    return false;
}

DriverStatus PositionalMap(Exchange& exchange) {
    exchange.Reply(LoopMapOf(exchange.GetPort()));
    return DriverStatus::Success;
}

constexpr ExtendedRow kLoopRequests[] = {
    {.command = transport::command::PositionalMap, .handle = PositionalMap, .flags = WithinPort},
};

}  // namespace

bool IsOnLoop(const Port& port) {
    return port.profile->topology == Topology::PrivateLoop ||
           port.profile->topology == Topology::PublicLoop;
}

HX_POSITIONAL_MAP LoopMapOf(const Port& port) {
    HX_POSITIONAL_MAP map = {};
    if (!port.LinkUp() || !IsOnLoop(port)) {
        return map;
    }
    map.alPa[map.count++] = kOwnAddress;
    for (uint32_t at = 0; at < kAddresses; ++at) {
        if (formats::kLoopAddresses[at] != kOwnAddress && IsAt(port, kAddresses - 1 - at)) {
            map.alPa[map.count++] = formats::kLoopAddresses[at];
        }
    }
    return map;
}

void LegacyPositionalMap(Exchange& exchange, const transport::SelectorRecord& selector) {
    statistics::LegacyMapReply reply = {};
    reply.selector = selector;
    reply.map = LoopMapOf(exchange.GetPort());
    exchange.Reply(reply);
}

RequestRows LoopRequests() {
    return {.extended = kLoopRequests};
}

}  // namespace vxemu
