#include "vxmgr/health/health_checks.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "vxmgr/health/health_judging.h"

namespace vxmgr {
namespace {

// Whether there is something to say, and what that is.
bool Judge(const HealthCheck& check, const HealthReading& reading, HealthFinding* finding) {
    finding->check = &check;
    if (check.ofAdapter && !reading.adapter) {
        return false;
    }
    const HX_STATUS status = check.question && reading.answers ? reading.StatusOf(*check.question)
                             : check.question                  ? kNotAsked
                                                               : HX_STATUS{HXMGT_SUCCESS};
    if (status == HXMGT_SUCCESS) {
        return check.judge(reading, finding);
    }
    if (!HasFailed(status)) {
        return false;
    }
    finding->state = HealthState::Unknown;
    finding->status = status;
    finding->detail = "the question failed";
    return true;
}

}  // namespace

std::span<const HealthCheck> HealthChecks() {
    static const std::vector<HealthCheck> kAll = [] {
        std::vector<HealthCheck> all;
        for (const auto part : {LinkChecks, TransceiverChecks, FabricChecks, StoredChecks}) {
            all.insert(all.end(), part().begin(), part().end());
        }
        return all;
    }();
    return kAll;
}

const HealthCheck* FindHealthCheck(std::string_view id) {
    const auto checks = HealthChecks();
    const auto found =
        std::ranges::find_if(checks, [id](const HealthCheck& check) { return id == check.id; });
    return found != checks.end() ? &*found : nullptr;
}

std::vector<HealthFinding> JudgeHealth(const HealthReading& reading) {
    std::vector<HealthFinding> findings;
    for (const HealthCheck& check : HealthChecks()) {
        HealthFinding finding;
        if (Judge(check, reading, &finding)) {
            findings.push_back(std::move(finding));
        }
    }
    return findings;
}

HealthState WorstOf(std::span<const HealthFinding> findings) {
    HealthState worst = HealthState::Normal;
    for (const HealthFinding& finding : findings) {
        worst = std::max(worst, finding.state);
    }
    return worst;
}

void TakeSample(const HealthReading& before, HealthReading* reading) {
    reading->sampled = true;
    reading->counters = CountedBetween(before.counters, reading->counters);
    if (before.creditRecovery && reading->creditRecovery) {
        const auto since = [&](auto member) {
            uint64_t was;
            uint64_t is;
            std::memcpy(&was, &((*before.creditRecovery).*member), sizeof was);
            std::memcpy(&is, &((*reading->creditRecovery).*member), sizeof is);
            is -= was <= is ? was : 0;  // less than before: they began anew
            std::memcpy(&((*reading->creditRecovery).*member), &is, sizeof is);
        };
        since(&HX_BBCR_DATA::creditsRecovered);
        since(&HX_BBCR_DATA::framesLost);
    }
}

}  // namespace vxmgr
