// Slots change hands by interlocked steps alone, between processes that load, unload and get killed
// at any moment and that may run on damaged memory: nobody waits, and nobody takes what a living
// process has.
//
// A slot has its flag in the event area and, beside it, a record of its owner in the data section
// that all processes loading this file of the library share. Processes that loaded another copy of
// the file leave no record here. A slot without a record counts as taken.
#include "frame/event_slots.h"

#include <windows.h>

#include <atomic>
#include <cstring>

#include "compiler.h"
#include "frame/owned.h"

namespace frame {
namespace {

// A process: its ID and, above it, the low half of the time when it started, since IDs come again.
using Owner = uint64_t;
constexpr Owner kNobody = 0;

VX_SHARED_BETWEEN_PROCESSES Owner owners[kProcessSlots] = {kNobody};

Owner OwnerOf(HANDLE process, DWORD id) {
    FILETIME started, ended, kernel, user;
    return GetProcessTimes(process, &started, &ended, &kernel, &user)
               ? Owner{started.dwLowDateTime} << 32 | id
               : kNobody;
}

Owner Self() {
    return OwnerOf(GetCurrentProcess(), GetCurrentProcessId());
}

bool IsGone(Owner owner) {
    const auto id = static_cast<DWORD>(owner);
    const OwnedObject process(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, id));
    if (!process.Valid()) {
        return GetLastError() == ERROR_INVALID_PARAMETER;  // one that may not be opened is alive
    }
    const Owner found = OwnerOf(process.Get(), id);
    return (found != kNobody && found != owner) ||
           WaitForSingleObject(process.Get(), 0) == WAIT_OBJECT_0;
}

// Of several processes that see the same record, one changes it.
bool Replace(uint32_t slot, Owner from, Owner to) {
    return std::atomic_ref<Owner>(owners[slot]).compare_exchange_strong(from, to);
}

Owner Recorded(uint32_t slot) {
    return std::atomic_ref<Owner>(owners[slot]).load();
}

// The flag alone does not decide: anybody may have cleared that of a living process, which is set
// again with this and stays so.
bool TakeFree(EventSlot& shared, uint32_t slot) {
    uint32_t free = 0;
    if (!std::atomic_ref<uint32_t>(shared.inUse).compare_exchange_strong(free, 1)) {
        return false;
    }
    const Owner recorded = Recorded(slot);
    return (recorded == kNobody || IsGone(recorded)) && Replace(slot, recorded, Self());
}

bool TakeBack(uint32_t slot) {
    const Owner recorded = Recorded(slot);
    return recorded != kNobody && IsGone(recorded) && Replace(slot, recorded, Self());
}

// Others may be storing events there: the rings are disabled first. The registrations of an owner
// that is gone stay counted. Nobody knows how many it had, and one too many costs nothing but a
// driver that goes on delivering; one too few would silence it for a process that listens.
void ClearRings(EventSlot& shared) {
    for (uint32_t& capacity : shared.capacity) {
        WriteOnce(capacity, 0);
    }
    std::memset(shared.queue, 0, sizeof shared.queue);
    std::memset(shared.writeIndex, 0, sizeof shared.writeIndex);
    std::memset(shared.readIndex, 0, sizeof shared.readIndex);
    std::memset(shared.adapterIndex, 0, sizeof shared.adapterIndex);
}

uint32_t FindSlot(EventArea& area) {
    for (uint32_t slot = 0; slot < kProcessSlots; ++slot) {
        if (TakeFree(area.slots[slot], slot)) {
            return slot;
        }
    }
    for (uint32_t slot = 0; slot < kProcessSlots; ++slot) {
        if (TakeBack(slot)) {
            return slot;
        }
    }
    return kNoSlot;
}

}  // namespace

uint32_t ClaimSlot(EventArea& area) {
    const uint32_t slot = FindSlot(area);
    if (slot != kNoSlot) {
        ClearRings(area.slots[slot]);
    }
    return slot;
}

void ReleaseSlot(EventArea& area, uint32_t slot) {
    // The record goes first: once the flag is clear, the slot may be another's.
    if (Replace(slot, Self(), kNobody)) {
        WriteOnce(area.slots[slot].inUse, 0);
    }
}

}  // namespace frame
