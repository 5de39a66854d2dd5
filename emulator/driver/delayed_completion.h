// Requests whose answer is ready but comes late, because a fault asks for it. Each waits on a
// thread of its own, so that no other request has to.
#pragma once

#include "kernel.h"

namespace driver {

class DelayedCompletions {
  public:
    void Initialize();

    // Takes over a request whose result stands in its status block; the caller returns
    // STATUS_PENDING. False when there is no memory or thread: the caller completes it at once.
    bool Start(IRP* irp, uint32_t milliseconds);

    // Waits until every thread has ended. No request may be started any more.
    void Finish();

  private:
    struct Entry {
        LIST_ENTRY link;
        IRP* irp;
        int64_t interval;  // as the kernel counts: negative, 100 ns
        void* thread;
        volatile LONG done;
    };

    static void Run(void* context);
    void Reap(bool wait);

    LIST_ENTRY entries_;
    FAST_MUTEX lock_;  // guards entries_
};

}  // namespace driver
