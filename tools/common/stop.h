// How a running command ends early: the user interrupts it, or its time is over. The command looks
// at its stop request between steps; one that is stuck in a driver call is given up.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <optional>

#include "exit_codes.h"

namespace tools {

enum class StopReason : uint8_t { None, Interrupted, TimedOut };

constexpr ExitCode ExitCodeOf(StopReason reason) {
    return reason == StopReason::TimedOut ? ExitCode::TimedOut : ExitCode::Cancelled;
}

// Thrown by a command that stops on request; the frame ends it with the reason's exit code.
struct Stopped {
    StopReason reason;
};

class StopControl {
  public:
    using Clock = std::chrono::steady_clock;

    // The first reason stays. A second interrupt asks to wait no longer for the command.
    void Request(StopReason reason);
    StopReason Reason();

    // Sleeps; true at once when a stop is requested.
    bool WaitFor(std::chrono::milliseconds time);

    // Called by the worker when the command is over.
    void Finish();

    // How long the command may take from now on; without a limit it may for ever. While it is
    // paused, for waits that have limits of their own, the time does not count.
    void SetLimit(std::chrono::milliseconds limit);
    void PauseLimit();
    void ResumeLimit();

    // Waits for the command: to its end, or until it was asked to stop (by the user, or here when
    // its time is over) and let the grace pass. False when it has to be given up.
    bool WaitForEnd(std::chrono::milliseconds grace);

    // While a hold lasts, a stop waits for what must not be cut in the middle: the grace begins
    // when the hold ends. A hold that is not renewed for its time does not count any more. what: as
    // in "the region is finished first", a text that stays.
    void BeginHold(const char* what, std::chrono::milliseconds time);
    void RenewHold();
    void EndHold();
    const char* HeldBy();  // null: nothing is held

    // A thread of the command is left in a driver call that did not return: the process has to end
    // without taking anything apart.
    void LeaveThread();
    bool HasThreadsLeft();

    // Waits until the whole process is about to end; for the handler of a closing window. False
    // when it is not.
    bool WaitForExit(std::chrono::milliseconds atMost);
    void AboutToExit();

  private:
    std::mutex lock_;
    std::condition_variable changed_;
    StopReason reason_ = StopReason::None;
    bool hurry_ = false;
    bool finished_ = false;
    bool exiting_ = false;
    bool threadsLeft_ = false;
    std::optional<Clock::time_point> deadline_;  // none: no limit, or paused
    std::optional<Clock::duration> left_;        // while paused
    int pauses_ = 0;
    const char* heldBy_ = nullptr;
    std::chrono::milliseconds holdTime_{};
    Clock::time_point heldUntil_;  // or when the last hold ended
};

// A hold for as long as it lives; one at a time.
class StopHold {
  public:
    // More than any piece of the work takes that ends with a renewal.
    static constexpr std::chrono::seconds kTime{30};

    StopHold(StopControl& stop, const char* what) : stop_(stop) { stop_.BeginHold(what, kTime); }
    ~StopHold() { stop_.EndHold(); }
    StopHold(const StopHold&) = delete;
    StopHold& operator=(const StopHold&) = delete;

    // Whether the command is to end behind what is held.
    bool IsStopping() const { return stop_.Reason() != StopReason::None; }

  private:
    StopControl& stop_;
};

// Pauses the limit for as long as it lives.
class LimitPause {
  public:
    explicit LimitPause(StopControl& stop) : stop_(stop) { stop_.PauseLimit(); }
    ~LimitPause() { stop_.ResumeLimit(); }
    LimitPause(const LimitPause&) = delete;
    LimitPause& operator=(const LimitPause&) = delete;

  private:
    StopControl& stop_;
};

// What has to be put back when a command is given up while it hangs. Hooks run on another thread
// than the command, which may be stuck in a call on the same adapter.
class AbandonHooks {
  public:
    using Hook = std::function<void()>;

    // A registration; the hook is dropped with it.
    class Registration {
      public:
        Registration(AbandonHooks& hooks, Hook hook);
        ~Registration();
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;

      private:
        AbandonHooks& hooks_;
        std::list<Hook>::iterator place_;
    };

    // Runs the hooks, the youngest first, and waits for them no longer than atMost.
    void Run(std::chrono::milliseconds atMost);

  private:
    std::mutex lock_;
    std::list<Hook> hooks_;
};

}  // namespace tools
