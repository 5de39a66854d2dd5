// The checks of a port's health: one table of what is looked at, from when on it is worth a word,
// what that means and what to do about it. Free of platform headers.
#pragma once

#include <span>

#include "vxmgr/health/health_reading.h"

namespace vxmgr {

enum class HealthState : uint8_t { Normal, Unknown, Warning, Critical };
inline constexpr const char* kHealthStates[] = {"normal", "unknown", "warning", "critical"};

struct HealthCheck;

struct HealthFinding {
    const HealthCheck* check = nullptr;
    HealthState state = HealthState::Normal;
    // Numbers in the check's unit, or words; empty: there is none.
    std::string value;
    std::string warning;
    std::string critical;
    std::string detail;
    HX_STATUS status = HXMGT_SUCCESS;  // why the state is not known
};

struct HealthCheck {
    const char* id;    // for programs, and `explain health`
    const char* name;  // for people
    const char* unit;
    std::optional<HealthQuestion> question;  // which has to be answered first
    bool ofAdapter;                          // asked of one of its ports alone
    // False: the port cannot tell.
    bool (*judge)(const HealthReading& reading, HealthFinding* finding);
    const char* meaning;
    const char* advice;
};

std::span<const HealthCheck> HealthChecks();
const HealthCheck* FindHealthCheck(std::string_view id);  // null when there is none

// What the checks find, in the order of the table. What the port cannot tell is left out.
std::vector<HealthFinding> JudgeHealth(const HealthReading& reading);

HealthState WorstOf(std::span<const HealthFinding> findings);

}  // namespace vxmgr
