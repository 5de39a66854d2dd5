// Who is where on an arbitrated loop (FC-AL), for drivers of both generations.
#include "model/fabric/loop_map.h"

#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "statistics/fabric_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
using enum RequestFlags;

// Arbitrated loop physical addresses in rising order: bytes of neutral disparity. That of loop
// identifier n is the n-th from the end.
constexpr uint8_t kPhysicalAddresses[] = {
    0x00, 0x01, 0x02, 0x04, 0x08, 0x0F, 0x10, 0x17, 0x18, 0x1B, 0x1D, 0x1E, 0x1F, 0x23, 0x25, 0x26,
    0x27, 0x29, 0x2A, 0x2B, 0x2C, 0x2D, 0x2E, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x39, 0x3A, 0x3C,
    0x43, 0x45, 0x46, 0x47, 0x49, 0x4A, 0x4B, 0x4C, 0x4D, 0x4E, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56,
    0x59, 0x5A, 0x5C, 0x63, 0x65, 0x66, 0x67, 0x69, 0x6A, 0x6B, 0x6C, 0x6D, 0x6E, 0x71, 0x72, 0x73,
    0x74, 0x75, 0x76, 0x79, 0x7A, 0x7C, 0x80, 0x81, 0x82, 0x84, 0x88, 0x8F, 0x90, 0x97, 0x98, 0x9B,
    0x9D, 0x9E, 0x9F, 0xA3, 0xA5, 0xA6, 0xA7, 0xA9, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE, 0xB1, 0xB2, 0xB3,
    0xB4, 0xB5, 0xB6, 0xB9, 0xBA, 0xBC, 0xC3, 0xC5, 0xC6, 0xC7, 0xC9, 0xCA, 0xCB, 0xCC, 0xCD, 0xCE,
    0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD9, 0xDA, 0xDC, 0xE0, 0xE1, 0xE2, 0xE4, 0xE8, 0xEF,
};
constexpr uint32_t kAddresses = sizeof kPhysicalAddresses;
static_assert(kAddresses == 127);

constexpr uint8_t kOwnAddress = 0x01;

bool IsAt(const Port& port, uint32_t loopId) {
    const Profile& profile = *port.fabric->profile;
    for (uint32_t at = 0; at < profile.targetCount; ++at) {
        const TargetProfile& device = profile.targets[at];
        if (Sees(port, device) && AttachmentOf(port, device).loopId / 2u == loopId) {
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
        if (kPhysicalAddresses[at] != kOwnAddress && IsAt(port, kAddresses - 1 - at)) {
            map.alPa[map.count++] = kPhysicalAddresses[at];
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
