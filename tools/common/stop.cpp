#include "stop.h"

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

namespace tools {

void StopControl::Request(StopReason reason) {
    const std::lock_guard guard(lock_);
    if (reason_ == StopReason::None) {
        reason_ = reason;
    } else if (reason == StopReason::Interrupted) {
        hurry_ = true;
    }
    changed_.notify_all();
}

StopReason StopControl::Reason() {
    const std::lock_guard guard(lock_);
    return reason_;
}

bool StopControl::WaitFor(std::chrono::milliseconds time) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, time, [this] { return reason_ != StopReason::None; });
}

void StopControl::Finish() {
    const std::lock_guard guard(lock_);
    finished_ = true;
    changed_.notify_all();
}

void StopControl::SetLimit(std::chrono::milliseconds limit) {
    const std::lock_guard guard(lock_);
    deadline_ = Clock::now() + limit;
    changed_.notify_all();
}

void StopControl::PauseLimit() {
    const std::lock_guard guard(lock_);
    if (pauses_++ == 0 && deadline_) {
        left_ = *deadline_ - Clock::now();
        deadline_.reset();
        changed_.notify_all();
    }
}

void StopControl::ResumeLimit() {
    const std::lock_guard guard(lock_);
    if (--pauses_ == 0 && left_) {
        deadline_ = Clock::now() + *left_;
        left_.reset();
        changed_.notify_all();
    }
}

bool StopControl::WaitForEnd(std::chrono::milliseconds grace) {
    std::unique_lock guard(lock_);
    while (!finished_ && reason_ == StopReason::None) {
        if (!deadline_) {
            changed_.wait(guard);
        } else if (const Clock::time_point deadline = *deadline_; Clock::now() < deadline) {
            changed_.wait_until(guard, deadline);
        } else {
            reason_ = StopReason::TimedOut;
            changed_.notify_all();
        }
    }
    const Clock::time_point asked = Clock::now();
    while (!finished_ && !hurry_) {
        const Clock::time_point until =
            heldBy_ != nullptr ? heldUntil_ : std::max(asked, heldUntil_) + grace;
        if (Clock::now() >= until) {
            break;
        }
        changed_.wait_until(guard, until);
    }
    return finished_;
}

void StopControl::BeginHold(const char* what, std::chrono::milliseconds time) {
    const std::lock_guard guard(lock_);
    heldBy_ = what;
    holdTime_ = time;
    heldUntil_ = Clock::now() + time;
    changed_.notify_all();
}

void StopControl::RenewHold() {
    const std::lock_guard guard(lock_);
    heldUntil_ = Clock::now() + holdTime_;
    changed_.notify_all();
}

void StopControl::EndHold() {
    const std::lock_guard guard(lock_);
    heldBy_ = nullptr;
    heldUntil_ = Clock::now();
    changed_.notify_all();
}

const char* StopControl::HeldBy() {
    const std::lock_guard guard(lock_);
    return heldBy_;
}

void StopControl::LeaveThread() {
    const std::lock_guard guard(lock_);
    threadsLeft_ = true;
}

bool StopControl::HasThreadsLeft() {
    const std::lock_guard guard(lock_);
    return threadsLeft_;
}

bool StopControl::WaitForExit(std::chrono::milliseconds atMost) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, atMost, [this] { return exiting_; });
}

void StopControl::AboutToExit() {
    const std::lock_guard guard(lock_);
    exiting_ = true;
    changed_.notify_all();
}

AbandonHooks::Registration::Registration(AbandonHooks& hooks, Hook hook) : hooks_(hooks) {
    const std::lock_guard guard(hooks_.lock_);
    place_ = hooks_.hooks_.insert(hooks_.hooks_.begin(), std::move(hook));
}

AbandonHooks::Registration::~Registration() {
    const std::lock_guard guard(hooks_.lock_);
    hooks_.hooks_.erase(place_);
}

void AbandonHooks::Run(std::chrono::milliseconds atMost) {
    struct Progress {
        std::mutex lock;
        std::condition_variable changed;
        bool done = false;
    };
    auto progress = std::make_shared<Progress>();
    std::vector<Hook> hooks;
    {
        const std::lock_guard guard(lock_);
        hooks.assign(hooks_.begin(), hooks_.end());
    }
    if (hooks.empty()) {
        return;
    }
    // Detached: a hook that hangs as well must not hold up the end of the process.
    std::thread([progress, hooks] {
        for (const Hook& hook : hooks) {
            hook();
        }
        const std::lock_guard guard(progress->lock);
        progress->done = true;
        progress->changed.notify_all();
    }).detach();
    std::unique_lock guard(progress->lock);
    progress->changed.wait_for(guard, atMost, [&] { return progress->done; });
}

}  // namespace tools
