// Keeps two of these programs from writing to one adapter at a time.
#pragma once

#include <memory>
#include <string>

#include "common/invocation.h"
#include "vxmgr/app/inventory.h"

namespace vxmgr {

// Held for as long as an adapter is written to, around the library's update lock: that one is
// looked at and taken in two steps, and goes to anybody after 15 minutes. One of a program that
// ended in the middle is taken over. Belongs to the thread that made it.
class UpdateGuard {
  public:
    // Ends the command when another vxmgr writes to the adapter of the port. An adapter without a
    // serial number has no guard: the library has no lock for it either.
    UpdateGuard(tools::Invocation& invocation, const Port& port);
    ~UpdateGuard();
    UpdateGuard(const UpdateGuard&) = delete;
    UpdateGuard& operator=(const UpdateGuard&) = delete;

  private:
    struct Closer {
        void operator()(void* mutex) const;
    };
    std::unique_ptr<void, Closer> mutex_;
};

// The name that all programs of the machine know the guard by.
std::string GuardName(const std::string& serial);

}  // namespace vxmgr
