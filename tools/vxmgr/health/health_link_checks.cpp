#include "vxmgr/health/health_judging.h"

#include <algorithm>

namespace vxmgr {
namespace {

bool JudgeLink(const HealthReading& reading, HealthFinding* finding) {
    if (!reading.answers) {
        finding->status = reading.failure;
        finding->value = "no answer";
        SetState(finding, HealthState::Critical, reading.silence);
        return true;
    }
    if (!reading.link) {
        return false;
    }
    const LinkReading& link = *reading.link;
    finding->value = link.shown;
    if (link.disabled) {
        SetState(finding, HealthState::Critical, "somebody disabled the port");
    } else if (!link.online) {
        SetState(finding, HealthState::Warning, "the port reaches nobody");
    } else if (link.diagnosticState.value_or(0) != 0) {
        SetState(finding, HealthState::Warning,
                 "a diagnostic state is on: " + std::to_string(*link.diagnosticState));
    } else if (link.gigabits) {
        finding->detail = std::to_string(*link.gigabits) + " Gbit/s";
    }
    return true;
}

bool JudgeDriver(const HealthReading& reading, HealthFinding* finding) {
    if (!reading.answers) {
        return false;
    }
    std::string failed;
    size_t count = 0;
    for (size_t i = 0; i < kHealthQuestions; ++i) {
        if (HasFailed(reading.statuses[i])) {
            failed += (failed.empty() ? "" : ", ") + std::string(kHealthQuestionNames[i]);
            ++count;
        }
    }
    JudgeCount(finding, count);
    finding->detail = failed.empty() ? std::string() : "not to be had: " + failed;
    return true;
}

constexpr int kDegree = 256;  // steps of a temperature

std::string Degrees(int temperature) {
    return DecimalText(static_cast<double>(temperature) / kDegree, 1);
}

bool JudgeTemperature(const HealthReading& reading, HealthFinding* finding) {
    const auto& board = reading.adapter->temperature;
    if (!board) {
        return false;
    }
    const int now = Packed<&HX_BOARD_TEMPERATURE::now>(*board);
    const int warning = Packed<&HX_BOARD_TEMPERATURE::warning>(*board);
    const int critical = Packed<&HX_BOARD_TEMPERATURE::critical>(*board);
    const int highest = Packed<&HX_BOARD_TEMPERATURE::highest>(*board);
    const auto limit = [](int given) { return given != 0 ? Degrees(given) : std::string(); };
    const auto reaches = [now](int given) { return given != 0 && now >= given; };
    finding->value = Degrees(now);
    finding->warning = limit(warning);
    finding->critical = limit(critical);
    SetState(finding,
             reaches(critical)  ? HealthState::Critical
             : reaches(warning) ? HealthState::Warning
                                : HealthState::Normal,
             "highest " + Degrees(highest) + " \u00b0C");
    return true;
}

bool JudgeLinkErrors(const HealthReading& reading, HealthFinding* finding) {
    const HX_PORT_STATISTICS* const counters = LinkCountersOf(reading.counters);
    if (counters == nullptr) {
        return false;
    }
    uint64_t errors = 0;
    for (const Counter<HX_PORT_STATISTICS>& counter : LinkCounters()) {
        errors += counter.one != nullptr ? Counted(CounterOf(*counters, counter)) : 0;
    }
    JudgeCount(finding, errors);
    const std::string text = LinkErrorsText(*counters);
    finding->detail = (text.empty() ? "" : text + " ") + Since(counters->secondsSinceReset);
    return true;
}

bool JudgeFec(const HealthReading& reading, HealthFinding* finding) {
    const HX_PORT_STATISTICS* const counters = LinkCountersOf(reading.counters);
    if (counters == nullptr || counters->uncorrectableFecBlocks == HX_NOT_COUNTED) {
        return false;
    }
    JudgeCount(finding, counters->uncorrectableFecBlocks);
    finding->detail = Since(counters->secondsSinceReset);
    return true;
}

// Both ends notice a loss: the larger number is what is known of it.
bool JudgeCredits(const HealthReading& reading, HealthFinding* finding) {
    const auto& traffic = reading.counters.traffic;
    const bool counted = traffic && traffic->txCreditsRecovered != HX_NOT_COUNTED;
    if (!counted && !reading.creditRecovery) {
        return false;
    }
    const uint64_t byTraffic =
        counted ? traffic->txCreditsRecovered + Counted(traffic->rxCreditsRecovered) : 0;
    const uint64_t byRecovery =
        reading.creditRecovery ? Packed<&HX_BBCR_DATA::creditsRecovered>(*reading.creditRecovery) +
                                     Packed<&HX_BBCR_DATA::framesLost>(*reading.creditRecovery)
                               : 0;
    JudgeCount(finding, std::max(byTraffic, byRecovery));
    finding->detail = counted ? Since(traffic->port.secondsSinceReset) : std::string();
    return true;
}

using enum HealthQuestion;
constexpr HealthCheck kLinkChecks[] = {
    {"link", "link", "", std::nullopt, false, JudgeLink,
     "Whether the port answers, is enabled and has a link, and no diagnostic state is on. A port "
     "that does not answer or is disabled is critical, one without a link a warning.",
     "`port show` tells the state; look at the cable and at the port of the switch. When the "
     "driver "
     "does not answer, `vxmgr --trace FILE port show -p PORT` shows the request that hangs; a "
     "restart of the port or the host ends that"},
    {"driver", "driver", "", std::nullopt, false, JudgeDriver,
     "How many questions about the port failed although its driver knows them. What depends on "
     "them is not known.",
     "run the check again with -v; the rows in the state unknown have the status of each question, "
     "`explain STATUS` tells what it means"},
    {"board_temperature", "board temperature", kCelsius, Temperature, true, JudgeTemperature,
     "The temperature of the adapter's board, against the limits that the adapter itself has. "
     "Above the critical one it may shut down.",
     "look at the fans and filters of the host, and at the air that the slot gets"},
    {"link_errors", "link errors", "", Link, false, JudgeLinkErrors,
     "Errors of the link since its counters were reset: failures, losses of synchronisation and "
     "signal, primitive sequence errors, invalid words and CRC errors.",
     "some come with every pulled cable: `port stats clear` begins anew, `health --sample S` looks "
     "at the next S seconds alone. When they go on, treat them as too little light"},
    {"fec", "FEC blocks lost", "", Link, false, JudgeFec,
     "Blocks with more errors than forward error correction can repair. Each costs frames.",
     kLightAdvice},
    {"credits", "credits lost", "", std::nullopt, false, JudgeCredits,
     "Buffer credits, or frames, that got lost on the link and had to be recovered. Lost credits "
     "make a link slow, then silent.",
     "look for errors of the link on both of its ends, and treat them as too little light"},
};

}  // namespace

std::span<const HealthCheck> LinkChecks() {
    return kLinkChecks;
}

}  // namespace vxmgr
