#include "frame/library_state.h"

#include "compiler.h"
#include "frame/event_slots.h"
#include "frame/owned.h"

namespace frame {
namespace {

constexpr char kOpenMutexName[] = "HXMGT_OpenDeviceMutex";
constexpr char kEventAreaName[] = "Global\\HXMGT_GetAENMapFile";

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
    // A new mapping is zero, and nobody clears one: others may be at work in it already.
    bool Create(const char* name, SECURITY_ATTRIBUTES* attributes) {
        mapping_.Reset(CreateFileMappingA(INVALID_HANDLE_VALUE, attributes, PAGE_READWRITE, 0,
                                          sizeof(Area), name));
        if (mapping_.Valid()) {
            view_.Reset(MapViewOfFile(mapping_.Get(), FILE_MAP_WRITE, 0, 0, 0));
        }
        if (!view_.Valid() || !HoldsArea(view_.Get())) {
            Close();
            return false;
        }
        return true;
    }
    void Close() {
        view_.Reset(nullptr);
        mapping_.Reset(nullptr);
    }
    Area* Get() const { return static_cast<Area*>(view_.Get()); }

  private:
    // Anybody can have made a mapping of this name, smaller or without memory behind it.
    static bool HoldsArea(const void* view) {
        MEMORY_BASIC_INFORMATION memory;
        return VirtualQuery(view, &memory, sizeof memory) == sizeof memory &&
               memory.State == MEM_COMMIT && memory.RegionSize >= sizeof(Area);
    }

    OwnedObject mapping_;
    Owned<ViewTraits> view_;
};

OwnedObject openMutex;
SharedMapping<EventArea> events;
SharedMapping<FlashLockArea> flashLocks;
uint32_t ownSlot = kNoSlot;

// Owner and start tick of a lock go as the one 64-bit word that they are, unless another process
// took the lock over meanwhile.
void ReleaseFlashLocks(FlashLockArea& area) {
    const uint32_t process = GetCurrentProcessId();
    for (FlashLock& lock : area.locks) {
        auto* const holder = reinterpret_cast<volatile LONG64*>(&lock.owner);
        const LONG64 held = *holder;
        if (static_cast<uint32_t>(held) == process) {
            lock.watchdog = 0;
            InterlockedCompareExchange64(holder, 0, held);
        }
    }
}

bool CreateSharedObjects() {
    OpenToAll everyone;
    SECURITY_ATTRIBUTES* const attributes = everyone.Attributes();
    if (attributes == nullptr) {
        return false;
    }
    openMutex.Reset(CreateMutexA(attributes, FALSE, kOpenMutexName));
    return openMutex.Valid() && events.Create(kEventAreaName, attributes) &&
           flashLocks.Create(formats::kFlashLockAreaName, attributes);
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
    if (!CreateSharedObjects()) {
        LibraryDetach();  // of what came to be
        return false;
    }
    ownSlot = ClaimSlot(*events.Get());
    return true;
}

void LibraryDetach() {
    if (OwnEventSlot() != nullptr) {
        ReleaseSlot(*events.Get(), ownSlot);
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
