// Buffer-to-buffer credit recovery (FC-FS): agreed with the attached port when the link comes up.
#include <algorithm>

#include "model/fabric/loop_map.h"
#include "model/handlers.h"
#include "model/port_settings.h"
#include "model/statistics.h"
#include "properties/target_address.h"
#include "statistics/health_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
using enum RequestFlags;

constexpr uint8_t kAttachedNumber = 6;  // BB_SC_N of the switch
constexpr uint16_t kAttachedCredit = 32;

uint8_t RefusalOf(const Port& port) {
    if (!port.LinkUp()) {
        return HX_BBCR_LINK_DOWN;
    }
    if (IsOnLoop(port)) {
        return HX_BBCR_LOOP;
    }
    return port.profile->bbcr == 0 ? uint8_t{HX_BBCR_NOT_CONFIGURED}
                                   : static_cast<uint8_t>(port.profile->bbcrReason);
}

DriverStatus BbCreditRecovery(Exchange& exchange) {
    properties::AddressBlock request;
    if (!exchange.Read(request)) {
        return DriverStatus::InvalidParameter;
    }
    const Port& port = exchange.GetPort();
    HX_BBCR_DATA reply = {};
    reply.ownCredit = port.profile->bbCredits;
    if (!ChipOf(port).Has(properties::ChipTrait::Newest)) {
        reply.state = HX_BBCR_NOT_SUPPORTED;
        exchange.Reply(reply);
        return DriverStatus::Success;
    }
    reply.reason = RefusalOf(port);
    reply.state = reply.reason == HX_BBCR_REASON_NONE ? HX_BBCR_ON : HX_BBCR_OFF;
    reply.configured = port.profile->bbcr;
    if (port.LinkUp() && !IsOnLoop(port)) {
        reply.attached = kAttachedNumber;
        reply.attachedCredit = kAttachedCredit;
    }
    if (reply.state == HX_BBCR_ON) {
        reply.negotiated = std::max(reply.configured, reply.attached);
        const HX_PORT_STATISTICS counters = WideCountersOf(port);
        reply.scsSent = reply.scrReceived = counters.txFrames >> reply.negotiated;
        reply.scrSent = reply.scsReceived = counters.rxFrames >> reply.negotiated;
    }
    reply.creditsRecovered = port.creditRecovery.creditsRecovered;
    reply.framesLost = port.creditRecovery.framesLost;
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr ExtendedRow kCreditRecoveryRequests[] = {
    {.command = transport::command::BbCreditRecovery,
     .handle = BbCreditRecovery,
     .flags = WithinPort},
};

}  // namespace

RequestRows CreditRecoveryRequests() {
    return {.extended = kCreditRecoveryRequests};
}

}  // namespace vxemu
