// How far an update is, from 0 to 100, by the time that its steps are expected to take: one line on
// a console, a line for each step elsewhere, rows in jsonl.
#pragma once

#include <chrono>
#include <string>

#include "common/invocation.h"
#include "records/fields.h"

namespace vxmgr {

class UpdateProgress {
  public:
    UpdateProgress(Invocation& invocation, std::string object, double seconds)
        : invocation_(invocation), object_(std::move(object)), total_(seconds) {}
    ~UpdateProgress() { invocation_.ProgressLine(""); }
    UpdateProgress(const UpdateProgress&) = delete;
    UpdateProgress& operator=(const UpdateProgress&) = delete;

    // The next step; the one before counts as done.
    void Begin(std::string step, uint64_t bytes, double seconds);
    void Moved(uint64_t bytes);
    void Finish();

    double SecondsOfStep() const { return Since(stepStart_); }

  private:
    using Clock = std::chrono::steady_clock;

    static double Since(Clock::time_point start) {
        return std::chrono::duration<double>(Clock::now() - start).count();
    }
    void Tell(bool always);

    Invocation& invocation_;
    const std::string object_;
    double total_;
    double done_ = 0;  // seconds of the steps before, as expected
    std::string step_;
    uint64_t bytes_ = 0;
    uint64_t moved_ = 0;
    double seconds_ = 0;
    Clock::time_point start_ = Clock::now();
    Clock::time_point stepStart_ = Clock::now();
    Clock::time_point told_;
};

Shape ProgressShape();

}  // namespace vxmgr
