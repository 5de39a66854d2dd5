#include "vxmgr/health/health_judging.h"

namespace vxmgr {
namespace {

bool JudgeDumps(const HealthReading& reading, HealthFinding* finding) {
    JudgeCount(finding, reading.dumps.size());
    finding->detail = TextsJoined(reading.dumps, ", ");
    return true;
}

bool JudgeSettings(const HealthReading& reading, HealthFinding* finding) {
    finding->value = reading.settingsSound ? "sound" : "damaged";
    if (!reading.settingsSound) {
        SetState(finding, HealthState::Critical, "signature or checksum of the block are wrong");
    }
    return true;
}

bool JudgeProductData(const HealthReading& reading, HealthFinding* finding) {
    finding->value = reading.productDataFaults.empty() ? "sound" : "damaged";
    if (!reading.productDataFaults.empty()) {
        SetState(finding, HealthState::Critical, reading.productDataFaults);
    }
    return true;
}

// What a region holds while it is written says nothing.
bool JudgeCode(const HealthReading& reading, HealthFinding* finding) {
    if (reading.adapter->updating || reading.adapter->code.empty()) {
        return false;
    }
    std::string text;
    for (const CodeReading& code : reading.adapter->code) {
        text += code.damage.empty() ? "" : (text.empty() ? "" : "; ") + code.damage;
    }
    finding->value = text.empty() ? "sound" : "damaged";
    if (!text.empty()) {
        SetState(finding, HealthState::Critical, text);
    }
    return true;
}

bool JudgePending(const HealthReading& reading, HealthFinding* finding) {
    if (reading.adapter->updating || reading.adapter->code.empty()) {
        return false;
    }
    std::string text;
    uint64_t count = 0;
    for (const CodeReading& code : reading.adapter->code) {
        if (code.pending) {
            text += (count++ == 0 ? "" : "; ") + code.name + " " + code.stored + " starts next, " +
                    code.running + " runs";
        }
    }
    JudgeCount(finding, count);
    finding->detail = text;
    return true;
}

bool JudgeUpdate(const HealthReading& reading, HealthFinding* finding) {
    const AdapterReading& adapter = *reading.adapter;
    finding->value = adapter.updating              ? "at work"
                     : adapter.interrupted.empty() ? "none"
                                                   : "interrupted";
    if (!adapter.interrupted.empty()) {
        SetState(finding, HealthState::Critical, adapter.interrupted);
    }
    return true;
}

using enum HealthQuestion;
constexpr HealthCheck kStoredChecks[] = {
    {"dump", "dumps waiting", "", Dumps, false, JudgeDumps,
     "The firmware failed and left a dump of what it was doing. It does not make another one "
     "before this is fetched.",
     "`dump save KIND FILE` fetches it, for the support"},
    {"settings", "settings", "", Settings, false, JudgeSettings,
     "The settings of the port (NVRAM). Damaged ones leave the firmware with its defaults, or "
     "without "
     "a start.",
     "do not restart the port: `nvram import FILE` writes what `nvram export` kept"},
    {"product_data", "product data", "", ProductData, false, JudgeProductData,
     "The product data of the port (VPD): serial number, part, what programs identify it by.",
     "`vpd write FILE` writes what `vpd read` kept"},
    {"code", "stored code", "", Code, true, JudgeCode,
     "Firmware and boot code in the adapter's flash. Damaged code runs on until the next restart, "
     "and does not come back from it.",
     "`fw show` names the region: write it again with `fw update` or `flash write` before the "
     "adapter is restarted"},
    {"pending", "written, not active", "", Code, true, JudgePending,
     "Firmware or boot code that was written and waits for a restart.",
     "`fw activate` starts it with the least that has to be restarted"},
    {"update", "update", "", std::nullopt, true, JudgeUpdate,
     "An update or restore of the adapter's flash that ended in the middle.",
     "`fw restore latest` brings the old contents back, `fw update --resume` finishes the new "
     "ones"},
};

}  // namespace

std::span<const HealthCheck> StoredChecks() {
    return kStoredChecks;
}

}  // namespace vxmgr
