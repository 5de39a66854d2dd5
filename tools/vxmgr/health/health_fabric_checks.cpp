#include "vxmgr/health/health_judging.h"

#include <algorithm>

namespace vxmgr {
namespace {

bool JudgeCongestion(const HealthReading& reading, HealthFinding* finding) {
    if (!reading.counters.scm) {
        return false;
    }
    const HX_SCM_STATISTICS& scm = reading.counters.scm->record;
    const auto severity = Packed<&HX_SCM_STATISTICS::severity>(scm);
    finding->value = std::to_string(severity);
    finding->warning = std::to_string(HX_SCM_SEVERITY_WARNING);
    finding->critical = std::to_string(HX_SCM_SEVERITY_ALARM);
    SetState(finding,
             severity >= HX_SCM_SEVERITY_ALARM     ? HealthState::Critical
             : severity >= HX_SCM_SEVERITY_WARNING ? HealthState::Warning
                                                   : HealthState::Normal,
             std::to_string(Packed<&HX_SCM_STATISTICS::allowedPercent>(scm)) +
                 " % of the bandwidth allowed");
    return true;
}

// The link integrity events come first among the counters.
bool JudgeFpins(const HealthReading& reading, HealthFinding* finding) {
    if (!reading.counters.scm) {
        return false;
    }
    const HX_SCM_STATISTICS& scm = reading.counters.scm->record;
    uint64_t count = 0;
    std::string text;
    for (const Counter<HX_FPIN_COUNTERS>& counter : FpinCounters()) {
        if (const uint64_t one = CounterOf(scm.fpins, counter); one != 0) {
            count += one;
            text += (text.empty() ? "" : ", ") + std::to_string(one) + " " + counter.key;
        }
        if (counter.member == &HX_FPIN_COUNTERS::linkOther) {
            break;
        }
    }
    JudgeCount(finding, count);
    finding->detail = text;
    return true;
}

bool JudgeCreditRecovery(const HealthReading& reading, HealthFinding* finding) {
    const auto& recovery = reading.creditRecovery;
    if (!recovery || recovery->state == HX_BBCR_NOT_SUPPORTED) {
        return false;
    }
    const bool refused = recovery->state == HX_BBCR_OFF && recovery->reason == HX_BBCR_REFUSED;
    finding->value = recovery->state == HX_BBCR_ON ? "on" : refused ? "refused" : "off";
    SetState(finding, refused ? HealthState::Warning : HealthState::Normal,
             refused ? "the attached port refuses it" : "");
    return true;
}

std::string Plural(size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

bool JudgeNpiv(const HealthReading& reading, HealthFinding* finding) {
    const auto rejected = static_cast<size_t>(std::ranges::count_if(
        reading.virtualPorts,
        [](const HX_VIRTUAL_PORT& port) { return port.state == HX_VIRTUAL_PORT_REJECTED; }));
    const auto fdiscs = Packed<&HX_NPIV_ATTRIBUTES::fdiscRejects>(reading.npiv);
    // Of what was counted before a sample nothing is left but ports that are still out.
    JudgeCount(finding, reading.sampled ? rejected : std::max<uint64_t>(rejected, fdiscs));
    finding->detail = rejected != 0 ? Plural(rejected, "virtual port is", "virtual ports are") +
                                          " rejected by the fabric"
                                    : "";
    return true;
}

bool JudgeNvme(const HealthReading& reading, HealthFinding* finding) {
    std::string text;
    uint64_t count = 0;
    for (const NvmeReading& one : reading.nvme) {
        if (one.state != HX_NVME_LIVE) {
            text += (count++ == 0 ? "" : ", ") + ("controller " + std::to_string(one.controller)) +
                    " of " + one.remotePort.Colons();
        }
    }
    JudgeCount(finding, count);
    finding->detail = text.empty() ? "" : "not live: " + text;
    return true;
}

bool JudgeSecurity(const HealthReading& reading, HealthFinding* finding) {
    std::string text;
    uint64_t count = 0;
    for (const HX_SECURE_PORT& one : reading.secured) {
        if (one.state == HX_SECURE_FAILED) {
            text += (count++ == 0 ? "" : ", ") + Wwn::Of(one.portName).Colons();
        }
    }
    JudgeCount(finding, count);
    finding->detail = text.empty() ? "" : "failed: " + text;
    return true;
}

using enum HealthQuestion;
constexpr HealthCheck kFabricChecks[] = {
    {"congestion", "congestion", "", Congestion, false, JudgeCongestion,
     "How severe the fabric says the congestion is that this port causes or meets: 1 for a "
     "warning, "
     "2 for an alarm.",
     "`port stats --kind scm` tells what the fabric notified; look for slow hosts and for links "
     "that "
     "are too narrow for what they carry"},
    {"fpin", "link integrity FPINs", "", Congestion, false, JudgeFpins,
     "The fabric notified the port that the integrity of its link suffers.",
     "look for errors of the link at the port of the switch, and treat them as too little light"},
    {"credit_recovery", "credit recovery", "", CreditRecovery, false, JudgeCreditRecovery,
     "Recovery of lost buffer credits is configured here, and the attached port refuses it.",
     "switch it on at the port of the switch, or off here: `nvram show` has the setting"},
    {"npiv", "virtual ports rejected", "", VirtualPorts, false, JudgeNpiv,
     "Logins of virtual ports (FDISC) that the fabric rejected.",
     "`npiv list` has the reason of each: the switch may have reached its number of logins for a "
     "port, or not know the name"},
    {"nvme", "NVMe controllers lost", "", Nvme, false, JudgeNvme,
     "NVMe controllers that the port knows and is not connected to.",
     "`nvme list` has their states; look at the target, and at the zones of the fabric"},
    {"security", "security failed", "", Security, false, JudgeSecurity,
     "Remote ports whose authentication failed: their traffic is not secured, or does not flow.",
     "`port database` has them; compare secrets and certificates of both ends"},
};

}  // namespace

std::span<const HealthCheck> FabricChecks() {
    return kFabricChecks;
}

}  // namespace vxmgr
