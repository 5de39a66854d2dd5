#include "vxmgr/app/worker_threads.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace vxmgr {
namespace {

class Workers {
  public:
    void Run(std::function<void()> work) {
        const std::lock_guard guard(lock_);
        if (queue_.size() < idle_) {
            queue_.push_back(std::move(work));
            changed_.notify_one();
        } else {
            std::thread(&Workers::Serve, this, std::move(work)).detach();
        }
    }

  private:
    void Serve(std::function<void()> work) {
        while (true) {
            work();
            work = {};
            std::unique_lock guard(lock_);
            ++idle_;
            changed_.wait(guard, [this] { return !queue_.empty(); });
            --idle_;
            work = std::move(queue_.front());
            queue_.pop_front();
        }
    }

    std::mutex lock_;  // guards what follows
    std::condition_variable changed_;
    std::deque<std::function<void()>> queue_;  // never more than there are idle threads
    size_t idle_ = 0;
};

}  // namespace

void RunOnWorker(std::function<void()> work) {
    // Never destroyed: the threads wait until the process ends.
    static Workers* const workers = new Workers;
    workers->Run(std::move(work));
}

}  // namespace vxmgr
