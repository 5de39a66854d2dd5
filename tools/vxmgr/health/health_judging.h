// What the checks of health are written with. Free of platform headers.
#pragma once

#include "vxmgr/app/getters.h"
#include "vxmgr/health/health_checks.h"

namespace vxmgr {

// The checks of each part.
std::span<const HealthCheck> LinkChecks();
std::span<const HealthCheck> TransceiverChecks();
std::span<const HealthCheck> FabricChecks();
std::span<const HealthCheck> StoredChecks();

inline constexpr char kCelsius[] = "\u00b0C";
inline constexpr char kLightAdvice[] =
    "`sfp show` has all values with their limits: clean the connectors, try another cable, then "
    "another transceiver, at both ends";

inline void SetState(HealthFinding* finding, HealthState state, std::string detail) {
    finding->state = state;
    finding->detail = std::move(detail);
}

// Something that should not happen at all: a warning from the first on.
inline void JudgeCount(HealthFinding* finding, uint64_t count) {
    finding->value = std::to_string(count);
    finding->warning = "1";
    finding->state = count != 0 ? HealthState::Warning : HealthState::Normal;
}

// "in 3600 s"
inline std::string Since(uint64_t seconds) {
    return seconds == HX_NOT_COUNTED ? std::string() : "in " + std::to_string(seconds) + " s";
}

inline uint64_t Counted(uint64_t counter) {
    return counter == HX_NOT_COUNTED ? 0 : counter;
}

}  // namespace vxmgr
