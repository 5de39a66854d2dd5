#include "vxmgr/update/update_checks.h"

#include "common/status_codes.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Severity;

constexpr size_t kLockdownBytes = 64;
constexpr size_t kActiveRegionBytes = 6;
constexpr size_t kSettingsBank = 2;  // of those bytes: the bank of NVRAM and VPD
constexpr uint8_t kSecondBank = 2;

[[noreturn]] void Refuse(HX_STATUS status, const char* text, const char* hint, const Port& port) {
    throw tools::CommandError{ExitCode::Refused,
                              {Severity::Error, text, hint, port.Object(), status}};
}

void CheckLockdown(const Port& port, uint32_t handle) {
    uint8_t state[kLockdownBytes] = {};
    // Any other status: the adapter has no such state.
    if (HXGetAdapterLockdownState(handle, 0, state) == HXMGT_FIRMWARE_LOCKDOWN) {
        Refuse(HXMGT_FIRMWARE_LOCKDOWN,
               "the adapter is locked down: it takes no changes, nothing was written",
               "lift the lockdown with the means that set it, then try again", port);
    }
}

// The library asks for the update lock only of callers that know the adapter's capabilities.
bool AskCapabilities(tools::Invocation& invocation, const Port& port, uint32_t handle) {
    uint64_t capabilities = 0;
    const HX_STATUS status = HXGetFlashUpdateCapabilities(handle, 0, &capabilities);
    if (status != HXMGT_SUCCESS && status != HXMGT_NOT_SUPPORTED) {
        invocation.Fail(status, "flash update capabilities", port.Object());
    }
    return capabilities != 0;
}

std::optional<bool> AskSecondBank(tools::Invocation& invocation, const Port& port,
                                  uint32_t handle) {
    uint8_t regions[kActiveRegionBytes] = {};
    const HX_STATUS status = HXGetActiveRegions(handle, 0, regions);
    if (status == HXMGT_PORT_DISABLED) {
        Refuse(status,
               "the port is disabled: it does not tell which banks are in use, nothing was written",
               "enable the port, then try again", port);
    }
    if (tools::ExitCodeOf(status) == ExitCode::NotSupported) {
        return std::nullopt;
    }
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, "active regions", port.Object());
    }
    return regions[kSettingsBank] == kSecondBank;
}

}  // namespace

std::optional<bool> BootsFromSan(uint32_t handle) {
    // The answer "yes" comes as the status of an update that cannot be activated.
    switch (HXGetBFSInfo(handle)) {
        case HXMGT_SUCCESS:
            return false;
        case HXMGT_FLASH_UPDATE_NOT_ACTIVATED:
            return true;
        default:
            return std::nullopt;
    }
}

UpdateOutlook LookBeforeUpdate(tools::Invocation& invocation, const Port& port, uint32_t handle) {
    UpdateOutlook outlook;
    if (!port.IsCurrentGeneration()) {
        return outlook;  // older drivers know none of the questions
    }
    outlook.activatesOnline = AskCapabilities(invocation, port, handle);
    CheckLockdown(port, handle);
    outlook.secondBank = AskSecondBank(invocation, port, handle);
    const auto warn = [&](const std::string& text) {
        outlook.warnings.push_back("port " + std::to_string(port.index) + ": " + text);
        invocation.Add({Severity::Warning, text, {}, port.Object(), {}});
    };
    if (HXGetHbaPortDisableInfo(handle) == HXMGT_PORT_DISABLED) {
        warn("the port is disabled: what is written takes effect once it is enabled");
    }
    outlook.bootsFromSan = BootsFromSan(handle);
    if (outlook.bootsFromSan.value_or(false)) {
        warn(
            "the host boots through this port: a restart of its firmware takes the boot disk away "
            "for a while, and the adapter may refuse it until the host itself restarts");
    }
    return outlook;
}

}  // namespace vxmgr
