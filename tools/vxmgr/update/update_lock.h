// What holds while an adapter is written to: the lock that keeps two programs from updating one
// adapter, for as long as one region takes, and Ctrl-C waiting for the end.
#pragma once

#include <memory>
#include <string>

#include "common/invocation.h"
#include "vxmgr/app/port_session.h"

namespace vxmgr {

// Takes the lock of the adapter behind an open port, and keeps other programs of this kind out;
// ends the command as busy when another program holds either. Gives it back at the end of the
// scope, and also when the command is given up while a driver call hangs. The library frees a lock
// after 15 minutes: hold it for one region at a time. Belongs to the thread that made it.
class UpdateLock {
  public:
    UpdateLock(tools::Invocation& invocation, uint32_t handle, const Port& port);
    UpdateLock(tools::Invocation& invocation, const PortSession& session)
        : UpdateLock(invocation, session.Handle(), session.port) {}
    ~UpdateLock();
    UpdateLock(const UpdateLock&) = delete;
    UpdateLock& operator=(const UpdateLock&) = delete;

  private:
    struct Held;  // the library's lock

    tools::Invocation& invocation_;
    const std::string object_;
    // Held around the library's lock: that one is looked at and taken in two steps, and goes to
    // anybody after 15 minutes. One of a program that ended in the middle is taken over. Empty for
    // an adapter without a serial number: the library has no lock for it either.
    const std::shared_ptr<void> guard_;
    const std::shared_ptr<Held> lock_;  // shared with the hook, which may outlive the scope
    const tools::AbandonHooks::Registration hook_;
};

// While one of these lives, the first Ctrl-C does not end the command: what is being written is
// finished first. A second one does, as everywhere. One at a time.
class FinishFirst {
  public:
    // what: as in "the region is finished first"; a text that stays.
    FinishFirst(const tools::Invocation& invocation, const char* what);
    ~FinishFirst();
    FinishFirst(const FinishFirst&) = delete;
    FinishFirst& operator=(const FinishFirst&) = delete;

    bool Interrupted() const;
};

// Ends the command as interrupted.
inline void StopWhen(bool interrupted) {
    if (interrupted) {
        throw tools::Stopped{tools::StopReason::Interrupted};
    }
}

}  // namespace vxmgr
