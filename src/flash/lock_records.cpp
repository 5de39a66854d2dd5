#include "flash/lock_records.h"

#include <atomic>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "flash/adapter_serial.h"
#include "frame/library_state.h"

namespace flash {
namespace {

// The first record whose serial is that text; an empty one finds an unassigned record.
std::optional<uint32_t> FindSerial(std::string_view serial) {
    for (uint32_t number = 0; number < formats::kFlashLocks; ++number) {
        if (properties::TextOf(CopyOfLock(number).serial) == serial) {
            return number;
        }
    }
    return std::nullopt;
}

frame::FlashLock& Shared(uint32_t number) {
    return frame::FlashLocks()->locks[number];
}

}  // namespace

frame::FlashLock CopyOfLock(uint32_t number) {
    frame::FlashLock copy;
    std::memcpy(&copy, &Shared(number), sizeof copy);
    // Keeps the compiler from reading again what it has read.
    std::atomic_signal_fence(std::memory_order_seq_cst);
    return copy;
}

std::optional<uint32_t> FindLock(uint32_t handle) {
    AdapterSerial serial;
    if (serial.Read(handle) != HXMGT_SUCCESS || serial.Text().empty()) {
        return std::nullopt;
    }
    return FindSerial(serial.Text());
}

std::optional<uint32_t> FindOrAssignLock(uint32_t handle) {
    if (const std::optional<uint32_t> number = FindLock(handle)) {
        return number;
    }
    AdapterSerial serial;
    if (serial.Read(handle) != HXMGT_SUCCESS || serial.Text().empty()) {
        return std::nullopt;
    }
    const std::optional<uint32_t> number = FindSerial({});
    if (number) {
        properties::PutText(serial.Text(), Shared(*number).serial);
    }
    return number;
}

bool HoldLock(uint32_t number, const frame::FlashLock& seen, uint32_t owner, uint32_t startTick) {
    static_assert(offsetof(frame::FlashLock, startTick) ==
                  offsetof(frame::FlashLock, owner) + sizeof seen.owner);
    const auto word = [](uint32_t holder, uint32_t tick) { return uint64_t{tick} << 32 | holder; };
    uint64_t before = word(seen.owner, seen.startTick);
    // A record stands at a multiple of eight bytes.
    static_assert(sizeof(frame::FlashLock) % sizeof before == 0);
    return std::atomic_ref<uint64_t>(reinterpret_cast<uint64_t&>(Shared(number)))
        .compare_exchange_strong(before, word(owner, startTick));
}

void NoteWatchdog(uint32_t number, uint64_t thread) {
    Shared(number).watchdog = thread;
}

void FreeLock(uint32_t number) {
    Shared(number).owner = 0;
    Shared(number).watchdog = 0;
}

}  // namespace flash
