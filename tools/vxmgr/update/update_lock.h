// What holds while an adapter is written to: the lock that keeps two programs from updating one
// adapter, for as long as one region takes.
#pragma once

#include <memory>

#include "vxmgr/app/port_session.h"

namespace vxmgr {

// Keeps other programs of this kind from writing to the adapter, for as long as it lives; ends the
// command as busy when one of them does. One that ended in the middle is no hindrance. The thread
// that has one may have more of the same adapter.
class UpdateGuard {
  public:
    UpdateGuard(Invocation& invocation, const Port& port);

  private:
    // Empty for an adapter without a serial number: the library has no lock for it either.
    std::shared_ptr<void> mutex_;
};

// Takes the lock of the adapter behind an open port, and keeps other programs of this kind out;
// ends the command as busy when another program holds either. Gives it back at the end of the
// scope, and also when the command is given up while a driver call hangs. The library frees a lock
// after 15 minutes: hold it for one region at a time. Belongs to the thread that made it.
class UpdateLock {
  public:
    UpdateLock(Invocation& invocation, uint32_t handle, const Port& port);
    UpdateLock(Invocation& invocation, const PortSession& session)
        : UpdateLock(invocation, session.Handle(), session.port) {}
    ~UpdateLock();
    UpdateLock(const UpdateLock&) = delete;
    UpdateLock& operator=(const UpdateLock&) = delete;

    // False once another program has taken the library's lock over.
    bool StillHeld() const;

  private:
    struct Held;  // the library's lock

    Invocation& invocation_;
    const std::string object_;
    // Held around the library's lock: that one is looked at and taken in two steps, and goes to
    // anybody after 15 minutes.
    const UpdateGuard guard_;
    const std::shared_ptr<Held> lock_;  // shared with the hook, which may outlive the scope
    const AbandonHooks::Registration hook_;
};

}  // namespace vxmgr
