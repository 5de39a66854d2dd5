#include "vxmgr/update/update_checks.h"

#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

constexpr size_t kLockdownBytes = 64;

void CheckLockdown(const Port& port, uint32_t handle) {
    uint8_t state[kLockdownBytes] = {};
    // Any other status: the adapter has no such state.
    if (HXGetAdapterLockdownState(handle, 0, state) == HXMGT_FIRMWARE_LOCKDOWN) {
        FailAt(port.Object(), ExitCode::Refused,
               "the adapter is locked down: it takes no changes, nothing was written",
               "lift the lockdown with the means that set it, then try again",
               HXMGT_FIRMWARE_LOCKDOWN);
    }
}

// The library asks for the update lock only of callers that know the adapter's capabilities.
bool AskCapabilities(Invocation& invocation, const Port& port, uint32_t handle) {
    uint64_t capabilities = 0;
    const HX_STATUS status = HXGetFlashUpdateCapabilities(handle, 0, &capabilities);
    if (status != HXMGT_SUCCESS && status != HXMGT_NOT_SUPPORTED) {
        invocation.Fail(status, "flash update capabilities", port.Object());
    }
    return capabilities != 0;
}

void CheckBanks(Invocation& invocation, const Port& port, uint32_t handle) {
    bool second = false;
    const HX_STATUS status = AskSecondBank(handle, &second);
    if (status == HXMGT_PORT_DISABLED) {
        FailAt(port.Object(), ExitCode::Refused,
               "the port is disabled: it does not tell which banks are in use, nothing was written",
               "enable the port, then try again", status);
    }
    if (status != HXMGT_SUCCESS && ExitCodeOf(status) != ExitCode::NotSupported) {
        invocation.Fail(status, "active regions", port.Object());
    }
}

// Empty: the driver cannot tell.
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

}  // namespace

HX_STATUS AskSecondBank(uint32_t handle, bool* second) {
    constexpr size_t kRegionBytes = 6;
    constexpr size_t kSettings = 2;  // of those bytes: the bank of NVRAM and VPD
    constexpr uint8_t kSecond = 2;
    uint8_t regions[kRegionBytes] = {};
    const HX_STATUS status = HXGetActiveRegions(handle, 0, regions);
    *second = regions[kSettings] == kSecond;
    return status;
}

UpdateOutlook LookBeforeUpdate(Invocation& invocation, const Port& port, uint32_t handle) {
    UpdateOutlook outlook;
    if (!port.IsCurrentGeneration()) {
        return outlook;  // older drivers know none of the questions
    }
    outlook.activatesOnline = AskCapabilities(invocation, port, handle);
    CheckLockdown(port, handle);
    CheckBanks(invocation, port, handle);
    const auto warn = [&](const std::string& text) {
        outlook.warnings.push_back("port " + std::to_string(port.index) + ": " + text);
        WarnAbout(invocation, port.Object(), text);
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

std::vector<UpdateOutlook> LookBeforeUpdate(Invocation& invocation, const AdapterSession& session) {
    std::vector<UpdateOutlook> outlooks;
    for (size_t i = 0; i < session.ports.size(); ++i) {
        outlooks.push_back(
            LookBeforeUpdate(invocation, session.ports[i], session.devices[i].Handle()));
    }
    return outlooks;
}

void ConfirmUpdate(Invocation& invocation, const PortSession& session, const UpdateOutlook& outlook,
                   const std::string& action, const std::string& consequence,
                   const std::vector<std::string>& lines) {
    Question question = QuestionAbout(session, action, consequence);
    for (const auto* const more : {&lines, &outlook.warnings}) {
        question.lines.insert(question.lines.end(), more->begin(), more->end());
    }
    invocation.Confirm(question);
    invocation.CheckStop();
}

}  // namespace vxmgr
