#include "vxmgr/update/update_activation.h"

#include <algorithm>
#include <chrono>

#include "vxmgr/flash/flash_image.h"
#include "vxmgr/update/update_lock.h"

namespace vxmgr {
namespace {

constexpr int kVersionTries = 20;
constexpr std::chrono::milliseconds kBetweenTries{500};

// Reads versions until all ports report the one that is expected. False when the time is over, or
// the command is to end.
bool WaitForFirmware(Invocation& invocation, AdapterSession& session, const std::string& version) {
    for (int i = 0; i < kVersionTries; ++i) {
        session.Refresh();
        const bool all = std::ranges::all_of(session.ports, [&](const Port& port) {
            const auto order = CompareVersions(RunningFirmware(port), version);
            return order && *order == 0;
        });
        if (all || invocation.Stop().WaitFor(kBetweenTries)) {
            return all;
        }
    }
    return false;
}

}  // namespace

HX_STATUS NoteAndActivate(const AdapterSession& session, uint32_t limitSeconds) {
    for (size_t i = 0; i < session.ports.size(); ++i) {
        // The word as it was when the adapter was looked at: firmware that was exchanged since then
        // is not started.
        const auto& firmware = session.ports[i].firmware;
        HXSendFlashUpdateFWAttributes(session.devices[i].Handle(), 0,
                                      firmware ? firmware->activationAttributes : 0, limitSeconds);
    }
    return HXOnlineActivateFlashUpdate(session.Handle());
}

Restarted RestartUnderLock(Invocation& invocation, AdapterSession& session,
                           const std::string& version, const std::function<HX_STATUS()>& start) {
    HX_STATUS status = HXMGT_SUCCESS;
    {
        const StopHold hold(invocation.Stop(), "the restart");
        const UpdateLock lock(invocation, session.Handle(), session.First());
        invocation.Progress("restarting the firmware of " + std::to_string(session.ports.size()) +
                            " ports");
        status = start();
        invocation.Changed();
    }
    // The library hands on no failure of a single port: what runs now is what counts.
    const bool runs = status == HXMGT_SUCCESS &&
                      (version.empty() || WaitForFirmware(invocation, session, version));
    session.Refresh();
    return {status, runs};
}

}  // namespace vxmgr
