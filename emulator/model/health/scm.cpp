#include "model/health/scm.h"

#include <algorithm>
#include <cstring>

#include "model/fabric/fabric.h"
#include "model/handlers.h"
#include "statistics/statistics_records.h"

namespace vxemu {
namespace {

using transport::DriverStatus;
using enum RequestFlags;

constexpr uint32_t kWarningInterval = 1000;  // milliseconds, as agreed with the fabric
constexpr uint32_t kAlarmInterval = 100;

constexpr uint16_t kAllowedPercent[] = {100, 75, 50};  // by severity

// What an event makes of the severity; every other leaves it.
struct SeverityRow {
    uint32_t offset;  // in HX_FPIN_COUNTERS
    uint16_t severity;
};
constexpr SeverityRow kSeverities[] = {
    {offsetof(HX_FPIN_COUNTERS, congestionCleared), HX_SCM_SEVERITY_NONE},
    {offsetof(HX_FPIN_COUNTERS, creditStall), HX_SCM_SEVERITY_WARNING},
    {offsetof(HX_FPIN_COUNTERS, oversubscription), HX_SCM_SEVERITY_WARNING},
    {offsetof(HX_FPIN_COUNTERS, lostCredit), HX_SCM_SEVERITY_ALARM},
};

bool Throttles(const Port& port) {
    return port.LinkUp() && port.profile->scm != 0 && port.scmSetting != 0 &&
           port.congestion.severity != HX_SCM_SEVERITY_NONE;
}

uint32_t StateOf(const Port& port) {
    const bool up = port.LinkUp();
    return (up ? HX_SCM_FPINS_REGISTERED | HX_SCM_SIGNALS_AGREED : 0) |
           (Throttles(port) ? HX_SCM_THROTTLING : 0) | (port.scmSetting != 0 ? HX_SCM_ENABLED : 0);
}

void Add(HX_FPIN_COUNTERS& counters, uint32_t offset, uint64_t n) {
    uint64_t count;
    auto* const place = reinterpret_cast<uint8_t*>(&counters) + offset;
    std::memcpy(&count, place, sizeof count);
    count += n;
    std::memcpy(place, &count, sizeof count);
}

uint64_t Sum(const HX_FPIN_COUNTERS& counters) {
    uint64_t words[sizeof counters / sizeof(uint64_t)];
    std::memcpy(words, &counters, sizeof words);
    uint64_t sum = 0;
    for (const uint64_t word : words) {
        sum += word;
    }
    return sum;
}

void SetSeverity(Port& port, uint16_t severity) {
    LookAtThrottle(port);
    uint16_t& now = port.congestion.severity;
    now = severity == HX_SCM_SEVERITY_NONE ? severity : std::max(now, severity);
    LookAtThrottle(port);
}

// When an event was, in seconds from the reset of the statistics.
uint64_t EventSeconds(const Port& port, uint64_t event) {
    return event == 0 ? HX_NOT_COUNTED : (event - std::min(event, port.statisticsReset)) / 1000;
}

DriverStatus ScmStatistics(Exchange& exchange) {
    Port& port = exchange.GetPort();
    if (port.profile->scm == 0) {
        return DriverStatus::UnsupportedSubCode;
    }
    LookAtThrottle(port);
    const CongestionState& congestion = port.congestion;
    HX_SCM_STATISTICS reply = {};
    reply.version = 1;
    reply.state = StateOf(port);
    reply.secondsSinceReset = (port.fabric->host.Now() - port.statisticsReset) / 1000;
    reply.fpins = congestion.own;
    reply.peerFpins = congestion.peers;
    reply.warningSignals = congestion.warningSignals;
    reply.alarmSignals = congestion.alarmSignals;
    reply.throttledSeconds = congestion.throttledMilliseconds / 1000;
    reply.throttledRequests = congestion.throttledRequests;
    reply.warningInterval = port.LinkUp() ? kWarningInterval : 0;
    reply.alarmInterval = port.LinkUp() ? kAlarmInterval : 0;
    reply.severity = congestion.severity;
    reply.allowedPercent = kAllowedPercent[Throttles(port) ? congestion.severity : 0];
    reply.fpinsReceived = static_cast<uint32_t>(Sum(congestion.own) + Sum(congestion.peers));
    reply.lastEvent = EventSeconds(port, congestion.lastEvent);
    exchange.Reply(reply);
    return DriverStatus::Success;
}

constexpr ExtendedRow kScmRequests[] = {
    {.command = transport::command::ScmStatistics, .handle = ScmStatistics, .flags = WithinPort},
};

}  // namespace

void LookAtThrottle(Port& port) {
    CongestionState& congestion = port.congestion;
    const uint64_t now = port.fabric->host.Now();
    if (congestion.throttled) {
        congestion.throttledMilliseconds += now - congestion.lookedAt;
        congestion.throttledRequests += port.requests - congestion.requestsThen;
    }
    congestion.throttled = Throttles(port);
    congestion.lookedAt = now;
    congestion.requestsThen = port.requests;
}

void TakeFpins(Port& port, const TargetProfile* about, uint32_t offset, uint64_t n) {
    if (n == 0) {
        return;
    }
    const uint64_t now = port.fabric->host.Now();
    CongestionState& congestion = port.congestion;
    if (about != nullptr) {
        Peer& peer = PeerOf(port, *about);
        Add(peer.fpins, offset, n);
        peer.lastFpin = now;
    }
    Add(about != nullptr ? congestion.peers : congestion.own, offset, n);
    port.counted.fpinsReceived += n;
    congestion.lastEvent = now;
    for (const SeverityRow& row : kSeverities) {
        if (about == nullptr && row.offset == offset) {
            SetSeverity(port, row.severity);
        }
    }
}

void TakeSignals(Port& port, uint32_t offset, uint64_t n) {
    if (n == 0) {
        return;
    }
    CongestionState& congestion = port.congestion;
    congestion.lastEvent = port.fabric->host.Now();
    if (offset == offsetof(CongestionState, alarmSignals)) {
        congestion.alarmSignals += n;
        SetSeverity(port, HX_SCM_SEVERITY_ALARM);
    } else {
        congestion.warningSignals += n;
    }
}

// The severity is a state and stays.
void ResetCongestion(Port& port) {
    LookAtThrottle(port);
    const CongestionState before = port.congestion;
    port.congestion = {};
    port.congestion.throttled = before.throttled;
    port.congestion.lookedAt = before.lookedAt;
    port.congestion.requestsThen = before.requestsThen;
    port.congestion.severity = before.severity;
}

HX_PORT_SCM_STATISTICS CongestionPage(Port& port, const TargetProfile* device) {
    HX_PORT_SCM_STATISTICS page = {};
    page.mark = HX_SCM_MARK;
    page.state = StateOf(port);
    if (device == nullptr) {
        page.fpins = port.congestion.own;
        page.lastEvent = EventSeconds(port, port.congestion.lastEvent);
    } else {
        const Peer& peer = PeerOf(port, *device);
        page.fpins = peer.fpins;
        page.lastEvent = EventSeconds(port, peer.lastFpin);
    }
    return page;
}

RequestRows ScmRequests() {
    return {.extended = kScmRequests};
}

}  // namespace vxemu
