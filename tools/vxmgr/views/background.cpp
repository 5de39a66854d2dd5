#include "vxmgr/views/background.h"

#include <system_error>
#include <thread>

namespace vxmgr {
namespace {

// Most ends come at once; what waits for a driver that answers has time to switch off its events.
constexpr std::chrono::milliseconds kEndTime{1000};

}  // namespace

Background::Background(tools::StopControl& stop) : stop_(stop), sign_(std::make_shared<Sign>()) {}

Background::~Background() {
    std::unique_lock guard(sign_->lock_);
    sign_->ends_ = true;
    sign_->changed_.notify_all();
    if (!sign_->changed_.wait_for(guard, kEndTime, [this] { return sign_->threads_ == 0; })) {
        stop_.LeaveThread();
    }
}

bool Background::Start(Work work) {
    const std::lock_guard guard(sign_->lock_);
    try {
        std::thread([sign = sign_, own = std::move(work)]() mutable {
            try {
                own(*sign);
            } catch (...) {
                // Out of memory: the others go on.
            }
            own = {};  // what it owns is gone before it counts as ended
            const std::lock_guard ended(sign->lock_);
            --sign->threads_;
            sign->changed_.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        return false;
    }
    ++sign_->threads_;
    return true;
}

bool Background::Sign::WaitFor(std::chrono::milliseconds time) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, time, [this] { return ends_; });
}

}  // namespace vxmgr
