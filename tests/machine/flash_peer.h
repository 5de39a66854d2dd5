// Update locks: the clock of a process and its watchdogs.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "machine/event_peer.h"
#include "machine/import_redirection.h"
#include "machine/scripted_port.h"

namespace support {

// The clock and the sleep of this process's library. A watchdog sleeps until it is woken.
class UpdateClock {
  public:
    UpdateClock();
    ~UpdateClock();
    UpdateClock(const UpdateClock&) = delete;
    UpdateClock& operator=(const UpdateClock&) = delete;

    static void Set(uint32_t tick);
    static void Advance(uint32_t milliseconds);
    // Happens once, when the library next asks for the tick.
    static void WhenAsked(std::function<void()> act);
    // Waits until a watchdog sleeps its 15 minutes; false when none does.
    static bool AwaitSleeper();
    static void WakeSleepers();

  private:
    static void WINAPI SleepHook(DWORD milliseconds);
    static DWORD WINAPI TickHook();

    std::unique_ptr<ImportRedirection> sleep_;
    std::unique_ptr<ImportRedirection> tick_;
};

// A port of the adapter with this serial number.
void SetSerial(ScriptedPort& port, const std::string& serial);

}  // namespace support
