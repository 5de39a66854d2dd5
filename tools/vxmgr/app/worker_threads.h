// Threads that stay for the next work: to start one takes longer than most requests.
#pragma once

#include <functional>

namespace vxmgr {

// Runs the work on a thread of its own, at once. It throws nothing, and owns, or shares, what it
// uses. Throws std::system_error when there can be no more threads.
void RunOnWorker(std::function<void()> work);

}  // namespace vxmgr
