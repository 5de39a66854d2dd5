#include "vxmgr/settings/settings_store.h"

#include <atomic>

#include "common/status_codes.h"
#include "vxmgr/update/update_interrupt.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_region.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Severity;

class Writer {
  public:
    Writer(tools::Invocation& invocation, const PortSession& session, SettingsWrite& write)
        : invocation_(invocation), session_(session), write_(write) {}

    bool Run() {
        const tools::AbandonHooks::Registration whenGivenUp(invocation_.Hooks(), [this] {
            if (writing_) {
                invocation_.Add({Severity::Error,
                                 What() + " was being written",
                                 Remedy(),
                                 session_.port.Object(),
                                 {}});
            }
        });
        const FinishFirst finish(invocation_, write_.what);
        const UpdateLock lock(invocation_, session_);
        CheckBase();
        std::vector<uint8_t> before;
        if (const HX_STATUS status = write_.readTarget(&before); status != HXMGT_SUCCESS) {
            invocation_.Fail(status,
                             What() +
                                 " cannot be read, so that a write could not be proven; "
                                 "nothing was written",
                             session_.port.Object());
        }
        if (!write_.replaced.empty() && before != write_.replaced) {
            FailChanged();
        }
        if (finish.Interrupted()) {
            invocation_.Fail(ExitCode::Cancelled, "cancelled, nothing was written");
        }
        invocation_.Progress("writing " + What() + ", " + std::to_string(write_.image.size()) +
                             " bytes");
        writing_ = true;
        const HX_STATUS status = write_.write(write_.image);
        invocation_.Progress("reading " + What() + " back");
        std::vector<uint8_t> after;
        const HX_STATUS readStatus = write_.readTarget(&after);
        writing_ = false;
        Judge(status, readStatus, StateOf(readStatus, before, after));
        return finish.Interrupted();
    }

  private:
    std::string What() const { return write_.what; }

    // What the user can do when neither the old nor the new contents stand there.
    std::string Remedy() const {
        return write_.bank ? std::string("the ") + write_.bank->NameInUse() +
                                 " bank, which is in use, was not touched: write again before the "
                                 "port is reset"
                           : "write an export again before the port or the host is reset";
    }

    [[noreturn]] void Fail(ExitCode exit, const std::string& text, const std::string& hint,
                           HX_STATUS status) const {
        tools::Message message{Severity::Error, text, hint, session_.port.Object(), {}};
        status = invocation_.CauseOf(status, message.object);
        exit = status == kWentAway ? ExitCode::NotFound : exit;
        if (status != HXMGT_SUCCESS) {
            message.text += ": " + StatusMessage(status);
            message.status = status;
        }
        throw tools::CommandError{exit, message};
    }

    // The question may have waited for a while.
    void CheckBase() const {
        std::vector<uint8_t> base;
        if (const HX_STATUS status = write_.readBase(&base); status != HXMGT_SUCCESS) {
            Fail(tools::ExitCodeOf(status), What() + " cannot be read; nothing was written", "",
                 status);
        }
        if (base != write_.base) {
            FailChanged();
        }
    }

    [[noreturn]] void FailChanged() const {
        Fail(ExitCode::Refused,
             "another program changed " + What() + " meanwhile; nothing was written",
             "look at the difference again", HXMGT_SUCCESS);
    }

    RegionState StateOf(HX_STATUS readStatus, const std::vector<uint8_t>& before,
                        const std::vector<uint8_t>& after) const {
        return readStatus != HXMGT_SUCCESS ? RegionState::Unknown
               : after == write_.image     ? RegionState::New
               : after == before           ? RegionState::Old
                                           : RegionState::Mixed;
    }

    void Judge(HX_STATUS status, HX_STATUS readStatus, RegionState state) const {
        const bool accepted = status == HXMGT_SUCCESS || status == HXMGT_FLASH_UPDATE_NOT_ACTIVATED;
        if (state != RegionState::Old) {
            invocation_.Changed();
        }
        switch (state) {
            case RegionState::New:
                if (!accepted) {
                    Fail(
                        ExitCode::NotProven,
                        What() + " holds what was to be written, but the driver reported a failure",
                        "read it again before the port is reset", status);
                }
                return;
            case RegionState::Old:
                Fail(accepted ? ExitCode::Failed : tools::ExitCodeOf(status),
                     What() + " was not written" + (accepted ? ", although it was accepted" : ""),
                     "it holds what it held before", accepted ? HX_STATUS{HXMGT_SUCCESS} : status);
            case RegionState::Mixed:
                Fail(ExitCode::Failed, What() + " holds neither what it held nor what was written",
                     Remedy(), accepted ? HX_STATUS{HXMGT_SUCCESS} : status);
            case RegionState::Unknown:
                Fail(
                    accepted ? ExitCode::NotProven : ExitCode::Failed,
                    What() + (accepted ? " was written, but cannot be read back"
                                       : " was perhaps not written whole, and cannot be read back"),
                    Remedy(), accepted ? readStatus : status);
        }
    }

    tools::Invocation& invocation_;
    const PortSession& session_;
    SettingsWrite& write_;
    std::atomic<bool> writing_ = false;
};

}  // namespace

bool WriteSettings(tools::Invocation& invocation, const PortSession& session,
                   SettingsWrite& write) {
    const bool interrupted = Writer(invocation, session, write).Run();
    if (interrupted) {
        invocation.Warn("interrupted; " + std::string(write.what) + " was written and reads back");
    }
    return interrupted;
}

std::string WhereItGoes(const std::optional<OtherBank>& bank) {
    return bank ? std::string("It goes to the ") + bank->Name() +
                      " bank; the firmware uses it from the port's next reset on."
                : std::string("The port's firmware reads it at its next reset.");
}

}  // namespace vxmgr
