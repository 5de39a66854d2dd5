// One process that takes part in event delivery: an adapter whose driver holds events, and the
// library calls on it. The test process is one; further ones run in processes of their own.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "frame/shared_area.h"
#include "hxmgtapi.h"
#include "support/child_process.h"
#include "support/fake_system.h"
#include "support/scripted_port.h"

namespace support {

// A driver that hands each of its events out once.
class EventDriver {
  public:
    EventDriver();
    // Events numbered from first on: code, then the number in data[0].
    void Raise(uint32_t code, uint32_t first, uint32_t count = 1);
    // The masks that were sent since the last call.
    std::vector<uint32_t> TakeMasks();

    ScriptedPort port;

  private:
    std::mutex lock_;
    std::deque<properties::DriverEvent> events_;
    std::vector<uint32_t> masks_;
};

struct Fetched {
    HX_STATUS status;
    std::vector<HX_EVENT> events;
    // "type:number type:number"
    std::string Text() const;
};
Fetched Fetch(uint32_t handle, uint32_t room);

// A mapping that the library shares, seen from the test.
template <typename Area>
class SharedView {
  public:
    explicit SharedView(const char* name)
        : mapping_(OpenFileMappingA(FILE_MAP_WRITE, FALSE, name)),
          view_(static_cast<Area*>(MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(Area)))) {}
    ~SharedView() {
        UnmapViewOfFile(view_);
        CloseHandle(mapping_);
    }
    SharedView(const SharedView&) = delete;
    SharedView& operator=(const SharedView&) = delete;
    Area* operator->() { return view_; }

  private:
    HANDLE mapping_;
    Area* view_;
};
inline constexpr char kEventAreaName[] = "Global\\HXMGT_GetAENMapFile";
inline constexpr char kFlashLockAreaName[] = "Global\\HXMGT_FlashUpdateLocksMapFile";

// A peer in its own process. It opens adapter 0 of its own driver at its start.
class EventPeer {
  public:
    EventPeer() : child_("event-peer") {}
    HX_STATUS Enable() { return Status("enable"); }
    HX_STATUS Disable() { return Status("disable"); }
    std::string Masks() { return child_.Ask("masks"); }
    void Raise(uint32_t code, uint32_t first, uint32_t count);
    // Events as Fetched::Text writes them, or the status as "status 0x...".
    std::string Fetch(uint32_t room) { return child_.Ask("fetch " + std::to_string(room)); }
    // Marks a record of the lock area as this process's, as an unfinished update leaves it.
    void TakeFlashLock(uint32_t record) { child_.Ask("lock " + std::to_string(record)); }
    void Kill() { child_.Kill(); }
    DWORD Finish() { return child_.Finish(); }

  private:
    HX_STATUS Status(const char* line) {
        return static_cast<HX_STATUS>(std::stoul("0" + child_.Ask(line), nullptr, 16));
    }

    ChildProcess child_;
};

}  // namespace support
