// Threads beside the one that a person watches: they end when they are told to, and those that are
// stuck in a driver are left behind.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

#include "common/stop.h"

namespace vxmgr {

class Background {
  public:
    // What a thread has of its group.
    class Sign;
    // It may outlive everything else: it owns, or shares, what it uses.
    using Work = std::function<void(Sign& sign)>;

    explicit Background(tools::StopControl& stop);
    ~Background();
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    // False when there can be no more threads.
    bool Start(Work work);

  private:
    tools::StopControl& stop_;
    const std::shared_ptr<Sign> sign_;
};

class Background::Sign {
  public:
    // Sleeps; true at once when the threads are to end.
    bool WaitFor(std::chrono::milliseconds time);

  private:
    friend class Background;

    std::mutex lock_;  // guards what follows
    std::condition_variable changed_;
    bool ends_ = false;
    size_t threads_ = 0;
};

}  // namespace vxmgr
