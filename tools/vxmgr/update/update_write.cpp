#include "vxmgr/update/update_write.h"

#include <windows.h>

#include <algorithm>
#include <exception>

#include "common/status_codes.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/update/update_lock.h"
#include "vxmgr/update/update_messages.h"

namespace vxmgr {
namespace {

using tools::ExitCode;

// The question may have waited for a while.
void CheckUnchanged(tools::Invocation& invocation, const Port& port, PlaceWrite& write) {
    if (write.check) {
        write.check();
    }
    if (write.recheck == Recheck::None) {
        return;
    }
    std::vector<uint8_t> now;
    const HX_STATUS status = write.read(&now);
    if (status != HXMGT_SUCCESS && write.recheck == Recheck::Required) {
        invocation.Fail(status,
                        write.what +
                            " cannot be read, so that a write could not be proven; nothing was "
                            "written",
                        port.Object());
    }
    if (status == HXMGT_SUCCESS) {
        if (!write.before.empty() && now != write.before) {
            FailChangedMeanwhile(write, port);
        }
        write.before = std::move(now);
    }
}

PlaceState StateOf(const PlaceWrite& write, const std::vector<uint8_t>& now, size_t same) {
    return same == write.image.size() ? PlaceState::New
           : now == write.before      ? PlaceState::Old
                                      : PlaceState::Mixed;
}

// Listens to the transfers of a handle, and speaks up before a piece goes out.
class TransferWatch {
  public:
    TransferWatch(tools::Invocation& invocation, uint32_t handle, const UpdateLock& lock,
                  PlaceWrite& write)
        : invocation_(invocation), handle_(handle), lock_(lock), write_(write) {
        HXSetFlashProgress(handle_, &TransferWatch::Hear, this);
    }
    ~TransferWatch() { HXSetFlashProgress(handle_, nullptr, nullptr); }
    TransferWatch(const TransferWatch&) = delete;
    TransferWatch& operator=(const TransferWatch&) = delete;

    bool LockLost() const { return lockLost_; }
    // What went wrong before the first byte goes on from here: no exception passes the library.
    void StopWriting() {
        writing_ = false;
        if (failure_ != nullptr) {
            std::rethrow_exception(failure_);
        }
    }

  private:
    static constexpr uint32_t kByOffset = 0xFFFF;  // a look at the flash, not the place itself

    static HX_STATUS Hear(void* context, uint32_t region, uint32_t done, uint32_t total) {
        return static_cast<TransferWatch*>(context)->Note(region, done, total);
    }

    HX_STATUS Note(uint32_t region, uint32_t done, uint32_t total) {
        invocation_.Stop().RenewHold();
        if (region == kByOffset) {
            return HXMGT_SUCCESS;
        }
        if (writing_ && done < total && !lock_.StillHeld()) {
            lockLost_ = true;
            return HXMGT_SESSION_IN_PROGRESS;
        }
        try {
            if (writing_ && !begun_ && write_.beforeFirst) {
                write_.beforeFirst(write_.image);
            }
            begun_ = true;
            if (write_.moved) {
                write_.moved(done);
            }
        } catch (...) {
            failure_ = std::current_exception();
            return ERROR_CANCELLED;
        }
        return HXMGT_SUCCESS;
    }

    tools::Invocation& invocation_;
    const uint32_t handle_;
    const UpdateLock& lock_;
    PlaceWrite& write_;
    bool writing_ = true;
    bool begun_ = false;
    bool lockLost_ = false;
    std::exception_ptr failure_;
};

// What to say, and the exit code it leads to; `same`: up to here it is the image.
std::optional<tools::CommandError> Judge(const PlaceWrite& write, const WriteOutcome& outcome,
                                         const std::string& object, size_t same) {
    const PlaceState state = outcome.state;
    const bool accepted = outcome.status == HXMGT_SUCCESS || outcome.NeedsRestart();
    if (accepted && state == PlaceState::New) {
        return std::nullopt;
    }
    const WriteTroubles& troubles = accepted ? write.accepted : write.failed;
    const WriteTrouble* const rows[] = {&troubles.unknown, &troubles.old, &troubles.whole,
                                        &troubles.mixed};
    const WriteTrouble& trouble = *rows[static_cast<size_t>(state)];
    tools::CommandError error;
    tools::Message& message = error.message;
    message.text = write.what + trouble.text;
    message.hint = trouble.hint;
    message.object = object;
    if (state == PlaceState::Mixed && !write.mixedUpTo.empty()) {
        message.text += "; " + write.mixedUpTo + " up to byte " + std::to_string(same);
    }
    if (!accepted) {
        message.text += write.detail;
        message.status = outcome.status;
    } else if (state == PlaceState::Unknown) {
        message.status = outcome.readStatus;
    }
    if (message.status) {
        message.text += ": " + StatusMessage(*message.status);
        message.hint = message.hint.empty() ? tools::HintOf(*message.status) : message.hint;
    }
    const bool unproven = state == (accepted ? PlaceState::Unknown : PlaceState::New);
    const bool speaks =
        message.status && (*message.status == kWentAway || state == PlaceState::Old);
    error.exit = speaks     ? tools::ExitCodeOf(*message.status)
                 : unproven ? ExitCode::NotProven
                            : ExitCode::Failed;
    return error;
}

}  // namespace

void FailChangedMeanwhile(const PlaceWrite& write, const Port& port) {
    FailAt(port.Object(), ExitCode::Refused,
           "another program changed " + write.what + " meanwhile; nothing was written to it",
           write.lookAgain);
}

WriteOutcome WritePlace(tools::Invocation& invocation, uint32_t handle, const Port& port,
                        PlaceWrite& write) {
    const std::string object = port.Object();
    const tools::StopHold hold(invocation.Stop(), write.finishes);
    const UpdateLock lock(invocation, handle, port);
    const auto begin = [&](WriteStep step, const std::string& line) {
        write.begins ? write.begins(step) : invocation.Progress(line);
    };
    if (write.begins) {
        write.begins(WriteStep::Checking);
    }
    CheckUnchanged(invocation, port, write);
    // Runs before the lock's own hook, which needs an answer of the adapter.
    const tools::AbandonHooks::Registration whenGivenUp(
        invocation.Hooks(),
        [&invocation, object, what = write.what, hint = write.failed.unknown.hint] {
            invocation.Changed();
            Complain(invocation, object, what + " was being written and may hold half of the image",
                     hint);
        });
    if (hold.IsStopping()) {
        invocation.Fail(tools::ExitCodeOf(invocation.Stop().Reason()),
                        "stopped before the first byte, nothing was written");
    }
    begin(WriteStep::Writing, "writing " + write.what + ", " + SizeText(write.image.size()));
    WriteOutcome outcome;
    TransferWatch watch(invocation, handle, lock, write);
    outcome.status = invocation.CauseOf(write.write(write.image), object);
    watch.StopWriting();
    outcome.lockLost = watch.LockLost();
    begin(WriteStep::ReadingBack, "reading " + write.what + " back");
    std::vector<uint8_t> now;
    outcome.readStatus = invocation.CauseOf(write.read(&now), object);
    size_t same = 0;
    if (outcome.readStatus == HXMGT_SUCCESS) {
        const size_t length = std::min(now.size(), write.image.size());
        same = static_cast<size_t>(std::mismatch(now.begin(),
                                                 now.begin() + static_cast<std::ptrdiff_t>(length),
                                                 write.image.begin())
                                       .first -
                                   now.begin());
        outcome.state = StateOf(write, now, same);
    }
    if (outcome.state != PlaceState::Old) {
        invocation.Changed();
    }
    outcome.interrupted = hold.IsStopping();
    outcome.trouble = Judge(write, outcome, object, same);
    if (outcome.lockLost) {
        outcome.trouble->exit = ExitCode::Busy;
        outcome.trouble->message.text =
            "another program took the update lock over, the write ended there: " +
            outcome.trouble->message.text;
    }
    return outcome;
}

}  // namespace vxmgr
