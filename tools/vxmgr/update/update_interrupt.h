// Ctrl-C while flash is written.
#pragma once

#include "common/invocation.h"

namespace vxmgr {

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
