#include "machine/flash_peer.h"

#include <atomic>
#include <utility>

namespace support {

namespace {

constexpr DWORD kWatchdogSleep = 900000;
std::atomic<uint32_t> tick{0};
std::atomic<int> sleepers{0};
std::function<void()> whenAsked;
HANDLE wake = nullptr;    // set: sleepers go on
HANDLE asleep = nullptr;  // counts the sleeps that began

}  // namespace

UpdateClock::UpdateClock() {
    wake = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    asleep = CreateSemaphoreA(nullptr, 0, 1000, nullptr);
    tick = 1000;
    sleep_ = RedirectLibrary("Sleep", &SleepHook);
    tick_ = RedirectLibrary("GetTickCount", &TickHook);
}

UpdateClock::~UpdateClock() {
    WakeSleepers();
}

void UpdateClock::Set(uint32_t value) {
    tick = value;
}

void UpdateClock::Advance(uint32_t milliseconds) {
    tick += milliseconds;
}

bool UpdateClock::AwaitSleeper() {
    return WaitForSingleObject(asleep, 5000) == WAIT_OBJECT_0;
}

void UpdateClock::WakeSleepers() {
    SetEvent(wake);
    // Terminated sleepers never count themselves out; the others take no time.
    for (int i = 0; sleepers != 0 && i < 20; ++i) {
        Sleep(5);
    }
    sleepers = 0;
    ResetEvent(wake);
}

void WINAPI UpdateClock::SleepHook(DWORD milliseconds) {
    if (milliseconds == kWatchdogSleep) {
        ++sleepers;
        ReleaseSemaphore(asleep, 1, nullptr);
        WaitForSingleObject(wake, INFINITE);
        --sleepers;
    }
}

void UpdateClock::WhenAsked(std::function<void()> act) {
    whenAsked = std::move(act);
}

DWORD WINAPI UpdateClock::TickHook() {
    if (const auto act = std::exchange(whenAsked, nullptr)) {
        act();
    }
    return tick;
}

void SetSerial(ScriptedPort& port, const std::string& serial) {
    SetText(port.node.manufacturerAndSerial, "Tarnel, Inc.-" + serial);
    port.node.flags = 16;
    port.AnswerProbes();
}

}  // namespace support
