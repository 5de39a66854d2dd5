// What the library sets up when a process loads it: named objects, shared mappings, event slot.
#pragma once

#include <windows.h>

#include <cstdint>

#include "frame/shared_area.h"

namespace frame {

bool LibraryAttach();
void LibraryDetach();

// Lets any account use a named object: security attributes with a null DACL.
class OpenToAll {
  public:
    // The attributes, or null when the system cannot build them.
    SECURITY_ATTRIBUTES* Attributes();

  private:
    SECURITY_DESCRIPTOR descriptor_{};
    SECURITY_ATTRIBUTES attributes_{};
};

// Serialises the search for a free handle record.
HANDLE OpenMutex();

// The shared event area; null only outside attach and detach.
EventArea* Events();

// This process's event slot, or null when all were taken.
EventSlot* OwnEventSlot();

FlashLockArea* FlashLocks();

// Registrations for events by adapter index, in the data section that all processes share.
uint32_t* SharedRegistrations();

}  // namespace frame
