// The kernel's locks under the names of the standard library's.
#pragma once

#include "kernel.h"

namespace driver {

class FastMutex {
  public:
    void Initialize() { ExInitializeFastMutex(&mutex_); }
    void lock() { ExAcquireFastMutex(&mutex_); }
    void unlock() { ExReleaseFastMutex(&mutex_); }

  private:
    FAST_MUTEX mutex_;
};

// Many readers or one writer. Its holder must not be stopped by an APC, so normal ones wait.
class Resource {
  public:
    void Initialize() { ExInitializeResourceLite(&resource_); }
    // Once nobody holds it or will.
    void Delete() { ExDeleteResourceLite(&resource_); }

    void lock() {
        KeEnterCriticalRegion();
        ExAcquireResourceExclusiveLite(&resource_, TRUE);
    }
    void lock_shared() {
        KeEnterCriticalRegion();
        ExAcquireResourceSharedLite(&resource_, TRUE);
    }
    void unlock() {
        ExReleaseResourceLite(&resource_);
        KeLeaveCriticalRegion();
    }
    void unlock_shared() { unlock(); }

  private:
    ERESOURCE resource_;
};

}  // namespace driver
