// What the compiler's check of the stack needs: a word that nobody knows, and what happens when it
// was written over. In user mode the runtime has both.
#include "kernel.h"

namespace {

constexpr ULONG kOverranStackBuffer = 0xF7;  // DRIVER_OVERRAN_STACK_BUFFER

}  // namespace

extern "C" {

uintptr_t __stack_chk_guard = 0;

[[noreturn]] void __stack_chk_fail() {
    KeBugCheckEx(kOverranStackBuffer, 0, 0, 0, 0);
    for (;;) {
    }
}
}

namespace driver {

__attribute__((no_stack_protector)) void SeedStackGuard() {
    constexpr uintptr_t kLowBytes = 0xFFFF;  // zero, so that no text runs over it unseen
    LARGE_INTEGER time;
    KeQuerySystemTime(&time);
    const auto counter = static_cast<uintptr_t>(KeQueryPerformanceCounter(nullptr).QuadPart);
    const auto place = reinterpret_cast<uintptr_t>(&time);
    __stack_chk_guard = ((counter << 32) ^ (counter << 16) ^ static_cast<uintptr_t>(time.QuadPart) ^
                         (place << 20)) &
                        ~kLowBytes;
}

}  // namespace driver
