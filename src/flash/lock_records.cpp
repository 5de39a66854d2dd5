#include "flash/lock_records.h"

#include <atomic>
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

void HoldLock(uint32_t number, uint32_t owner, uint32_t startTick) {
    Shared(number).owner = owner;
    Shared(number).startTick = startTick;
}

void NoteWatchdog(uint32_t number, uint64_t thread) {
    Shared(number).watchdog = thread;
}

void FreeLock(uint32_t number) {
    Shared(number).owner = 0;
    Shared(number).watchdog = 0;
}

}  // namespace flash
