// Update locks from several processes: one process's clock, its watchdogs and, in processes of its
// own, further holders.
#pragma once

#include <memory>
#include <string>

#include "hxmgtapi.h"
#include "support/child_process.h"
#include "support/event_peer.h"
#include "support/import_redirection.h"
#include "support/scripted_port.h"

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

// A process with a port of the adapter whose serial number is given.
class FlashPeer {
  public:
    explicit FlashPeer(const std::string& serial) : child_("flash-peer") {
        child_.Ask("serial " + serial);
    }
    // "status key" in hexadecimal.
    std::string Start() { return child_.Ask("start"); }
    std::string End(uint32_t key) { return child_.Ask("end " + std::to_string(key)); }
    uint32_t ProcessId() { return static_cast<uint32_t>(std::stoul(child_.Ask("process"))); }
    // Starts and ends so many updates; "done" when that was survived.
    std::string Rounds(int count) { return child_.Ask("rounds " + std::to_string(count)); }
    void Kill() { child_.Kill(); }
    DWORD Finish() { return child_.Finish(); }

  private:
    ChildProcess child_;
};

// The same with a copy of the library that it can unload. Answers are "gone" or "loaded" for the
// library, then "ended" or "alive" for the watchdog of the last start; nothing from a dead process.
class UnloadingPeer {
  public:
    explicit UnloadingPeer(const std::string& serial) : child_("unloading-peer") {
        child_.Ask("serial " + serial);
    }
    // Starts an update and waits until its watchdog sleeps, or is inside its request.
    std::string Start() { return child_.Ask("start"); }
    std::string StartAndHang() { return child_.Ask("hang"); }
    uint32_t ProcessId() { return static_cast<uint32_t>(std::stoul(child_.Ask("process"))); }
    std::string Unload() { return child_.Ask("unload"); }
    // The library is gone at last, and fifteen minutes pass.
    std::string Wake() { return child_.Ask("wake"); }
    // The request is answered, and the library is gone at last.
    std::string Answer() { return child_.Ask("answer"); }
    DWORD Finish() { return child_.Finish(); }

  private:
    ChildProcess child_;
};

}  // namespace support
