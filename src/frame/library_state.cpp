#include "frame/library_state.h"

#include <cstring>

#include "compiler.h"
#include "frame/owned.h"

namespace frame {
namespace {

constexpr char kOpenMutexName[] = "HXMGT_OpenDeviceMutex";
constexpr char kEventAreaName[] = "Global\\HXMGT_GetAENMapFile";
constexpr char kFlashLockAreaName[] = "Global\\HXMGT_FlashUpdateLocksMapFile";
constexpr uint32_t kNoSlot = kProcessSlots;

VX_SHARED_BETWEEN_PROCESSES uint32_t sharedRegistrations[kHandleRecords] = {0};

struct ViewTraits {
    using Value = void*;
    static Value Empty() { return nullptr; }
    static void Close(Value value) { UnmapViewOfFile(value); }
};

// A named page-file-backed mapping and its view.
template <class Area>
class SharedMapping {
  public:
    bool Create(const char* name, SECURITY_ATTRIBUTES* attributes) {
        mapping_.Reset(CreateFileMappingA(INVALID_HANDLE_VALUE, attributes, PAGE_READWRITE, 0,
                                          sizeof(Area), name));
        existed_ = GetLastError() == ERROR_ALREADY_EXISTS;
        if (mapping_.Valid()) {
            view_.Reset(MapViewOfFile(mapping_.Get(), FILE_MAP_WRITE, 0, 0, 0));
        }
        return view_.Valid();
    }
    void Close() {
        view_.Reset(nullptr);
        mapping_.Reset(nullptr);
    }
    bool Existed() const { return existed_; }
    Area* Get() const { return static_cast<Area*>(view_.Get()); }

  private:
    OwnedObject mapping_;
    Owned<ViewTraits> view_;
    bool existed_ = false;
};

OwnedObject openMutex;
SharedMapping<EventArea> events;
SharedMapping<FlashLockArea> flashLocks;
uint32_t ownSlot = kNoSlot;

// The first free slot, cleared and marked as taken.
uint32_t ClaimSlot(EventArea& area) {
    for (uint32_t slot = 0; slot < kProcessSlots; ++slot) {
        if (area.slots[slot].inUse == 0) {
            std::memset(&area.slots[slot], 0, sizeof(EventSlot));
            area.slots[slot].inUse = 1;
            return slot;
        }
    }
    return kNoSlot;
}

void ReleaseFlashLocks(FlashLockArea& area) {
    const uint32_t process = GetCurrentProcessId();
    for (FlashLock& lock : area.locks) {
        if (lock.owner == process) {
            lock.owner = 0;
            lock.startTick = 0;
            lock.watchdog = 0;
        }
    }
}

}  // namespace

SECURITY_ATTRIBUTES* OpenToAll::Attributes() {
    if (!InitializeSecurityDescriptor(&descriptor_, SECURITY_DESCRIPTOR_REVISION) ||
        !SetSecurityDescriptorDacl(&descriptor_, TRUE, nullptr, FALSE)) {
        return nullptr;
    }
    attributes_.nLength = sizeof attributes_;
    attributes_.lpSecurityDescriptor = &descriptor_;
    attributes_.bInheritHandle = FALSE;
    return &attributes_;
}

bool LibraryAttach() {
    ownSlot = kNoSlot;
    OpenToAll everyone;
    SECURITY_ATTRIBUTES* const attributes = everyone.Attributes();
    if (attributes == nullptr) {
        return false;
    }
    openMutex.Reset(CreateMutexA(attributes, FALSE, kOpenMutexName));
    if (!openMutex.Valid() || !events.Create(kEventAreaName, attributes) ||
        !flashLocks.Create(kFlashLockAreaName, attributes)) {
        return false;
    }
    // Whoever made the event area clears everything; later processes find what is there.
    if (!events.Existed()) {
        std::memset(events.Get(), 0, sizeof(EventArea));
        std::memset(flashLocks.Get(), 0, sizeof(FlashLockArea));
    }
    ownSlot = ClaimSlot(*events.Get());
    return true;
}

void LibraryDetach() {
    if (EventSlot* const slot = OwnEventSlot()) {
        slot->inUse = 0;
    }
    if (flashLocks.Get() != nullptr) {
        ReleaseFlashLocks(*flashLocks.Get());
    }
    ownSlot = kNoSlot;
    events.Close();
    openMutex.Reset(nullptr);
    flashLocks.Close();
}

HANDLE OpenMutex() {
    return openMutex.Get();
}

EventArea* Events() {
    return events.Get();
}

EventSlot* OwnEventSlot() {
    return events.Get() != nullptr && ownSlot < kProcessSlots ? &events.Get()->slots[ownSlot]
                                                              : nullptr;
}

FlashLockArea* FlashLocks() {
    return flashLocks.Get();
}

uint32_t* SharedRegistrations() {
    return sharedRegistrations;
}

}  // namespace frame
