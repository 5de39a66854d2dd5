#include "vxmgr/update/update_activation.h"

#include <algorithm>
#include <chrono>

#include "vxmgr/flash/flash_version.h"

namespace vxmgr {
namespace {

constexpr int kTries = 20;
constexpr std::chrono::milliseconds kBetweenTries{500};

}  // namespace

HX_STATUS ActivateOnline(const AdapterSession& session, uint32_t limitSeconds) {
    for (size_t i = 0; i < session.ports.size(); ++i) {
        // The word as it was when the adapter was looked at: firmware that was exchanged since then
        // is not started.
        const auto& firmware = session.ports[i].firmware;
        HXSendFlashUpdateFWAttributes(session.devices[i].Handle(), 0,
                                      firmware ? firmware->activationAttributes : 0, limitSeconds);
    }
    return HXOnlineActivateFlashUpdate(session.Handle());
}

HX_STATUS ReloadSettings(const AdapterSession& session) {
    for (const Device& device : session.devices) {
        if (const HX_STATUS status = HXReloadNvramAndInitFw(device.Handle());
            status != HXMGT_SUCCESS) {
            return status;
        }
    }
    return HXMGT_SUCCESS;
}

bool WaitForFirmware(tools::Invocation& invocation, AdapterSession& session,
                     const std::string& version) {
    for (int i = 0; i < kTries; ++i) {
        session.Refresh();
        const bool all =
            std::all_of(session.ports.begin(), session.ports.end(), [&](const Port& port) {
                const auto order = CompareVersions(RunningFirmware(port), version);
                return order && *order == 0;
            });
        if (all) {
            return true;
        }
        invocation.Sleep(kBetweenTries);
    }
    return false;
}

}  // namespace vxmgr
