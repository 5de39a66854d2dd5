// The lock that keeps two programs from updating one adapter, held for as long as one region takes.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "common/invocation.h"
#include "vxmgr/app/port_session.h"
#include "vxmgr/update/update_guard.h"

namespace vxmgr {

// Takes the lock of the adapter behind an open port, and keeps other programs of this kind out;
// ends the command as busy when another program holds either. Gives it back at the end of the
// scope, and also when the command is given up while a driver call hangs. The library frees a lock
// after 15 minutes: hold it for one region at a time.
class UpdateLock {
  public:
    UpdateLock(tools::Invocation& invocation, uint32_t handle, const Port& port);
    UpdateLock(tools::Invocation& invocation, const PortSession& session)
        : UpdateLock(invocation, session.Handle(), session.port) {}
    ~UpdateLock();
    UpdateLock(const UpdateLock&) = delete;
    UpdateLock& operator=(const UpdateLock&) = delete;

  private:
    // Shared with the hook, which may outlive the scope: it runs on a thread of its own.
    struct Held {
        uint32_t handle = 0;
        uint32_t key = 0;
        std::atomic<bool> held{true};

        HX_STATUS Release();
    };
    static std::shared_ptr<Held> Take(tools::Invocation& invocation, uint32_t handle,
                                      const std::string& object);

    tools::Invocation& invocation_;
    const std::string object_;
    const UpdateGuard guard_;  // given back after the lock
    const std::shared_ptr<Held> lock_;
    const tools::AbandonHooks::Registration hook_;
};

}  // namespace vxmgr
